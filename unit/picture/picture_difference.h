#pragma once

#include <optional>
#include <string>

#include "unit/picture/picture.h"

namespace unit {

// How two pictures differ.
struct PictureDifference {
    // "14 pixels differ, from 120,33 to 131,34", or what is wrong with the size.
    std::string text;
    // The expected picture, dark and without colour, with each pixel that differs in bright red.
    Picture picture;
};

// Empty when they are the same, pixel by pixel.
std::optional<PictureDifference> ComparePictures(const Picture& actual, const Picture& expected);

}  // namespace unit
