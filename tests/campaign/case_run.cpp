#include <algorithm>
#include <atomic>
#include <memory>

#include "platform/kernel/scheduler.h"
#include "platform/kernel/thread.h"
#include "platform/window/screen.h"
#include "tests/campaign/campaign.h"
#include "tests/campaign/injector.h"
#include "unit/probe/wizard_probe.h"

namespace tests::campaign {

namespace {

using namespace std::chrono_literals;
using End = CarDriver::End;

// How often external power is cycled at most: a driver tries once more.
constexpr std::size_t kMostCycles = 2;
// The longest time that the window may take to handle a message: it waits as long for a missing
// scaler.
constexpr std::chrono::seconds kLongestWait{14};

// Calls without which the program does not start.
constexpr std::string_view kCallsOfTheStart[] = {"CreateMutexW", "CreateWindowExW", "LoadStringW",
                                                 "RegisterClassW"};
// What the program logs when a part of it failed to start, and the calls whose failure it does not
// log.
constexpr const char* kMissingParts[] = {
    "\tCMainFrame::OnCreate, UART_Init() fail!!!", "\tUART_Init, CreateThread() fail!!!",
    "\tCMainFrame::OnCreate, g_pCPowerDetector->Init() fail!!!",
    "\tCPowerDetector::Init, CreateThread() fail!!!"};
constexpr std::string_view kPartsNotLogged[] = {"RegisterWindowMessageW", "ShowWindow"};

// Another application of the unit that sends the program's window a message and waits for it to be
// handled. Host thread.
class ResponseProbe {
  public:
    // Does nothing while one is waited for, or when there is no window.
    void Send() {
        const auto window = platform::window::FindOwnWindow(L"Tolvane", std::nullopt);
        if (window == 0 || Waiting())
            return;
        handled_ = std::make_shared<std::atomic<bool>>(false);
        sent_ = kernel::Now();
        kernel::StartThread([handled = handled_, window] {
            SendMessageW(reinterpret_cast<HWND>(window), WM_NULL, 0, 0);
            *handled = true;
            return DWORD{0};
        });
    }
    bool Waiting() const { return handled_ != nullptr && !*handled_; }
    bool Overdue() const { return Waiting() && kernel::Now() - sent_ > kLongestWait; }

  private:
    std::shared_ptr<std::atomic<bool>> handled_;
    kernel::Time sent_{};
};

class CaseRun {
  public:
    explicit CaseRun(const Case& test_case)
        : case_(test_case), run_(OptionsFor(test_case)), injector_(test_case, run_), driver_(run_) {
        driver_.OnLook([this] { CheckEachLook(); });
    }

    Result Run() {
        const auto end = RunFlow(*case_.flow, run_, driver_);
        if (case_.faults.empty() && end != case_.flow->end)
            Find(std::string("the flow ends in ") + (end ? NameOf(*end) : "nothing"));
        CheckWindow();
        const Injections injections = injector_.injections();
        result_.counts = {0, injections.frames, injections.bytes};
        // Calls that have yet to fail do so while the program ends.
        if (Closed() || case_.faults.empty() || injections.injected.size() < case_.faults.size() ||
            injections.Has(kFailsToTheEnd))
            Close();
        else
            Recover();
        return std::move(result_);
    }

    std::vector<std::string> lines() const { return run_.lines(); }

  private:
    static unit::VirtualUnit::Options OptionsFor(const Case& test_case) {
        unit::VirtualUnit::Options options = OptionsFrom(test_case.flow->begin);
        options.kernel.seed = options.dvr.dvr.seed = test_case.seed;
        return options;
    }

    void Find(std::string finding) { result_.findings.push_back(std::move(finding)); }

    bool Closed() {
        return !run_.unit().program().running() || injector_.injections().Has(kCloses);
    }

    bool HasFailed(std::span<const std::string_view> calls) const {
        return std::ranges::any_of(
            injector_.injections().failures, [&](const CallFailure& failure) {
                return std::ranges::find(calls, failure.call.call) != calls.end();
            });
    }

    // Whether a part is missing that the program starts only once.
    bool LacksAPart() const {
        return HasFailed(kPartsNotLogged) ||
               std::ranges::any_of(kMissingParts,
                                   [this](const char* line) { return run_.Logged(line); });
    }

    void CheckEachLook() {
        const auto wizard = unit::ReadWizard();
        if (wizard && (wizard->step < -1 || wizard->step > 6))
            Find("the step is " + std::to_string(wizard->step));
        if (const auto last = injector_.injections().last; last && last != probed_after_) {
            probed_after_ = last;
            probe_.Send();
        }
        overdue_ |= probe_.Overdue();
    }

    void CheckWindow() {
        probe_.Send();
        if (!run_.RunUntil([this] { return !probe_.Waiting(); }, kLongestWait + 1s) || overdue_)
            Find("the window does not respond");
        if (!run_.unit().program().running() && !injector_.injections().Has(kCloses) &&
            !HasFailed(kCallsOfTheStart))
            Find("the program has ended by itself");
    }

    std::optional<End> TryAnUpdate() {
        dvrsim::Dvr& dvr = *run_.unit().dvr().dvr();
        dvr.SetFirmwareVersion(dvrsim::Options().firmware_version);
        driver_.CyclePower();
        const auto end = driver_.Drive(kLongestDrive);
        const bool updated = dvr.FirmwareVersion() == dvrsim::kNewVersion;
        return end == End::kSuccess && !updated ? End::kFailure : end;
    }

    void Recover() {
        injector_.Stop();
        if (const std::string problem = run_.RunScenario("fault clear\nline plug\ndvr power on\n" +
                                                         std::string(kQuickUpdate));
            !problem.empty())
            Find(problem);
        std::optional<End> end;
        while (end != End::kSuccess && result_.cycles++ < kMostCycles)
            end = TryAnUpdate();
        result_.cycles = std::min(result_.cycles, kMostCycles);
        if (end != End::kSuccess && LacksAPart())
            result_.reopened = true;
        else if (end != End::kSuccess)
            Find(std::string("no update after power was cycled: ") +
                 (end ? NameOf(*end) : "no end"));
        CheckWindow();
        Close();
    }

    void Close() {
        // What may be left behind is checked below.
        run_.CloseAnyhow();
        if (run_.unit().program().running())
            Find("the program does not end: " + run_.unit().leftovers());
        else if (const int code = run_.unit().program().exit_code();
                 code != 0 && !(code == static_cast<int>(E_FAIL) && HasFailed(kCallsOfTheStart)))
            Find("the program ended with " + std::to_string(code));
        const Injections injections = injector_.injections();
        result_.injected = injections.injected.size();
        result_.counts[kCall] = kernel::CallCount();
        for (std::string& wrong :
             CheckFailures(run_.lines(), injections.failures, run_.unit().leftovers()))
            Find(std::move(wrong));
    }

    const Case& case_;
    WizardRun run_;
    Injector injector_;
    CarDriver driver_;
    ResponseProbe probe_;
    bool overdue_ = false;
    std::optional<kernel::Time> probed_after_;
    Result result_;
};

}  // namespace

Result RunCase(const Case& test_case, std::vector<std::string>* log) {
    Result result;
    {
        CaseRun running(test_case);
        result = running.Run();
        if (log != nullptr)
            *log = running.lines();
    }
    if (result.reopened && !RunCase({Named("quick", Flows()), {}, test_case.seed}).findings.empty())
        result.findings.push_back("no update after the program was started again");
    return result;
}

}  // namespace tests::campaign
