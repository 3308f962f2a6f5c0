#include "tests/campaign/trial.h"

#include <algorithm>

#include "platform/kernel/scheduler.h"
#include "tests/campaign/answer_probe.h"
#include "tests/campaign/leftovers.h"
#include "tests/campaign/log_check.h"
#include "tests/campaign/striker.h"
#include "unit/probe/wizard_probe.h"

namespace tests::campaign {

namespace {

using namespace std::chrono_literals;
using End = CarDriver::End;

constexpr int kFirstStep = -1;
constexpr int kLastStep = 6;

// How often external power is cycled at most; the driver of a car tries once more.
constexpr std::size_t kMostCycles = 2;

// Calls without which the program does not start: what it then returns.
constexpr std::string_view kCallsOfTheStart[] = {"CreateMutexW", "CreateWindowExW", "LoadStringW",
                                                 "RegisterClassW"};

// What the program says, or does not say, when a part of it could not be started.
constexpr const char* kMissingParts[] = {
    "\tCMainFrame::OnCreate, UART_Init() fail!!!", "\tUART_Init, CreateThread() fail!!!",
    "\tCMainFrame::OnCreate, g_pCPowerDetector->Init() fail!!!",
    "\tCPowerDetector::Init, CreateThread() fail!!!"};
constexpr std::string_view kPartsInSilence[] = {"RegisterWindowMessageW", "ShowWindow"};
constexpr int kFailedStart = static_cast<int>(E_FAIL);

class Trial {
  public:
    explicit Trial(const Case& trial)
        : case_(trial), run_(OptionsFor(trial)), striker_(trial, run_), driver_(run_) {
        driver_.OnLook([this] { Watch(); });
    }

    // Drives the road and closes the window.
    std::optional<End> Drive() {
        const auto end = case_.road->drive(run_, driver_);
        run_.CloseAnyhow();
        return end;
    }

    Verdict Run() {
        const auto end = case_.road->drive(run_, driver_);
        if (case_.faults.empty() && end != case_.road->end)
            Find(std::string("the road ends in ") + (end ? NameOf(*end) : "nothing"));
        LookAtTheWindow();
        verdict_.frames = striker_.frames();
        verdict_.bytes = striker_.bytes();
        // Calls that have yet to fail do so while the program ends.
        if (Closed() || case_.faults.empty() || striker_.struck() < case_.faults.size())
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
        trial.road->prepare(options);
        return options;
    }

    void Find(std::string finding) { verdict_.findings.push_back(std::move(finding)); }

    bool Closed() { return !run_.unit().program().running() || striker_.Struck(kCloses); }

    bool MayNotHaveStarted() const {
        return std::ranges::any_of(striker_.failures(), [](const FailureSeen& failure) {
            return std::ranges::find(kCallsOfTheStart, failure.call.call) !=
                   std::end(kCallsOfTheStart);
        });
    }

    // Whether something is missing that the program makes only as it starts.
    bool LacksAPart() const {
        return std::ranges::any_of(kMissingParts,
                                   [this](const char* line) { return run_.Logged(line); }) ||
               std::ranges::any_of(striker_.failures(), [](const FailureSeen& failure) {
                   return std::ranges::find(kPartsInSilence, failure.call.call) !=
                          std::end(kPartsInSilence);
               });
    }

    // After each look of the driver.
    void Watch() {
        const auto wizard = unit::ReadWizard();
        if (wizard && (wizard->step < kFirstStep || wizard->step > kLastStep))
            Find("the step is " + std::to_string(wizard->step));
        if (const auto last = striker_.last(); last && last != asked_after_) {
            asked_after_ = last;
            probe_.Ask();
        }
        if (probe_.Overdue())
            overdue_ = true;
    }

    void LookAtTheWindow() {
        probe_.Ask();
        const auto limit =
            std::chrono::duration_cast<std::chrono::seconds>(AnswerProbe::kLongestWait);
        run_.RunUntil([this] { return !probe_.Waiting(); }, limit + 1s);
        if (probe_.Waiting() || overdue_)
            Find("the window does not answer");
        if (!run_.unit().program().running() && !striker_.Struck(kCloses) && !MayNotHaveStarted())
            Find("the program has ended by itself");
    }

    // The unit and the DVR as they should be.
    void Mend() {
        striker_.Stop();
        run_.unit().drivers().Mend();
        run_.unit().SetPlugged(true);
        dvrsim::Dvr& dvr = *run_.unit().dvr().dvr();
        dvrsim::Faults healthy;
        dvrsim::Timings timings = dvr.GetTimings();
        Hurry(timings, healthy);
        dvr.SetFaults(healthy);
        dvr.SetTimings(timings);
        dvr.PowerOn();
    }

    void Recover() {
        Mend();
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
            if (code != 0 && !(code == kFailedStart && MayNotHaveStarted()))
                Find("the program ended with " + std::to_string(code));
        }
        const std::vector<FailureSeen> failures = striker_.failures();
        verdict_.struck = striker_.struck();
        verdict_.calls = platform::kernel::CallCount();
        std::vector<std::string_view> names;
        for (const FailureSeen& failure : failures)
            names.push_back(failure.call.call);
        if (const std::string left = TooMuchLeft(run_.unit().leftovers(), names); !left.empty())
            Find("left after the end: " + left);
        for (std::string& wrong : CheckLog(run_.lines(), failures))
            Find(std::move(wrong));
        for (std::string& finding : verdict_.findings)
            for (const std::string_view name : names)
                finding += " [" + std::string(name) + " failed]";
    }

    const Case& case_;
    WizardRun run_;
    Striker striker_;
    CarDriver driver_;
    AnswerProbe probe_;
    bool overdue_ = false;
    std::optional<platform::kernel::Time> asked_after_;
    Verdict verdict_;
};

}  // namespace

Verdict Try(const Case& trial, std::vector<std::string>* log) {
    Verdict verdict;
    {
        Trial running(trial);
        verdict = running.Run();
        if (log != nullptr)
            *log = running.lines();
    }
    if (verdict.reopened) {
        const Case quick{FindRoad("quick"), trial.seed, {}};
        if (Trial(quick).Drive() != quick.road->end)
            verdict.findings.push_back("no update after the program was opened again");
    }
    return verdict;
}

}  // namespace tests::campaign
