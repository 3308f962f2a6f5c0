#include "tests/model/lockstep/lockstep.h"

#include <pm.h>

#include <algorithm>
#include <numeric>
#include <sstream>

#include "platform/kernel/clock.h"
#include "platform/kernel/text.h"
#include "platform/powermgr/power_notifications.h"
#include "wizard/MainFrm.h"

namespace tests::model {
namespace {

namespace kernel = platform::kernel;

// Enough rows for the background and the close button.
constexpr int kRows = 13;
constexpr int kCloseX = 725, kCloseY = 12;

// No timer, wait or read may end so soon after an event: the order of two threads at one time is
// open.
constexpr Time kApart = 3ms;

kernel::Options StartingAt(int milliseconds) {
    kernel::Options options;
    options.start = std::chrono::milliseconds(milliseconds);
    return options;
}

HWND Notice() {
    return FindWindowW(L"Dialog", nullptr);
}

// Sorted lines: threads that end side by side log in any order.
std::string Sorted(const std::string& log) {
    std::istringstream text(log);
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);)
        lines.push_back(line + "\n");
    std::ranges::sort(lines);
    return std::accumulate(lines.begin(), lines.end(), std::string());
}

std::string Differ(const Output& program, const Output& model) {
    constexpr std::array<const char*, kChannels> kNames = {"log",
                                                           "frames",
                                                           "requests to DVR1:",
                                                           "opens of DVR1:",
                                                           "requests to SCA0:",
                                                           "opens of SCA0:",
                                                           "HAL codes",
                                                           "power states",
                                                           "view"};
    std::string difference;
    for (std::size_t channel = 0; channel < kChannels; ++channel)
        if (program[channel] != model[channel])
            difference += std::string(kNames[channel]) + " of the program:\n" + program[channel] +
                          "\nof the model:\n" + model[channel] + "\n";
    return difference;
}

}  // namespace

Lockstep::Lockstep(const World& world, int start_milliseconds)
    : harness_(StartingAt(start_milliseconds), WizardHarness::Pace::kAtOnce),
      model_(world, StartingAt(start_milliseconds).start) {
    platform::gdi::Surface::KeepRows(kRows);
    harness_.platform.board.supply.ac_line_status = world.ac_line;
    if (!world.has_link)
        harness_.Remove(L"COM9:");
    harness_.Start();
    model_.RunTo(kernel::Now());
    window_ = FindWindowW(L"Tolvane", nullptr);
    // Other tests check the log of the start; the frames and requests are compared.
    harness_.platform.board.ClearOutput();
    model_.output[kLog].clear();
}

Lockstep::~Lockstep() {
    platform::gdi::Surface::KeepRows(platform::gdi::Surface::kAllRows);
}

std::string Lockstep::Apply(const Event& event) {
    MoveTo(event);
    if (model_.closed())
        return {};
    Deliver(event);
    model_.Settle();
    model_.RunTo(model_.now() + 1us);
    harness_.RunFor(1us);
    // The threads log their ends in their own time.
    return model_.closed() ? std::string() : Compare();
}

std::string Lockstep::End() {
    while (!model_.closed())
        model_.RunTo(model_.NextDeadline());
    harness_.WaitForEnd();
    Output program = TakeOutput();
    for (std::string* const log : {&program[kLog], &model_.output[kLog]})
        *log = Sorted(*log);
    return Differ(program, model_.output);
}

void Lockstep::MoveTo(const Event& event) {
    Time target = model_.now() + (event.milliseconds == 0
                                      ? Time(300us)
                                      : Time(std::chrono::milliseconds(event.milliseconds)));
    constexpr Time kRound = 101ms;  // an empty read and the pause after it
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
    harness_.RunFor(target - kernel::Now());
}

void Lockstep::SetDriver(std::uint64_t driver, unsigned error) {
    World& world = model_.world;
    const std::pair<DWORD&, unsigned&> answers[] = {
        {harness_.reset->open_answer, world.reset_open},
        {harness_.reset->request_answer, world.reset_request},
        {harness_.scaler->open_answer, world.scaler_open},
        {harness_.scaler->request_answer, world.scaler_request},
        {harness_.platform.board.hal_result, world.hal}};
    answers[driver].first = answers[driver].second = error;
}

void Lockstep::DeliverSupply(std::uint64_t line, std::uint64_t battery) {
    PlainBoard& board = harness_.platform.board;
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
            harness_.SendBytes(event.bytes);
            return model_.Receive(event.bytes);
    }
}

// The log as the model writes it: "#" for a source and its line, "?" for the error of refused
// arguments, which is the thread's last error.
Output Lockstep::TakeOutput() {
    PlainBoard& board = harness_.platform.board;
    Output output;
    std::string& log = output[kLog];
    for (const wchar_t character : board.debug_output())
        log += static_cast<char>(character);
    board.ClearOutput();
    const auto mask = [&log](const std::string& mark, std::size_t from_end, char by) {
        for (std::size_t at = 0; (at = log.find(mark, at)) != log.npos; ++at) {
            const std::size_t begin = from_end == 0 ? at + mark.size() : log.rfind(' ', at) + 1;
            const std::size_t end = log.find(')', at) + from_end;
            log.replace(begin, end - begin, 1, by);
            at = begin;
        }
    };
    mask(".cpp(", 1, '#');
    mask("Invalid Arguments!!!, ErroCode(", 0, '?');
    for (const unsigned command : std::exchange(harness_.frames, {}))
        output[kFrames] += Text("%04X; ", command);
    for (const std::string& request : std::exchange(harness_.reset->requests, {}))
        output[kResetRequests] += request + "; ";
    for (const std::string& request : std::exchange(harness_.scaler->requests, {}))
        output[kScalerRequests] += request + "; ";
    for (const DWORD code : std::exchange(board.hal_codes, {}))
        output[kHalCodes] += Text("%08X; ", code);
    for (const DWORD state : std::exchange(board.power_states, {}))
        output[kPowerStates] += Text("%08X; ", state);
    output[kResetOpens].assign(std::exchange(harness_.reset->opens, 0), 'o');
    output[kScalerOpens].assign(std::exchange(harness_.scaler->opens, 0), 'o');
    return output;
}

std::string Lockstep::Compare() {
    Output program = TakeOutput();
    const auto running = platform::window::RunningTimers(window_);
    const std::map<std::uint64_t, Time> timers(running.begin(), running.end());
    const bool notice_up = Notice() != nullptr;
    if (const CMainFrame* const frame = g_pMainFrame)
        program[kView] = ViewText(frame->m_nStep, frame->m_byUpdatePercent, frame->m_byBinVersion,
                                  frame->m_byRunningState, frame->m_szDvrVersion.Load().data(),
                                  timers, notice_up);
    Output model = std::exchange(model_.output, {});
    model[kView] = model_.View();
    return Differ(program, model) + CompareScreen();
}

// The texts, their colours, and the place of the middle of each.
std::string Lockstep::CompareScreen() const {
    const platform::gdi::Surface screen = harness_.Screen();
    std::vector<Shown> missing = model_.screen();
    std::string difference;
    const auto add = [&](const char* who, const std::wstring& text, unsigned color) {
        difference +=
            Text("on the %s's screen alone, in %06X: ", who, color) + kernel::ToUtf8(text) + "\n";
    };
    for (const auto& [text, box, color] : screen.texts()) {
        const POINT middle{(box.left + box.right) / 2, (box.top + box.bottom) / 2};
        const auto found = std::ranges::find_if(missing, [&](const Shown& shown) {
            const RECT place{static_cast<LONG>(shown.left), static_cast<LONG>(shown.top),
                             static_cast<LONG>(shown.right), static_cast<LONG>(shown.bottom)};
            return text == shown.text && color == shown.color && PtInRect(&place, middle);
        });
        if (found == missing.end())
            add("program", text, color);
        else
            missing.erase(found);
    }
    for (const Shown& shown : missing)
        add("model", shown.text, shown.color);
    const std::uint32_t pixel = screen.row(kCloseY)[kCloseX];
    const char close = pixel == 0xE70010 ? 'X' : pixel == 0x001000 ? 'k' : pixel == 0 ? 'b' : 'x';
    if (!model_.notice_up() && close != model_.close_place())
        difference += Text("the close button is %c, not %c\n", close, model_.close_place());
    return difference;
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
