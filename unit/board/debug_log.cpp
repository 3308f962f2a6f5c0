#include "unit/board/debug_log.h"

#include <cerrno>
#include <cstring>

#include "platform/kernel/text.h"

namespace unit {

bool DebugLog::OpenFile(const std::string& path, std::string& problem) {
    const std::scoped_lock lock(mutex_);
    path_ = path;
    file_.reset(std::fopen(path.c_str(), "w"));
    if (!file_)
        problem = path + ": " + std::strerror(errno);
    return file_ != nullptr;
}

std::string DebugLog::problem() const {
    const std::scoped_lock lock(mutex_);
    return problem_;
}

void DebugLog::AddListener(Listener listener) {
    const std::scoped_lock lock(mutex_);
    listeners_.push_back(std::move(listener));
}

void DebugLog::Write(std::wstring_view text, std::chrono::microseconds time) {
    const std::string bytes = platform::kernel::ToUtf8(text);
    const std::scoped_lock lock(mutex_);
    if (file_ && problem_.empty() &&
        (std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size() ||
         std::fflush(file_.get()) != 0))
        problem_ = path_ + ": " + std::strerror(errno) + "; the debug output in it is cut off";
    unfinished_ += bytes;
    for (;;) {
        const std::size_t end = unfinished_.find('\n');
        if (end == std::string::npos)
            return;
        std::string line = unfinished_.substr(0, end);
        unfinished_.erase(0, end + 1);
        if (line.ends_with('\r'))
            line.pop_back();
        for (const Listener& listener : listeners_)
            listener(time, line);
    }
}

}  // namespace unit
