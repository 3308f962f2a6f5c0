#pragma once

#include <windows.h>

#include <cstdint>
#include <limits>
#include <mutex>
#include <span>
#include <string>
#include <vector>

namespace platform::gdi {

// A COLORREF has red in its lowest byte, a pixel of a surface has blue there.
constexpr std::uint32_t PixelOf(COLORREF color) {
    return ((color & 0xFF) << 16) | (color & 0xFF00) | ((color >> 16) & 0xFF);
}

// A text that can be read on a surface. DrawTextW adds it, blits move it, painting over its whole
// box removes it.
struct PlacedText {
    std::wstring text;
    RECT box;  // of the ink, in the surface's pixels
    COLORREF color;
};

// Pixels, 0x00RRGGBB each, rows top-down without padding, and the texts on them. Guarded by
// LockGdi().
class Surface {
  public:
    static constexpr int kAllRows = std::numeric_limits<int>::max();

    // All black.
    Surface(int width, int height) : Surface(width, height, RowsToKeep()) {}
    // Keeps the pixels of that many rows at its top only: drawing below them leaves only texts.
    Surface(int width, int height, int rows);

    // How many rows new surfaces keep that can be drawn on. Few rows make painting ten times as
    // fast for a caller that only reads texts.
    static void KeepRows(int rows);

    int width() const { return width_; }
    int height() const { return height_; }
    // The rectangle of the kept rows; row() is valid within it.
    RECT kept() const { return {0, 0, width_, kept_rows_}; }
    std::uint32_t* row(int y) { return pixels_.data() + std::size_t(y) * std::size_t(width_); }
    const std::uint32_t* row(int y) const {
        return pixels_.data() + std::size_t(y) * std::size_t(width_);
    }
    std::span<const std::uint32_t> pixels() const { return pixels_; }

    const std::vector<PlacedText>& texts() const { return texts_; }
    // A text drawn over itself counts once.
    void AddText(PlacedText text);
    // The rectangle was painted over: removes the texts that lie wholly inside.
    void CoverTexts(const RECT& rectangle);

    // Copies a rectangle with its pixels and texts, clipped to both surfaces.
    void CopyFrom(const Surface& source, const RECT& source_rectangle, int x, int y);

  private:
    static int RowsToKeep();

    int width_;
    int height_;
    int kept_rows_;
    std::vector<std::uint32_t> pixels_;
    std::vector<PlacedText> texts_;
};

// Guards every surface and every drawing object. Taken after the kernel lock when both are needed.
std::unique_lock<std::mutex> LockGdi();

}  // namespace platform::gdi
