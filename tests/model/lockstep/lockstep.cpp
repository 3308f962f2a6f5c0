#include "tests/model/lockstep/lockstep.h"

#include <pm.h>

#include <algorithm>
#include <sstream>

#include "platform/kernel/clock.h"
#include "platform/kernel/text.h"
#include "platform/powermgr/power_notifications.h"
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

kernel::Options StartingAt(int milliseconds) {
    kernel::Options options;
    options.start = std::chrono::milliseconds(milliseconds);
    return options;
}

HWND Notice() {
    return FindWindowW(L"Dialog", nullptr);
}

// The lines in an order of their own, where threads end side by side.
std::string Sorted(const std::string& log) {
    std::istringstream text(log);
    std::multiset<std::string> lines;
    for (std::string line; std::getline(text, line);)
        lines.insert(line + "\n");
    std::string sorted;
    for (const std::string& line : lines)
        sorted += line;
    return sorted;
}

std::string ToText(const Output& output) {
    std::ostringstream text;
    const auto list = [&](const char* what, const auto& values) {
        text << "  " << what << std::hex;
        for (const auto& value : values)
            text << " [" << value << ']';
        text << '\n';
    };
    list("frames", output.frames);
    list("requests to DVR1:", output.reset_requests);
    list("requests to SCA0:", output.scaler_requests);
    list("opens of DVR1: and SCA0:", std::array{output.reset_opens, output.scaler_opens});
    list("requests to the HAL", output.hal_codes);
    list("power states", output.power_states);
    return text.str() + output.log;
}

std::string ToText(const View& view) {
    std::ostringstream text;
    text << "  step " << view.step << ", percent " << view.percent << ", image version "
         << view.image_version << ", running state " << view.running_state << ", DVR version "
         << view.dvr_version << (view.notice_up ? ", notice up" : "") << "\n  timers";
    for (const auto& [id, due] : view.timers)
        text << " [" << id << " at " << due.count() << ']';
    return text.str() + "\n";
}

template <typename Seen>
std::string Differ(const Seen& program, const Seen& model) {
    if (program == model)
        return {};
    return "program:\n" + ToText(program) + "model:\n" + ToText(model);
}

}  // namespace

std::set<std::tuple<int, Situation, Kind>>& Lockstep::Covered() {
    static std::set<std::tuple<int, Situation, Kind>> covered;
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
    model_.output.log.clear();
}

Lockstep::~Lockstep() {
    platform::gdi::Surface::KeepRows(platform::gdi::Surface::kAllRows);
}

std::string Lockstep::Apply(const Event& event) {
    MoveTo(event);
    if (model_.closed())
        return {};
    Covered().insert({model_.step(),
                      model_.busy()        ? Situation::kBusy
                      : model_.notice_up() ? Situation::kNotice
                                           : Situation::kIdle,
                      event.kind});
    Deliver(event);
    model_.Settle();
    model_.RunTo(model_.now() + 1us);
    bench_.RunFor(1us);
    // What the threads say at their ends comes in its time.
    return model_.closed() ? std::string() : Compare();
}

std::string Lockstep::End() {
    while (!model_.closed())
        model_.RunTo(model_.NextDeadline());
    bench_.WaitForEnd();
    Output program = TakeOutput();
    program.log = Sorted(program.log);
    model_.output.log = Sorted(model_.output.log);
    return Differ(program, model_.output);
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

void Lockstep::SetDriver(std::uint64_t driver, unsigned error) {
    World& world = model_.world;
    const std::pair<DWORD&, unsigned&> answers[] = {
        {bench_.reset->open_answer, world.reset_open},
        {bench_.reset->request_answer, world.reset_request},
        {bench_.scaler->open_answer, world.scaler_open},
        {bench_.scaler->request_answer, world.scaler_request},
        {bench_.platform.board.hal_answer, world.hal}};
    answers[driver].first = answers[driver].second = error;
}

void Lockstep::DeliverSupply(std::uint64_t line, std::uint64_t battery) {
    PlainBoard& board = bench_.platform.board;
    board.supply_readable = line <= 255;
    board.supply.ac_line_status = static_cast<BYTE>(line);
    board.supply.battery_flag = static_cast<BYTE>(battery);
    platform::powermgr::Notify(PBT_POWERSTATUSCHANGE);
    if (board.supply_readable)
        model_.PostToAll(line, battery);
    else
        model_.SupplyUnreadable();
}

void Lockstep::Deliver(const Event& event) {
    const auto message = static_cast<unsigned>(event.a);
    switch (event.kind) {
        case Kind::kPress:
        case Kind::kRelease: {
            const bool down = event.kind == Kind::kPress;
            const auto x = static_cast<int>(event.a);
            const auto y = static_cast<int>(event.b);
            platform::window::TouchScreen(
                down ? platform::window::Touch::kDown : platform::window::Touch::kUp, x, y);
            return model_.Touch(down, x, y);
        }
        case Kind::kPost:
        case Kind::kClose:
            PostMessageW(window_, message, event.b, 0);
            return model_.Post(message, event.b);
        case Kind::kNotice:
            if (const HWND notice = Notice())
                PostMessageW(notice, message, event.b, 0);
            return model_.PostToNotice(message, event.b);
        case Kind::kPower:
            platform::window::PostToAll(MSG_POWER_STATUS, event.a, static_cast<LPARAM>(event.b));
            return model_.PostToAll(event.a, event.b);
        case Kind::kSupply:
            return DeliverSupply(event.a, event.b);
        case Kind::kPaint:
            InvalidateRect(window_, nullptr, TRUE);
            return model_.Invalidate();
        case Kind::kHold:
            if (CMainFrame* const frame = g_pMainFrame)
                frame->m_byUpdatePercent = static_cast<BYTE>(event.a);
            return model_.SetPercent(static_cast<int>(event.a));
        case Kind::kDriver:
            return SetDriver(event.a, static_cast<unsigned>(event.b));
        case Kind::kPass:
            return;
        default:
            bench_.SendBytes(event.bytes);
            return model_.Receive(event.bytes);
    }
}

// The log as the model writes it: "#" for a source and its line, "?" for the error of a refused
// argument, which is whatever failed last.
Output Lockstep::TakeOutput() {
    PlainBoard& board = bench_.platform.board;
    Output output;
    for (const wchar_t character : board.debug_output())
        output.log += static_cast<char>(character);
    const auto blank = [&log = output.log](const std::string& mark, std::size_t from_end, char by) {
        for (std::size_t at = 0; (at = log.find(mark, at)) != log.npos; ++at) {
            const std::size_t begin = from_end == 0 ? at + mark.size() : log.rfind(' ', at) + 1;
            const std::size_t end = log.find(')', at) + from_end;
            log.replace(begin, end - begin, 1, by);
            at = begin;
        }
    };
    blank(".cpp(", 1, '#');
    blank("Invalid Arguments!!!, ErroCode(", 0, '?');
    const std::vector<WORD> frames = std::exchange(bench_.frames, {});
    output.frames.assign(frames.begin(), frames.end());
    output.reset_requests = std::exchange(bench_.reset->requests, {});
    output.scaler_requests = std::exchange(bench_.scaler->requests, {});
    output.reset_opens = std::exchange(bench_.reset->opens, 0);
    output.scaler_opens = std::exchange(bench_.scaler->opens, 0);
    output.hal_codes.assign(board.hal_codes.begin(), board.hal_codes.end());
    output.power_states.assign(board.power_states.begin(), board.power_states.end());
    board.hal_codes.clear();
    board.power_states.clear();
    board.ClearOutput();
    return output;
}

View Lockstep::Look() const {
    View view;
    view.step = WizardBench::kNoFrame;
    if (const CMainFrame* const frame = g_pMainFrame)
        view = {frame->m_nStep,
                frame->m_byUpdatePercent,
                frame->m_byBinVersion,
                frame->m_byRunningState,
                frame->m_szDvrVersion.Load().data(),
                {}};
    const auto timers = platform::window::RunningTimers(window_);
    view.timers = {timers.begin(), timers.end()};
    view.notice_up = Notice() != nullptr;
    return view;
}

std::string Lockstep::Compare() {
    return Differ(TakeOutput(), std::exchange(model_.output, {})) + Differ(Look(), model_.Look()) +
           CompareScreen();
}

// Which texts in which colours, and that the middle of each lies in its place.
std::string Lockstep::CompareScreen() const {
    const platform::gdi::Surface screen = bench_.Screen();
    const std::vector<Shown> expected = model_.screen();
    const auto is_there = [&](const Shown& shown) {
        return std::ranges::any_of(screen.texts(), [&](const platform::gdi::PlacedText& text) {
            const POINT middle{(text.box.left + text.box.right) / 2,
                               (text.box.top + text.box.bottom) / 2};
            const RECT place{static_cast<LONG>(shown.left), static_cast<LONG>(shown.top),
                             static_cast<LONG>(shown.right), static_cast<LONG>(shown.bottom)};
            return text.text == shown.text && text.color == shown.color && PtInRect(&place, middle);
        });
    };
    const std::uint32_t pixel = screen.row(kCloseY)[kCloseX];
    const char close = pixel == 0xE70010 ? 'X' : pixel == 0x001000 ? 'k' : pixel == 0 ? 'b' : 'x';
    if (screen.texts().size() == expected.size() && std::ranges::all_of(expected, is_there) &&
        (model_.notice_up() || close == model_.close_place()))
        return {};
    std::ostringstream text;
    text << "program:\n  close button " << close << std::hex;
    for (const auto& shown : screen.texts())
        text << " [" << shown.color << ' ' << kernel::ToUtf8(shown.text) << ']';
    text << "\nmodel:\n  close button " << model_.close_place();
    for (const Shown& shown : expected)
        text << " [" << shown.color << ' ' << kernel::ToUtf8(shown.text) << ']';
    return text.str() + "\n";
}

std::string RunBoth(const Sequence& sequence,
                    const std::function<std::optional<Event>(const WizardModel&)>& next) {
    Lockstep lockstep(sequence.world, sequence.start_milliseconds);
    for (bool more = true; more && !lockstep.model().closed();) {
        const std::optional<Event> event = next(lockstep.model());
        more = event.has_value();
        const std::string difference =
            lockstep.Apply(event.value_or(Event{100, Kind::kClose, kCloseMessage}));
        if (!difference.empty())
            return difference;
    }
    return lockstep.End();
}

std::string Replay(const Sequence& sequence) {
    auto event = sequence.events.begin();
    return RunBoth(sequence, [&](const WizardModel&) {
        return event == sequence.events.end() ? std::nullopt : std::optional(*event++);
    });
}

}  // namespace tests::model
