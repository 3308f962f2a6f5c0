#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "unit/recording/recording.h"
#include "unit/recording/tolerance.h"

namespace unit {

enum class OutputKind { kFrame, kRequest, kBroadcast };
inline constexpr std::size_t kOutputKinds = 3;

// What the program did in the recording, except for its screens: the frames that it sent, its
// requests to drivers and to the board, its broadcasts. Compares what the program does now with it,
// in order within each kind. Any thread.
class ExpectedOutput {
  public:
    ExpectedOutput(const Recording& recording, Lag& lag);

    // An output of the program, as HexText, RequestLine or EventLine writes it. Returns the
    // recorded result, or success when the output differs or nothing is compared any more.
    DWORD Compare(OutputKind kind, std::chrono::microseconds time, const std::string& text);

    // Whether the first `count` outputs of all kinds have come.
    bool HaveCome(std::size_t count) const;
    bool AllHaveCome() const { return HaveCome(outputs_.size()); }

    // Reports an output that should have come by now.
    void CheckMissing(std::chrono::microseconds now);
    // At the end of the replay, when none may be missing.
    void CheckAtEnd(std::chrono::microseconds now);
    void StopComparing();

    std::optional<Difference> difference() const;
    std::size_t count(OutputKind kind) const;

    // For each event of a recording, the number of outputs before it.
    static std::vector<std::size_t> CountBefore(const Recording& recording);

  private:
    struct Output {
        OutputKind kind;
        std::chrono::microseconds time;
        int line;
        std::string text;
        DWORD result;
        bool came = false;
    };
    static std::vector<Output> OutputsOf(const Recording& recording);

    Output* Find(OutputKind kind, const std::string& text);
    void Differ(OutputKind kind, const Output* recorded, std::chrono::microseconds time,
                const std::string& replayed);

    const Tolerance tolerance_;
    Lag& lag_;
    mutable std::mutex mutex_;
    std::vector<Output> outputs_;
    // The first output that has not come, of each kind and of all.
    std::array<std::size_t, kOutputKinds> next_{};
    std::size_t next_of_all_ = 0;
    std::array<std::size_t, kOutputKinds> counts_{};
    bool comparing_ = true;
    std::optional<Difference> difference_;
};

}  // namespace unit
