#pragma once

#include <sys/types.h>

#include <cstdio>
#include <memory>
#include <string>

#include "control/descriptor.h"
#include "unit/picture/picture.h"

namespace unit {

// Writes pictures of one size as a video: ffmpeg, as a child process, encodes them. One thread.
class VideoEncoder {
  public:
    VideoEncoder() = default;
    // Ends ffmpeg and removes the file, unless Finish has succeeded.
    ~VideoEncoder();
    VideoEncoder(const VideoEncoder&) = delete;
    VideoEncoder& operator=(const VideoEncoder&) = delete;

    // Starts ffmpeg for pictures of this size, so many a second. `file` has one of VideoEndings().
    // False, with one line in `problem`, when that fails.
    bool Start(const std::string& file, int width, int height, int rate, std::string& problem);

    // False, with one line in `problem`, when ffmpeg has ended or takes no pictures for 30 s. Then
    // only the destructor may be called.
    bool Write(const Picture& picture, std::string& problem);

    // Waits at most a minute until the file is complete. False, with one line in `problem`, when it
    // is not.
    bool Finish(std::string& problem);

  private:
    struct CloseFile {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    // Waits so many milliseconds for ffmpeg's end, then kills it. Returns its exit status; -1 when
    // it did not end by itself.
    int End(int milliseconds);
    // The last line that ffmpeg printed, behind the file's name.
    std::string Problem(const std::string& otherwise) const;

    std::string file_;
    pid_t child_ = -1;
    control::Descriptor input_;
    // What ffmpeg prints.
    std::unique_ptr<std::FILE, CloseFile> messages_;
    bool complete_ = false;
};

}  // namespace unit
