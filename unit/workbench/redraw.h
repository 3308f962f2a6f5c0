#pragma once

#include <functional>
#include <string>

namespace unit {

// When the window is drawn, and how often it was. Times are host seconds from any start.

// 60 pictures per second while something moves, none while nothing changes.
class RedrawSchedule {
  public:
    struct Due {
        bool picture = false;  // what changed in the window
        bool panel = false;    // the panel may have changed
        bool all = false;      // everything in the window
    };

    // The next picture is drawn as a whole, even if neither screen nor panel changed.
    void Repaint() { repaint_ = true; }

    // The panel took an event: ImGui needs some frames until everything has reacted.
    void LetPanelSettle();
    bool panel_settles() const { return frames_to_settle_ > 0; }

    // What must be drawn now; the caller draws it. `read_news`, called up to 20 times per second,
    // returns whether the panel has something new to show.
    Due Next(double now, bool screen_outdated, const std::function<bool()>& read_news);

    // How long nothing has to be drawn, at most 0.25 s.
    double Idle(double now, bool screen_outdated) const;

  private:
    bool repaint_ = true;
    bool panel_outdated_ = true;
    int frames_to_settle_ = 0;
    double next_picture_ = 0;
    double next_news_ = 0;
    double next_refresh_ = 0;
};

// Counts the pictures while something moves: a window without changes is not drawn and has no rate.
class PictureMeter {
  public:
    // A picture was shown; `moving` when the next one should follow at once.
    void Count(double now, bool moving);

    // Pictures per second in the last half second of movement; 0 before that.
    double rate() const { return rate_; }

    // "1203 pictures in 20.0 s (60.1 per second, longest gap 19 ms)"
    std::string Summary() const;

  private:
    bool moving_ = false;
    double last_ = 0;
    int pictures_ = 0;
    double seconds_ = 0;
    double longest_gap_ = 0;
    double rate_ = 0;
    int recent_pictures_ = 0;
    double recent_seconds_ = 0;
};

}  // namespace unit
