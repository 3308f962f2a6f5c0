#pragma once

#include <cstdio>
#include <functional>
#include <string>

namespace unit {

// Takes what the program prints on its standard output, so that it does not mix with the output of
// this command. Whoever prints for the command keeps the former stdout.
class ProgramOutput {
  public:
    // `take` receives each line, on the thread that prints it.
    explicit ProgramOutput(std::function<void(const std::string& line)> take);
    ~ProgramOutput();
    ProgramOutput(const ProgramOutput&) = delete;
    ProgramOutput& operator=(const ProgramOutput&) = delete;

  private:
    static ssize_t Write(void* self, const char* text, size_t size);

    const std::function<void(const std::string& line)> take_;
    std::string unfinished_;
    std::FILE* const before_;
    std::FILE* const stream_;
};

}  // namespace unit
