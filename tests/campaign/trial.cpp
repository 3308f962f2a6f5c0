#include "tests/campaign/trial.h"

#include <algorithm>

#include "platform/kernel/scheduler.h"
#include "tests/campaign/injector.h"
#include "tests/campaign/response_probe.h"
#include "unit/probe/wizard_probe.h"

namespace tests::campaign {

namespace {

using namespace std::chrono_literals;
using End = CarDriver::End;

// How often external power is cycled at most; the driver of a car tries once more.
constexpr std::size_t kMostCycles = 2;

// Calls without which the program does not start.
constexpr std::string_view kCallsOfTheStart[] = {"CreateMutexW", "CreateWindowExW", "LoadStringW",
                                                 "RegisterClassW"};
// What the program says, or does not say, when a part of it could not be started.
constexpr const char* kMissingParts[] = {
    "\tCMainFrame::OnCreate, UART_Init() fail!!!", "\tUART_Init, CreateThread() fail!!!",
    "\tCMainFrame::OnCreate, g_pCPowerDetector->Init() fail!!!",
    "\tCPowerDetector::Init, CreateThread() fail!!!"};
constexpr std::string_view kPartsInSilence[] = {"RegisterWindowMessageW", "ShowWindow"};

class Trial {
  public:
    explicit Trial(const Case& trial)
        : case_(trial), run_(OptionsFor(trial)), injector_(trial, run_, operator_), driver_(run_) {
        driver_.OnLook([this] { Watch(); });
    }

    Result Run() {
        const auto end = case_.flow->drive(run_, driver_);
        if (case_.faults.empty() && end != case_.flow->end)
            Find(std::string("the flow ends in ") + (end ? NameOf(*end) : "nothing"));
        LookAtTheWindow();
        const Injections seen = injector_.seen();
        verdict_.counts = {0, seen.frames, seen.bytes};
        // Calls that have yet to fail do so while the program ends.
        if (Closed() || case_.faults.empty() || seen.injected.size() < case_.faults.size())
            Close();
        else
            Recover();
        return std::move(verdict_);
    }

    std::vector<std::string> lines() const { return run_.lines(); }

  private:
    static unit::VirtualUnit::Options OptionsFor(const Case& trial) {
        unit::VirtualUnit::Options options;
        options.kernel.seed = trial.seed;
        options.dvr.dvr.seed = trial.seed;
        trial.flow->prepare(options);
        return options;
    }

    void Find(std::string finding) { verdict_.findings.push_back(std::move(finding)); }

    bool Closed() { return !run_.unit().program().running() || injector_.seen().Injected(kCloses); }

    bool HasFailed(std::span<const std::string_view> calls) const {
        return std::ranges::any_of(injector_.seen().failures, [&](const FailureSeen& failure) {
            return std::ranges::find(calls, failure.call.call) != calls.end();
        });
    }

    // Whether something is missing that the program makes only as it starts.
    bool LacksAPart() const {
        return HasFailed(kPartsInSilence) ||
               std::ranges::any_of(kMissingParts,
                                   [this](const char* line) { return run_.Logged(line); });
    }

    // After each look of the driver.
    void Watch() {
        const auto wizard = unit::ReadWizard();
        if (wizard && (wizard->step < -1 || wizard->step > 6))
            Find("the step is " + std::to_string(wizard->step));
        if (const auto last = injector_.seen().last; last && last != asked_after_) {
            asked_after_ = last;
            probe_.Ask();
        }
        if (probe_.Overdue())
            overdue_ = true;
    }

    void LookAtTheWindow() {
        probe_.Ask();
        run_.RunUntil([this] { return !probe_.Waiting(); }, ResponseProbe::kLongestWait + 1s);
        if (probe_.Waiting() || overdue_)
            Find("the window does not answer");
        if (!run_.unit().program().running() && !injector_.seen().Injected(kCloses) &&
            !HasFailed(kCallsOfTheStart))
            Find("the program has ended by itself");
    }

    void Recover() {
        injector_.Stop();
        // The unit and the DVR as they should be, with a quick update.
        for (const char* const command : {"fault clear", "line plug", "dvr update-time 30s",
                                          "fault dvr jump-back 3 96", "dvr power on"})
            if (const auto outcome = unit::UnitCommands().Execute(operator_, command);
                !outcome.done)
                Find(command + (": " + outcome.text));
        std::optional<End> end;
        while (end != End::kSuccess && verdict_.cycles < kMostCycles) {
            ++verdict_.cycles;
            run_.unit().dvr().dvr()->SetFirmwareVersion(dvrsim::Options().firmware_version);
            driver_.CyclePower();
            end = driver_.Drive(kLongestDrive);
            if (end == End::kSuccess &&
                run_.unit().dvr().dvr()->FirmwareVersion() != dvrsim::kNewVersion)
                end = End::kFailure;
        }
        if (end != End::kSuccess && LacksAPart())
            verdict_.reopened = true;
        else if (end != End::kSuccess)
            Find(std::string("no update after power was cycled: ") +
                 (end ? NameOf(*end) : "no end"));
        LookAtTheWindow();
        Close();
    }

    void Close() {
        if (!run_.CloseAnyhow()) {
            Find("the program does not end: " + run_.unit().leftovers());
        } else {
            const int code = run_.unit().program().exit_code();
            if (code != 0 && !(code == static_cast<int>(E_FAIL) && HasFailed(kCallsOfTheStart)))
                Find("the program ended with " + std::to_string(code));
        }
        const Injections seen = injector_.seen();
        verdict_.injected = seen.injected.size();
        verdict_.counts[kCall] = platform::kernel::CallCount();
        if (const std::string left = TooMuchLeft(run_.unit().leftovers(), seen.failures);
            !left.empty())
            Find("left after the end:" + left);
        for (std::string& wrong : CheckLog(run_.lines(), seen.failures))
            Find(std::move(wrong));
        for (std::string& finding : verdict_.findings)
            for (const FailureSeen& failure : seen.failures)
                finding += " [" + std::string(failure.call.call) + " failed]";
    }

    const Case& case_;
    WizardRun run_;
    unit::Operator operator_{run_.unit(), ""};
    Injector injector_;
    CarDriver driver_;
    ResponseProbe probe_;
    bool overdue_ = false;
    std::optional<platform::kernel::Time> asked_after_;
    Result verdict_;
};

}  // namespace

Result RunCase(const Case& trial, std::vector<std::string>* log) {
    Result result;
    {
        Trial running(trial);
        result = running.Run();
        if (log != nullptr)
            *log = running.lines();
    }
    if (result.reopened &&
        !RunCase({Named("flow", "quick", Flows()), trial.seed, {}}).findings.empty())
        result.findings.push_back("no update after the program was opened again");
    return result;
}

}  // namespace tests::campaign
