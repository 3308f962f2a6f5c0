#include "platform/resource/image.h"

#include <algorithm>
#include <cstdlib>
#include <tuple>

#include "platform/resource/byte_reader.h"
#include "platform/resource/dib.h"
#include "platform/resource/module.h"

namespace platform::resource {

namespace {

// One image of a group icon.
struct GroupEntry {
    int width = 0;
    int height = 0;
    WORD bits_per_pixel = 0;
    WORD icon = 0;
};

// A side of 256 does not fit its byte.
int Side(std::uint8_t side) {
    return side == 0 ? 256 : side;
}

std::optional<std::vector<GroupEntry>> ReadGroup(std::span<const std::byte> bytes) {
    ByteReader reader(bytes);
    reader.Word();
    const WORD type = reader.Word();
    std::vector<GroupEntry> entries;
    for (WORD left = reader.Word(); left > 0 && reader; --left) {
        GroupEntry entry;
        entry.width = Side(reader.Byte());
        entry.height = Side(reader.Byte());
        // Number of colours, nothing, planes.
        reader.Bytes(4);
        entry.bits_per_pixel = reader.Word();
        // Size of the image.
        reader.Dword();
        entry.icon = reader.Word();
        entries.push_back(entry);
    }
    if (!reader || type != IMAGE_ICON || entries.empty()) {
        SetLastError(ERROR_INVALID_DATA);
        return std::nullopt;
    }
    return entries;
}

// The nearest in size; among equals the one with most colours.
const GroupEntry& Nearest(const std::vector<GroupEntry>& entries, int width, int height) {
    const auto distance = [&](const GroupEntry& entry) {
        return std::tuple(std::abs(std::int64_t{entry.width} - width) +
                              std::abs(std::int64_t{entry.height} - height),
                          -entry.bits_per_pixel);
    };
    return *std::ranges::min_element(entries, {}, distance);
}

}  // namespace

std::optional<DecodedImage> DecodeBitmap(LPCWSTR name) {
    const auto bytes = Find(RT_BITMAP, name);
    return bytes ? DecodeDib(*bytes) : std::nullopt;
}

std::optional<DecodedImage> DecodeIcon(LPCWSTR name, int width, int height) {
    const auto group = Find(RT_GROUP_ICON, name);
    if (!group)
        return std::nullopt;
    const auto entries = ReadGroup(*group);
    if (!entries)
        return std::nullopt;
    const GroupEntry& entry = Nearest(*entries, width != 0 ? width : entries->front().width,
                                      height != 0 ? height : entries->front().height);
    const auto bytes = Find(RT_ICON, MAKEINTRESOURCEW(entry.icon));
    return bytes ? DecodeIconDib(*bytes) : std::nullopt;
}

}  // namespace platform::resource
