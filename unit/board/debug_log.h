#pragma once

#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace unit {

// The program's debug output: passes whole lines with the unit's time to its listeners, and writes
// every byte unchanged to a file. Any thread.
class DebugLog {
  public:
    using Listener = std::function<void(std::chrono::microseconds time, const std::string& line)>;

    explicit DebugLog(Listener listener) { listeners_.push_back(std::move(listener)); }

    // Adds a listener for good. Before the program starts.
    void AddListener(Listener listener);

    // False with one line in `problem` when the file cannot be written.
    bool OpenFile(const std::string& path, std::string& problem);

    void Write(std::wstring_view text, std::chrono::microseconds time);

    // Why the file is not complete, in one line; empty if it is.
    std::string problem() const;

  private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    std::vector<Listener> listeners_;
    mutable std::mutex mutex_;
    std::string path_;
    std::string problem_;
    std::unique_ptr<std::FILE, Closer> file_;
    std::string unfinished_;
};

}  // namespace unit
