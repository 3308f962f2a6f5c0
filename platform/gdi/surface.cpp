#include "platform/gdi/surface.h"

#include <algorithm>
#include <atomic>
#include <cstring>

#include "platform/gdi/rectangle.h"

namespace platform::gdi {
namespace {

std::atomic<int> g_rows_to_keep{Surface::kAllRows};

}  // namespace

std::unique_lock<std::mutex> LockGdi() {
    static std::mutex mutex;
    return std::unique_lock(mutex);
}

Surface::Surface(int width, int height, int rows)
    : width_(width),
      height_(height),
      kept_rows_(std::min(height, rows)),
      pixels_(std::size_t(width) * std::size_t(kept_rows_)) {}

void Surface::KeepRows(int rows) {
    g_rows_to_keep = rows;
}

int Surface::RowsToKeep() {
    return g_rows_to_keep;
}

void Surface::AddText(PlacedText text) {
    const auto same = [&text](const PlacedText& other) {
        return other.text == text.text && other.color == text.color;
    };
    for (const PlacedText& other : texts_)
        if (same(other) && Contains(other.box, text.box))
            return;
    std::erase_if(texts_, [&](const PlacedText& other) {
        return same(other) && Contains(text.box, other.box);
    });
    texts_.push_back(std::move(text));
}

void Surface::CoverTexts(const RECT& rectangle) {
    std::erase_if(texts_, [&](const PlacedText& text) { return Contains(rectangle, text.box); });
}

void Surface::CopyFrom(const Surface& source, const RECT& source_rectangle, int x, int y) {
    const int dx = x - source_rectangle.left;
    const int dy = y - source_rectangle.top;
    const RECT readable = Intersect(source_rectangle, {0, 0, source.width(), source.height()});
    if (IsEmpty(readable))
        return;
    const RECT target = Intersect(Moved(readable, dx, dy), {0, 0, width_, height_});
    if (IsEmpty(target))
        return;

    // Away from the rows still to be read, when a surface is copied onto itself.
    const bool upwards = &source == this && dy > 0;
    const RECT rows = Intersect(Intersect(target, kept()), Moved(source.kept(), dx, dy));
    const std::size_t bytes = std::size_t(Width(target)) * sizeof(std::uint32_t);
    for (int i = 0; i < Height(rows); ++i) {
        const int row_y = upwards ? rows.bottom - 1 - i : rows.top + i;
        std::memmove(row(row_y) + target.left, source.row(row_y - dy) + (target.left - dx), bytes);
    }

    std::vector<PlacedText> carried;
    for (const PlacedText& text : source.texts_) {
        const RECT box = Intersect(Moved(text.box, dx, dy), target);
        if (!IsEmpty(box))
            carried.push_back({text.text, box, text.color});
    }
    CoverTexts(target);
    for (PlacedText& text : carried)
        AddText(std::move(text));
}

}  // namespace platform::gdi
