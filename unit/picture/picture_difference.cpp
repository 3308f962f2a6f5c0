#include "unit/picture/picture_difference.h"

#include <algorithm>

namespace unit {
namespace {

constexpr std::uint32_t kDiffers = 0xFF2020;
constexpr std::uint32_t kDarkening = 3;

std::uint32_t DarkGrey(std::uint32_t pixel) {
    const std::uint32_t sum = (pixel >> 16 & 0xFF) + (pixel >> 8 & 0xFF) + (pixel & 0xFF);
    return sum / 3 / kDarkening * 0x010101;
}

std::string SizeText(const Picture& picture) {
    return std::to_string(picture.width) + " x " + std::to_string(picture.height);
}

}  // namespace

std::optional<PictureDifference> ComparePictures(const Picture& actual, const Picture& expected) {
    if (actual.width != expected.width || actual.height != expected.height)
        return PictureDifference{
            "it is " + SizeText(actual) + " pixels, expected " + SizeText(expected), expected};
    if (actual == expected)
        return std::nullopt;
    PictureDifference difference{{}, expected};
    int count = 0;
    int left = actual.width, top = actual.height, right = 0, bottom = 0;
    for (int y = 0; y < actual.height; ++y) {
        for (int x = 0; x < actual.width; ++x) {
            std::uint32_t& pixel =
                difference.picture
                    .pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(actual.width) +
                            static_cast<std::size_t>(x)];
            if (actual.At(x, y) == expected.At(x, y)) {
                pixel = DarkGrey(pixel);
                continue;
            }
            pixel = kDiffers;
            ++count;
            left = std::min(left, x);
            top = std::min(top, y);
            right = std::max(right, x);
            bottom = std::max(bottom, y);
        }
    }
    const auto place = [](int x, int y) { return std::to_string(x) + "," + std::to_string(y); };
    difference.text = std::to_string(count) + (count == 1 ? " pixel differs" : " pixels differ") +
                      ", from " + place(left, top) + " to " + place(right, bottom);
    return difference;
}

}  // namespace unit
