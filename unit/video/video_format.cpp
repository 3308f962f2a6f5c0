#include "unit/video/video_format.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "control/words.h"

namespace unit {
namespace {

// Most players show only this kind of pixels.
constexpr const char* kMp4[] = {"-c:v", "libx264",  "-preset", "veryfast",  "-crf",
                                "20",   "-pix_fmt", "yuv420p", "-movflags", "+faststart"};
constexpr const char* kWebm[] = {"-c:v",      "libvpx-vp9", "-b:v",      "0",
                                 "-crf",      "32",         "-deadline", "realtime",
                                 "-cpu-used", "8",          "-pix_fmt",  "yuv420p"};
// The standard colours: colours chosen for the run would keep all of its pictures in memory.
constexpr const char* kGif[] = {"-pix_fmt", "rgb8", "-sws_dither", "bayer"};
constexpr const char* kApng[] = {"-f", "apng", "-plays", "0", "-pix_fmt", "rgb24"};
constexpr const char* kWebp[] = {"-c:v", "libwebp_anim", "-lossless", "1", "-loop", "0"};

constexpr VideoFormat kFormats[] = {{".mp4", kMp4},   {".webm", kWebm}, {".gif", kGif},
                                    {".apng", kApng}, {".png", kApng},  {".webp", kWebp}};

}  // namespace

const VideoFormat* VideoFormatOf(const std::string& file) {
    const auto* const format = std::ranges::find_if(
        kFormats, [&file](const VideoFormat& known) { return file.ends_with(known.ending); });
    return format == std::end(kFormats) ? nullptr : format;
}

std::string VideoEndings() {
    std::vector<std::string_view> endings;
    for (const VideoFormat& format : kFormats)
        endings.push_back(format.ending);
    return control::ListText(endings);
}

}  // namespace unit
