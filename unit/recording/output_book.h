#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "unit/recording/allowance.h"
#include "unit/recording/difference.h"
#include "unit/recording/recording.h"

namespace unit {

enum class OutputKind { kFrame, kRequest, kBroadcast };
inline constexpr std::size_t kOutputKinds = 3;

// What the program did in the recording, but for its screens: the frames that it sent, what it
// asked of drivers and of the board, its broadcasts. What it does now is held against that in
// order, each kind for itself. Any thread.
class OutputBook {
  public:
    OutputBook(const Recording& recording, Lateness& lateness);

    // An output of the program, as MomentText and HexText write it. The recorded result; success,
    // when it differs or nothing is compared any more.
    DWORD Take(OutputKind kind, std::chrono::microseconds time, const std::string& text);

    // Whether the first `count` of all kinds have come.
    bool HaveCome(std::size_t count) const;
    bool AllHaveCome() const { return HaveCome(outputs_.size()); }

    // Looks for one that should have come by now.
    void CheckMissing(std::chrono::microseconds now);
    // At the end of the replay: none may be missing.
    void CheckAtEnd(std::chrono::microseconds now);
    // Whatever comes from now on is right.
    void StopComparing();

    std::optional<Difference> difference() const;
    std::size_t count(OutputKind kind) const;

    // How many outputs of a recording stand before each of its moments.
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
                const std::string& came);

    const Allowance allowance_;
    Lateness& lateness_;
    mutable std::mutex mutex_;
    std::vector<Output> outputs_;
    // Before these, all have come: of each kind, and of all.
    std::array<std::size_t, kOutputKinds> next_{};
    std::size_t next_of_all_ = 0;
    std::array<std::size_t, kOutputKinds> counts_{};
    bool comparing_ = true;
    std::optional<Difference> difference_;
};

}  // namespace unit
