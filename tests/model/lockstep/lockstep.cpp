#include "tests/model/lockstep/lockstep.h"

#include <pm.h>

#include <algorithm>
#include <sstream>

#include "platform/kernel/clock.h"
#include "platform/kernel/text.h"
#include "platform/powermgr/power_notifications.h"
#include "tests/model/text.h"
#include "wizard/MainFrm.h"

namespace tests::model {
namespace {

namespace kernel = platform::kernel;

// Rows enough to see the background and the close button.
constexpr int kRows = 13;
constexpr int kCloseX = 725, kCloseY = 12;

// How near nothing may come of itself when an event comes: who of two threads goes first at one
// moment is open.
constexpr Time kApart = 3ms;

constexpr wchar_t kNoticeClass[] = L"Dialog";

kernel::Options StartingAt(int milliseconds) {
    kernel::Options options;
    options.start = std::chrono::milliseconds(milliseconds);
    return options;
}

HWND Notice() {
    return FindWindowW(kNoticeClass, nullptr);
}

template <typename Value>
std::string List(const std::vector<Value>& values) {
    std::ostringstream text;
    text << std::hex;
    for (const Value& value : values)
        text << '[' << value << ']';
    return text.str();
}

std::string List(const std::map<std::uint64_t, Time>& timers) {
    std::string text;
    for (const auto& [id, due] : timers)
        text += Text("[%llu at %lld]", static_cast<unsigned long long>(id),
                     static_cast<long long>(due.count()));
    return text;
}

// The lines in an order of their own, where threads end side by side.
std::string Sorted(const std::string& log) {
    std::istringstream text(log);
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    std::ranges::sort(lines);
    std::string sorted;
    for (const std::string& line : lines)
        sorted += line + "\n";
    return sorted;
}

template <typename Value>
std::string Differ(const char* what, const Value& program, const Value& model) {
    if (program == model)
        return {};
    std::ostringstream text;
    text << what << "\n  program: " << program << "\n  model:   " << model << '\n';
    return text.str();
}

}  // namespace

Coverage& Lockstep::Covered() {
    static Coverage covered{};
    return covered;
}

Lockstep::Lockstep(const World& world, int start_milliseconds)
    : bench_(StartingAt(start_milliseconds), WizardBench::Pace::kAtOnce),
      model_(world, StartingAt(start_milliseconds).start) {
    platform::gdi::Surface::KeepRows(kRows);
    bench_.platform.board.supply.ac_line_status = world.ac_line;
    if (!world.has_link)
        bench_.Remove(L"COM9:");
    bench_.Start();
    model_.RunTo(kernel::Now());
    window_ = FindWindowW(L"Tolvane", nullptr);
    // What is said on the way is other tests' matter; what is asked is not.
    bench_.platform.board.ClearOutput();
    model_.log.clear();
}

Lockstep::~Lockstep() {
    platform::gdi::Surface::KeepRows(platform::gdi::Surface::kAllRows);
}

std::string Lockstep::Apply(const Event& event) {
    MoveTo(event);
    if (model_.closed())
        return {};
    const Situation situation = model_.busy()        ? Situation::kBusy
                                : model_.notice_up() ? Situation::kNotice
                                                     : Situation::kIdle;
    ++Covered()[IndexOf(model_.step())][static_cast<std::size_t>(situation)]
               [static_cast<std::size_t>(event.kind)];
    Deliver(event);
    model_.Settle();
    model_.RunTo(model_.now() + 1us);
    bench_.RunFor(1us);
    return Compare(false);
}

std::string Lockstep::End() {
    while (!model_.closed())
        model_.RunTo(model_.NextDeadline());
    bench_.WaitForEnd();
    return Compare(true);
}

void Lockstep::MoveTo(const Event& event) {
    Time target = model_.now() + (event.milliseconds == 0
                                      ? Time(300us)
                                      : Time(std::chrono::milliseconds(event.milliseconds)));
    constexpr Time kRound = 101ms;  // a read that finds nothing, and the pause after it
    for (;; target += kApart) {
        model_.RunTo(target - 1us);
        if (model_.closed())
            return;
        const Time reading = (target - model_.reading_since()) % kRound;
        const bool apart_from_reads = target - model_.reading_since() < kRound - 2 * kApart ||
                                      (reading > 1ms && reading < kRound - 2 * kApart);
        if (model_.NextDeadline() > target + kApart && apart_from_reads)
            break;
    }
    model_.RunTo(target);
    bench_.RunFor(target - kernel::Now());
}

void Lockstep::Set(unsigned driver, unsigned error) {
    World& world = model_.world;
    switch (driver) {
        case 0:
            bench_.reset->open_answer = world.reset_open = error;
            break;
        case 1:
            bench_.reset->request_answer = world.reset_request = error;
            break;
        case 2:
            bench_.scaler->open_answer = world.scaler_open = error;
            break;
        case 3:
            bench_.scaler->request_answer = world.scaler_request = error;
            break;
        default:
            bench_.platform.board.hal_answer = world.hal = error;
            break;
    }
}

void Lockstep::DeliverClose(unsigned how) {
    using Message = WizardModel::Message;
    if (how == 0) {
        PostMessageW(window_, WM_CLOSE, 0, 0);
        model_.Post(Message::kClose);
    } else if (how == 1) {
        PostMessageW(window_, WM_COMMAND, 0xE141, 0);
        model_.Post(Message::kExit);
    } else {
        PostMessageW(window_, 2024, kCloseId, 0);
        model_.Post(Message::kCommand, kCloseId);
    }
}

void Lockstep::Deliver(const Event& event) {
    using Message = WizardModel::Message;
    const auto post = [&](UINT number, Message message, WPARAM wparam, LPARAM lparam) {
        PostMessageW(window_, number, wparam, lparam);
        model_.Post(message, wparam, static_cast<std::uint64_t>(lparam));
    };
    const auto notify = [&](UINT number, Message message, WPARAM wparam) {
        if (const HWND notice = Notice())
            PostMessageW(notice, number, wparam, 0);
        model_.PostToNotice(message, wparam);
    };
    const auto x = static_cast<int>(event.a);
    const auto y = static_cast<int>(event.b);
    switch (event.kind) {
        case Kind::kPress:
        case Kind::kRelease: {
            const bool down = event.kind == Kind::kPress;
            platform::window::TouchScreen(
                down ? platform::window::Touch::kDown : platform::window::Touch::kUp, x, y);
            model_.Touch(down, x, y);
            break;
        }
        case Kind::kCommand:
            post(2024, Message::kCommand, event.a, 0);
            break;
        case Kind::kTimer:
            post(WM_TIMER, Message::kTimer, event.a, 0);
            break;
        case Kind::kMenu:
            post(WM_COMMAND, Message::kOther, event.a, 0);
            break;
        case Kind::kPower:
            platform::window::PostToAll(MSG_POWER_STATUS, event.a, static_cast<LPARAM>(event.b));
            model_.PostToAll(event.a, event.b);
            break;
        case Kind::kSupply: {
            PlainBoard& board = bench_.platform.board;
            board.supply_readable = event.a <= 255;
            board.supply.ac_line_status = static_cast<BYTE>(event.a);
            board.supply.battery_flag = static_cast<BYTE>(event.b);
            platform::powermgr::Notify(PBT_POWERSTATUSCHANGE);
            if (board.supply_readable)
                model_.PostToAll(event.a, event.b);
            else
                model_.SupplyUnreadable();
            break;
        }
        case Kind::kPaint:
            InvalidateRect(window_, nullptr, TRUE);
            model_.Invalidate();
            break;
        case Kind::kHold:
            bench_.HoldPercent(static_cast<BYTE>(event.a));
            model_.HoldPercent(static_cast<std::uint8_t>(event.a));
            break;
        case Kind::kDriver:
            Set(static_cast<unsigned>(event.a), static_cast<unsigned>(event.b));
            break;
        case Kind::kNoticeCommand:
            notify(2024, Message::kCommand, event.a);
            break;
        case Kind::kNoticeTimer:
            notify(WM_TIMER, Message::kTimer, event.a);
            break;
        case Kind::kNoticeClose:
            notify(WM_CLOSE, Message::kClose, 0);
            break;
        case Kind::kClose:
            DeliverClose(static_cast<unsigned>(event.a));
            break;
        case Kind::kPass:
            break;
        default:
            bench_.SendBytes(event.bytes);
            model_.Receive(event.bytes);
            break;
    }
}

// The debug output since the last call, as the model writes it: "#" for a source and its line, "?"
// for the error of a refused argument, which is whatever failed last.
std::string Lockstep::TakeLog() {
    const std::wstring output = bench_.platform.board.debug_output();
    bench_.platform.board.ClearOutput();
    std::string log;
    for (const wchar_t character : output)
        log += static_cast<char>(character);
    for (std::size_t at = log.find(".cpp("); at != log.npos; at = log.find(".cpp(", at)) {
        const std::size_t begin = log.rfind(' ', at) + 1;
        log.replace(begin, log.find(')', at) + 1 - begin, "#");
        at = begin;
    }
    const std::string refused = "Invalid Arguments!!!, ErroCode(";
    for (std::size_t at = log.find(refused); at != log.npos; at = log.find(refused, at)) {
        at += refused.size();
        log.replace(at, log.find(')', at) - at, "?");
    }
    return log;
}

std::string Lockstep::Compare(bool ended) {
    // What the threads say at their ends comes in its time.
    if (model_.closed() && !ended)
        return {};
    std::string difference;
    std::vector<unsigned> frames;
    for (; frames_seen_ < bench_.frames.size(); ++frames_seen_)
        frames.push_back(bench_.frames[frames_seen_].command);
    const auto lists = [&](const char* what, const auto& program, const auto& model) {
        if (program != model)
            difference += Differ(what, List(program), List(model));
    };
    lists("frames", frames, model_.frames);
    lists("requests to DVR1:", bench_.reset->Take(), model_.reset_requests);
    lists("requests to SCA0:", bench_.scaler->Take(), model_.scaler_requests);
    difference +=
        Differ("opens of DVR1:", std::exchange(bench_.reset->opens, 0), model_.reset_opens);
    difference +=
        Differ("opens of SCA0:", std::exchange(bench_.scaler->opens, 0), model_.scaler_opens);
    PlainBoard& board = bench_.platform.board;
    lists("requests to the HAL",
          std::vector<unsigned>(board.hal_codes.begin(), board.hal_codes.end()), model_.hal_codes);
    lists("power states",
          std::vector<unsigned>(board.power_states.begin(), board.power_states.end()),
          model_.power_states);
    board.hal_codes.clear();
    board.power_states.clear();
    const std::string log = TakeLog();
    if (ended)
        return difference + Differ("log", Sorted(log), Sorted(model_.log));
    difference += Differ("log", log, model_.log);
    model_.ClearOutput();

    difference += Differ("step", bench_.Step(), model_.step());
    if (const CMainFrame* const frame = g_pMainFrame) {
        difference += Differ("percent", int{frame->m_byUpdatePercent}, model_.percent());
        difference += Differ("image version", int{frame->m_byBinVersion}, model_.bin_version());
        difference += Differ("running state", int{frame->m_byRunningState}, model_.running_state());
        difference += Differ("DVR version", std::string(frame->m_szDvrVersion.Load().data()),
                             model_.version());
    }
    const auto running = platform::window::RunningTimers(window_);
    const std::map<std::uint64_t, Time> timers(running.begin(), running.end());
    lists("timers", timers, model_.timers());
    difference += Differ("notice", Notice() != nullptr, model_.notice_up());
    return difference + CompareScreen();
}

// Which texts in which colours, and that the middle of each lies in its place.
std::string Lockstep::CompareScreen() const {
    const platform::gdi::Surface screen = bench_.Screen();
    const std::vector<Shown> expected = model_.screen();
    const auto matches = [](const platform::gdi::PlacedText& text, const Shown& shown) {
        const long x = (text.box.left + text.box.right) / 2;
        const long y = (text.box.top + text.box.bottom) / 2;
        return text.text == shown.text && text.color == shown.color && x >= shown.left &&
               x < shown.right && y >= shown.top && y < shown.bottom;
    };
    bool same = screen.texts().size() == expected.size();
    for (const Shown& shown : expected)
        same = same && std::ranges::any_of(screen.texts(),
                                           [&](const auto& text) { return matches(text, shown); });
    std::string difference;
    if (!same) {
        std::vector<std::string> program;
        std::vector<std::string> model;
        for (const auto& text : screen.texts())
            program.push_back(Text("%X ", text.color) + kernel::ToUtf8(text.text));
        for (const Shown& shown : expected)
            model.push_back(Text("%X ", shown.color) + kernel::ToUtf8(shown.text));
        difference = Differ("screen", List(program), List(model));
    }
    if (model_.notice_up())
        return difference;
    const std::uint32_t pixel = screen.row(kCloseY)[kCloseX];
    const char place = pixel == 0xE70010 ? 'X' : pixel == 0x001000 ? 'k' : pixel == 0 ? 'b' : 'x';
    return difference + Differ("place of the close button", place, model_.close_place());
}

}  // namespace tests::model
