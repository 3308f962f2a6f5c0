#include "unit/workbench/changed_parts.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace unit {
namespace {

constexpr int kTileWidth = 32;
constexpr int kTileHeight = 16;
// More parts than this cost more than the area around them.
constexpr std::size_t kMostParts = 24;

std::uint64_t Mix(std::uint64_t hash, std::uint64_t value) {
    hash = (hash ^ value) * 0x9E3779B97F4A7C15U;
    return hash ^ hash >> 29;
}

// Two floats, or any other eight bytes.
template <class Value>
std::uint64_t Bits(const Value& value) {
    static_assert(sizeof value == sizeof(std::uint64_t));
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

struct Tiles {
    int columns;
    int rows;
    std::vector<std::uint64_t> hashes;

    explicit Tiles(SDL_Point pixels)
        : columns((pixels.x + kTileWidth - 1) / kTileWidth),
          rows((pixels.y + kTileHeight - 1) / kTileHeight),
          hashes(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows)) {}

    // Adds to all tiles that the box, in pixels, touches.
    void Add(const ImVec4& box, std::uint64_t hash) {
        const auto tile = [](float pixel, int size, int limit) {
            return std::clamp(static_cast<int>(pixel) / size, 0, limit - 1);
        };
        const int right = tile(box.z, kTileWidth, columns);
        const int bottom = tile(box.w, kTileHeight, rows);
        for (int row = tile(box.y, kTileHeight, rows); row <= bottom; ++row)
            for (int column = tile(box.x, kTileWidth, columns); column <= right; ++column) {
                std::uint64_t& sum = hashes[Index(row, column)];
                sum = Mix(sum, hash);
            }
    }

    std::size_t Index(int row, int column) const {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
               static_cast<std::size_t>(column);
    }
};

void AddCommand(Tiles& tiles, const ImDrawList& list, const ImDrawCmd& command,
                const ImVec2& density) {
    const ImVec4& clip = command.ClipRect;
    std::uint64_t state = Mix(reinterpret_cast<std::uintptr_t>(command.GetTexID()), 1);
    state = Mix(Mix(state, Bits(std::array{clip.x, clip.y})), Bits(std::array{clip.z, clip.w}));
    const ImDrawVert* const vertices = list.VtxBuffer.Data + command.VtxOffset;
    const ImDrawIdx* const indices = list.IdxBuffer.Data + command.IdxOffset;
    for (unsigned first = 0; first + 2 < command.ElemCount; first += 3) {
        ImVec4 box = {clip.z, clip.w, clip.x, clip.y};
        std::uint64_t hash = state;
        for (unsigned corner = first; corner < first + 3; ++corner) {
            const ImDrawVert& vertex = vertices[indices[corner]];
            box.x = std::min(box.x, vertex.pos.x);
            box.y = std::min(box.y, vertex.pos.y);
            box.z = std::max(box.z, vertex.pos.x);
            box.w = std::max(box.w, vertex.pos.y);
            hash = Mix(Mix(Mix(hash, Bits(vertex.pos)), Bits(vertex.uv)), vertex.col);
        }
        box = {std::max(box.x, clip.x), std::max(box.y, clip.y), std::min(box.z, clip.z),
               std::min(box.w, clip.w)};
        if (box.x <= box.z && box.y <= box.w)
            tiles.Add({box.x * density.x - 1, box.y * density.y - 1, box.z * density.x + 1,
                       box.w * density.y + 1},
                      hash);
    }
}

}  // namespace

std::vector<SDL_Rect> ChangedParts::Find(const ImDrawData& data, SDL_Point pixels) {
    Tiles tiles(pixels);
    for (int index = 0; index < data.CmdListsCount; ++index)
        for (const ImDrawCmd& command : data.CmdLists[index]->CmdBuffer)
            AddCommand(tiles, *data.CmdLists[index], command, data.FramebufferScale);
    const bool other_size = pixels.x != pixels_.x || pixels.y != pixels_.y;
    pixels_ = pixels;
    const std::vector<std::uint64_t> last = std::exchange(tiles_, std::move(tiles.hashes));
    if (other_size || last.size() != tiles_.size())
        return {{0, 0, pixels.x, pixels.y}};

    std::vector<SDL_Rect> parts;
    const auto changed = [&](int row, int column) {
        const std::size_t tile = tiles.Index(row, column);
        return tiles_[tile] != last[tile];
    };
    for (int row = 0; row < tiles.rows; ++row)
        for (int column = 0; column < tiles.columns; ++column) {
            if (!changed(row, column))
                continue;
            const int first = column;
            while (column < tiles.columns && changed(row, column))
                ++column;
            const SDL_Rect run{first * kTileWidth, row * kTileHeight, (column - first) * kTileWidth,
                               kTileHeight};
            // The same columns of the row above grow down.
            const auto above = std::ranges::find_if(parts, [&run](const SDL_Rect& part) {
                return part.x == run.x && part.w == run.w && part.y + part.h == run.y;
            });
            if (above == parts.end())
                parts.push_back(run);
            else
                above->h += run.h;
        }
    const SDL_Rect window{0, 0, pixels.x, pixels.y};
    if (parts.size() > kMostParts) {
        SDL_Rect around = parts.front();
        for (const SDL_Rect& part : parts)
            SDL_UnionRect(&around, &part, &around);
        parts = {around};
    }
    for (SDL_Rect& part : parts)
        SDL_IntersectRect(&part, &window, &part);
    return parts;
}

}  // namespace unit
