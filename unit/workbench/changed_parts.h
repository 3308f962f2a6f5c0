#pragma once

#include <SDL.h>
#include <imgui.h>

#include <cstdint>
#include <vector>

namespace unit {

// Finds what changed between two pictures made of triangles, without looking at pixels: the picture
// is divided into tiles, and a tile changed if other triangles, or the same ones in another order,
// touch it.
class ChangedParts {
  public:
    // The parts that differ from the picture of the last call, in pixels; all of it after a change
    // of the size. They do not overlap.
    std::vector<SDL_Rect> Find(const ImDrawData& data, SDL_Point pixels);

    // The next picture counts as changed everywhere.
    void Forget() { tiles_.clear(); }

  private:
    SDL_Point pixels_{};
    std::vector<std::uint64_t> tiles_;
};

}  // namespace unit
