#pragma once

#include <windows.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "unit/picture/screen_reader.h"

namespace unit {

class VirtualUnit;

// A driver who walks the whole update: reads the screen, taps the buttons, handles the card as the
// screen says. Lives on the hardware's thread and acts only through what a person has: eyes,
// a finger, and the card.
class AutoUser {
  public:
    struct Options {
        // The folder that goes into the slot as the card.
        std::string card;
        // Where the pictures of the screens go; none are written when empty.
        std::string screens;
    };

    AutoUser(VirtualUnit& unit, Options options);

    // Starts looking at the screen.
    void Start();

    bool finished() const { return finished_; }
    // The success screen was seen and the program closed from it.
    bool succeeded() const { return succeeded_; }
    // Where the walk stood when it ended, in one line.
    const std::string& verdict() const { return verdict_; }

  private:
    enum class Act { kTap, kInsertCard, kRemoveCardAndTap, kLookOnly, kFinish };

    // One screen of the walk: how it is known, how long it may take to come, what to do there.
    struct Station {
        const char* name;
        // A text of the screen, or the start of it where a percent follows that must have come to
        // `percent` at least.
        const wchar_t* text;
        int percent;
        const wchar_t* button;
        std::chrono::seconds limit;
        Act act;
    };
    static const Station kStations[];

    void LookAgain();
    void Look();
    bool AtStation(const Station& station, const ScreenReader& screen) const;
    void Arrive(const Station& station, const ScreenReader& screen);
    void Tap(const Station& station, POINT place);
    void Next();
    void SavePicture(const std::string& name);
    void End(bool success, std::string verdict);
    std::optional<std::string> Refusal(const ScreenReader& screen) const;

    VirtualUnit& unit_;
    const Options options_;
    std::size_t station_ = 0;
    std::chrono::microseconds since_{};
    std::vector<std::string> saved_;
    bool finished_ = false;
    bool succeeded_ = false;
    std::string verdict_;
};

}  // namespace unit
