#include "tests/model/lockstep/lockstep.h"

#include <pm.h>

#include <algorithm>
#include <cmath>

#include "platform/kernel/clock.h"
#include "platform/kernel/text.h"
#include "platform/powermgr/power_notifications.h"
#include "tests/harness/wizard_harness.h"
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

// The control that the text stands on: of those beside each other or at one height the nearest.
int ControlAt(const RECT& text) {
    const long x = (text.left + text.right) / 2;
    const auto distance = [&](const ControlRow& row) {
        const bool beside = x < row.left || x >= row.right;
        return std::abs(row.top + row.bottom - text.top - text.bottom) + (beside ? 10'000 : 0);
    };
    const auto controls =
        Notice() ? Controls().subspan(kWizardControls) : Controls().first(kWizardControls);
    return static_cast<int>(&*std::ranges::min_element(controls, {}, distance) - &Controls()[0]);
}

std::string ScreenText(int control, const std::wstring& text, unsigned color) {
    return Text("control %d in %06X: ", control, color) + kernel::ToUtf8(text);
}

// Both sides event by event.
class Lockstep {
  public:
    Lockstep(const World& world, int start_milliseconds)
        : harness_(StartingAt(start_milliseconds), WizardHarness::Pace::kAtOnce),
          model_(world, StartingAt(start_milliseconds).start) {
        platform::gdi::Surface::KeepRows(kRows);
        for (RecordingDriver* const driver : {harness_.reset.get(), harness_.scaler.get()})
            driver->on_open = [driver](DWORD, DWORD) { driver->requests.push_back("open"); };
        harness_.platform.board.supply.ac_line_status = world.ac_line;
        if (!world.has_link)
            harness_.Remove(L"COM9:");
        harness_.Start();
        model_.RunTo(kernel::Now());
        window_ = FindWindowW(L"Tolvane", nullptr);
        // Other tests check the log of the start; the frames and requests are compared.
        harness_.platform.board.ClearOutput();
        model_.output.erase("log");
    }
    ~Lockstep() { platform::gdi::Surface::KeepRows(platform::gdi::Surface::kAllRows); }
    Lockstep(const Lockstep&) = delete;
    Lockstep& operator=(const Lockstep&) = delete;

    const WizardModel& model() const { return model_; }

    // Returns the difference after the event.
    std::string Apply(const Event& event) {
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

    // Lets the program end, after the event that closes the window.
    std::string End() {
        while (!model_.closed())
            model_.RunTo(model_.NextDeadline());
        harness_.WaitForEnd();
        Output program = TakeOutput();
        // Threads that end side by side log in any order.
        for (Output* const output : {&program, &model_.output})
            std::ranges::sort((*output)["log"]);
        return Difference(program, model_.output);
    }

  private:
    void MoveTo(const Event& event);
    void Deliver(const Event& event);
    Output TakeOutput();
    std::string Compare();

    static std::string Difference(const Output& program, const Output& model) {
        std::string text;
        for (const auto& [who, output] : {std::pair("program", &program), {"model", &model}})
            for (const auto& [channel, lines] : *output)
                for (const std::string& line : lines)
                    text += std::string(who) + ", " + channel + ": " + line + "\n";
        return program == model ? "" : text;
    }

    WizardHarness harness_;
    WizardModel model_;
    HWND window_ = nullptr;
};

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

void Lockstep::Deliver(const Event& event) {
    using platform::window::Touch;
    PlainBoard& board = harness_.platform.board;
    const auto message = static_cast<unsigned>(event.a);
    const bool down = event.kind == Kind::kPress;
    const auto x = static_cast<int>(event.a), y = static_cast<int>(event.b);
    switch (event.kind) {
        case Kind::kBytes:
            harness_.SendBytes(event.bytes);
            return model_.Receive(event.bytes);
        case Kind::kPress:
        case Kind::kRelease:
            platform::window::TouchScreen(down ? Touch::kDown : Touch::kUp, x, y);
            return model_.Touch(down, x, y);
        case Kind::kPost:
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
            board.supply_readable = event.a <= 255;
            board.supply.ac_line_status = static_cast<BYTE>(event.a);
            board.supply.battery_flag = static_cast<BYTE>(event.b);
            platform::powermgr::Notify(PBT_POWERSTATUSCHANGE);
            return board.supply_readable ? model_.PostToAll(event.a, event.b)
                                         : model_.SupplyUnreadable();
        case Kind::kPaint:
            InvalidateRect(window_, nullptr, TRUE);
            return model_.Invalidate();
        case Kind::kHold:
            if (CMainFrame* const frame = g_pMainFrame)
                frame->m_byUpdatePercent = static_cast<BYTE>(event.a);
            return model_.SetPercent(static_cast<int>(event.a));
        case Kind::kDriver: {
            DWORD* const answers[kAnswers] = {
                &harness_.reset->open_answer, &harness_.reset->request_answer,
                &harness_.scaler->open_answer, &harness_.scaler->request_answer, &board.hal_result};
            *answers[event.a] = static_cast<DWORD>(event.b);
            model_.world.answers[event.a] = static_cast<unsigned>(event.b);
            return;
        }
        case Kind::kPass:
            return;
    }
}

Output Lockstep::TakeOutput() {
    PlainBoard& board = harness_.platform.board;
    Output output;
    for (std::string line : harness_.TakeLog()) {
        // The error of refused arguments is the thread's last one, whatever that was.
        const std::string refused = "Invalid Arguments!!!, ErroCode(";
        if (const std::size_t at = line.find(refused); at != line.npos) {
            const std::size_t error = at + refused.size();
            line.replace(error, line.find(')', error) - error, "0");
        }
        output["log"].push_back(line);
    }
    for (const unsigned command : std::exchange(harness_.frames, {}))
        output["frames"].push_back(Text("%04X", command));
    for (const auto& [name, driver] :
         {std::pair("DVR1:", harness_.reset), {"SCA0:", harness_.scaler}})
        for (const std::string& request : std::exchange(driver->requests, {}))
            output[name].push_back(request);
    for (const DWORD code : std::exchange(board.hal_codes, {}))
        output["HAL codes"].push_back(Text("%08X", code));
    for (const DWORD state : std::exchange(board.power_states, {}))
        output["power states"].push_back(Text("%08X", state));
    return output;
}

// With the state and the screen: the texts, their colours and places, and the close button.
std::string Lockstep::Compare() {
    Output program = TakeOutput();
    Output model = std::exchange(model_.output, {});
    if (const CMainFrame* const frame = g_pMainFrame)
        program["state"] = {StateText(frame->m_nStep, frame->m_byUpdatePercent,
                                      frame->m_byBinVersion, frame->m_byRunningState,
                                      frame->m_szDvrVersion.Load().data(),
                                      platform::window::RunningTimers(window_), Notice())};
    model["state"] = {model_.State()};

    const platform::gdi::Surface screen = harness_.Screen();
    for (const auto& [text, box, color] : screen.texts())
        program["screen"].push_back(ScreenText(ControlAt(box), text, color));
    for (const auto& [control, drawn] : model_.drawn())
        if (!drawn.first.empty())
            model["screen"].push_back(ScreenText(control, drawn.first, drawn.second));
    std::ranges::sort(program["screen"]);
    std::ranges::sort(model["screen"]);
    if (!model_.notice_up()) {
        const std::uint32_t pixel = screen.row(kCloseY)[kCloseX];
        const char place = pixel == 0xE70010   ? 'X'
                           : pixel == 0x001000 ? 'k'
                                               : (pixel == 0 ? 'b' : 'x');
        program["close button"] = {{place}};
        model["close button"] = {{model_.close_place()}};
    }
    return Difference(program, model);
}

}  // namespace

std::string RunBoth(const Sequence& sequence,
                    const std::function<std::optional<Event>(const WizardModel&)>& next) {
    Lockstep lockstep(sequence.world, sequence.start_milliseconds);
    for (bool more = true; more && !lockstep.model().closed();) {
        const std::optional<Event> event = next(lockstep.model());
        more = event.has_value();
        const std::string difference =
            lockstep.Apply(event.value_or(Event{100, Kind::kPost, kCloseMessage}));
        if (!difference.empty())
            return difference;
    }
    return lockstep.End();
}

}  // namespace tests::model
