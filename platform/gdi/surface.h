#pragma once

#include <windows.h>

#include <cstdint>
#include <limits>
#include <mutex>
#include <span>
#include <string>
#include <vector>

namespace platform::gdi {

// A text as it stands on a surface: what a reader of the picture would find there. Drawn by
// DrawTextW, moved along by blits, gone once its box is painted over wholly.
struct PlacedText {
    std::wstring text;
    RECT box;  // of the ink, in the surface's pixels
    COLORREF color;
};

// Pixels, 0x00RRGGBB each, rows top-down without padding, and the texts that stand on them.
// Guarded by LockGdi().
class Surface {
  public:
    static constexpr int kAllRows = std::numeric_limits<int>::max();

    // All black.
    Surface(int width, int height) : Surface(width, height, RowsToKeep()) {}
    // Keeps the pixels of so many rows at its top alone: drawing below them leaves its texts and
    // nothing else.
    Surface(int width, int height, int rows);

    // What surfaces keep that are to be drawn on and are made from now on. For whoever looks at
    // texts only; painting then costs a tenth.
    static void KeepRows(int rows);

    int width() const { return width_; }
    int height() const { return height_; }
    // Where there are pixels; what row() gives lies within.
    RECT kept() const { return {0, 0, width_, kept_rows_}; }
    std::uint32_t* row(int y) { return pixels_.data() + std::size_t(y) * std::size_t(width_); }
    const std::uint32_t* row(int y) const {
        return pixels_.data() + std::size_t(y) * std::size_t(width_);
    }
    std::span<const std::uint32_t> pixels() const { return pixels_; }

    const std::vector<PlacedText>& texts() const { return texts_; }
    // A text drawn over itself counts once.
    void AddText(PlacedText text);
    // The rectangle was painted over: texts wholly inside go.
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
