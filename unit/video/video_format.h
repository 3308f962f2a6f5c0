#pragma once

#include <span>
#include <string>
#include <string_view>

namespace unit {

// A kind of file that a video can be: its ending and the options of ffmpeg that encode it.
struct VideoFormat {
    std::string_view ending;
    std::span<const char* const> options;
};

// By the file's ending ("run.mp4"); null for another one.
const VideoFormat* VideoFormatOf(const std::string& file);

// ".mp4, .webm, .gif and .webp"
std::string VideoEndings();

}  // namespace unit
