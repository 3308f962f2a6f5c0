// fault-campaign: see tools/fault-campaign.
#include <charconv>
#include <chrono>
#include <cstdio>
#include <functional>
#include <iostream>
#include <map>
#include <string>
#include <string_view>
#include <thread>

#include "tests/campaign/isolation.h"
#include "tests/campaign/plan.h"

namespace {

using namespace tests::campaign;

constexpr int kFindings = 1;
constexpr int kWrongUsage = 2;

struct Request {
    std::string case_text;
    std::vector<const Road*> roads;
    std::vector<const FaultKind*> kinds;
    std::uint64_t every = 0;
    Stretch stretch;
    std::uint64_t pairs = 0;
    std::uint64_t seed = 1;
    std::uint64_t jobs = std::max(1U, std::thread::hardware_concurrency());
};

struct WrongUsage {
    std::string line;
};

std::uint64_t ReadNumber(const std::string& option, std::string_view text) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size())
        throw WrongUsage{option + " needs a number, not '" + std::string(text) + "'"};
    return number;
}

template <class Rows>
auto ReadName(const std::string& what, const std::string& name, const Rows& rows) {
    std::string list;
    for (const auto& row : rows) {
        if (row.name == name)
            return &row;
        list += (list.empty() ? "" : ", ") + std::string(row.name);
    }
    throw WrongUsage{"there is no " + what + " '" + name + "'; allowed is one of " + list};
}

Request ReadRequest(int count, char** arguments) {
    Request request;
    for (int index = 1; index < count; ++index) {
        const std::string option = arguments[index];
        if (index + 1 == count)
            throw WrongUsage{"'" + option + "' is no option, or has no value"};
        const std::string value = arguments[++index];
        if (option == "--case")
            request.case_text = value;
        else if (option == "--road")
            request.roads.push_back(ReadName("road", value, Roads()));
        else if (option == "--kind")
            request.kinds.push_back(ReadName("fault", value, FaultKinds()));
        else if (option == "--every")
            request.every = ReadNumber(option, value);
        else if (option == "--from")
            request.stretch.first = std::max<std::uint64_t>(1, ReadNumber(option, value));
        else if (option == "--to")
            request.stretch.last = ReadNumber(option, value);
        else if (option == "--pairs")
            request.pairs = ReadNumber(option, value);
        else if (option == "--seed")
            request.seed = ReadNumber(option, value);
        else if (option == "--jobs")
            request.jobs = std::max<std::uint64_t>(1, ReadNumber(option, value));
        else
            throw WrongUsage{
                "unknown option '" + option +
                "'; allowed are --case, --road, --kind, --every, --from, --to, --pairs, "
                "--seed and --jobs"};
    }
    if (request.roads.empty())
        for (const Road& road : Roads())
            request.roads.push_back(&road);
    if (request.kinds.empty())
        for (const FaultKind& kind : FaultKinds())
            request.kinds.push_back(&kind);
    return request;
}

constexpr std::chrono::seconds kProgress(30);

// What came of one sort of cases.
struct Count {
    std::size_t cases = 0;
    std::size_t struck = 0;  // those all of whose faults came
    std::size_t recovered = 0;
    std::size_t twice = 0;  // that needed a second cycle of power
    std::size_t reopened = 0;
    std::size_t findings = 0;
};

class Campaign {
  public:
    void Note(const std::string& sort, const Case& trial, const Verdict& verdict) {
        Count& count = counts_[sort];
        ++count.cases;
        TellProgress();
        count.struck += verdict.struck >= trial.faults.size() ? 1 : 0;
        count.recovered += verdict.cycles > 0 ? 1 : 0;
        count.twice += verdict.cycles > 1 ? 1 : 0;
        count.reopened += verdict.reopened ? 1 : 0;
        count.findings += verdict.findings.empty() ? 0 : 1;
        for (const std::string& finding : verdict.findings)
            Tell(trial, finding);
    }

    void Tell(const Case& trial, const std::string& finding) {
        found_ = true;
        std::printf("FINDING  %s: %s\n", ToText(trial).c_str(), finding.c_str());
        std::fflush(stdout);
    }

    void TellSurvey(const std::vector<Course>& courses) const {
        std::printf("%-20s %8s %8s %8s\n", "road", "calls", "frames", "bytes");
        for (const Course& course : courses)
            std::printf("%-20s %8ju %8ju %8ju\n", std::string(course.road->name).c_str(),
                        std::uintmax_t{course.calls}, std::uintmax_t{course.frames},
                        std::uintmax_t{course.bytes});
        std::fflush(stdout);
    }

    void TellCounts() const {
        std::printf("%-20s %8s %8s %9s %6s %8s %8s\n", "fault", "cases", "struck", "recovered",
                    "twice", "reopened", "findings");
        Count all;
        for (const auto& [sort, count] : counts_) {
            TellCount(sort, count);
            all.cases += count.cases;
            all.struck += count.struck;
            all.recovered += count.recovered;
            all.twice += count.twice;
            all.reopened += count.reopened;
            all.findings += count.findings;
        }
        TellCount("all", all);
        std::printf(
            "%.0f s\n",
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count());
    }

    bool found() const { return found_; }

  private:
    void TellProgress() {
        ++done_;
        if (const auto now = std::chrono::steady_clock::now(); now - told_ > kProgress) {
            told_ = now;
            std::fprintf(stderr, "%zu cases done\n", done_);
        }
    }

    static void TellCount(const std::string& sort, const Count& count) {
        std::printf("%-20s %8zu %8zu %9zu %6zu %8zu %8zu\n", sort.c_str(), count.cases,
                    count.struck, count.recovered, count.twice, count.reopened, count.findings);
    }

    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::chrono::steady_clock::time_point told_ = start_;
    std::size_t done_ = 0;
    std::map<std::string, Count> counts_;
    bool found_ = false;
};

int RunOne(const std::string& text) {
    std::string problem;
    const auto trial = ParseCase(text, problem);
    if (!trial)
        throw WrongUsage{problem};
    std::vector<std::string> log;
    const Verdict verdict = Try(*trial, &log);
    for (const std::string& line : log)
        std::printf("%s\n", line.c_str());
    std::printf("%s: %zu of %zu faults came; power was cycled %zu times\n", ToText(*trial).c_str(),
                verdict.struck, trial->faults.size(), verdict.cycles);
    for (const std::string& finding : verdict.findings)
        std::printf("FINDING  %s\n", finding.c_str());
    return verdict.findings.empty() ? 0 : kFindings;
}

int RunCampaign(const Request& request) {
    Campaign campaign;
    const auto courses = Survey(
        request.roads, request.jobs,
        [&](const Case& trial, const std::string& finding) { campaign.Tell(trial, finding); });
    campaign.TellSurvey(courses);
    const auto seed = static_cast<std::uint32_t>(request.seed);
    if (request.every > 0)
        TryApart(Sweep(courses, request.kinds, request.every, request.stretch, seed), request.jobs,
                 [&](const Case& trial, const Verdict& verdict) {
                     campaign.Note(std::string(trial.faults.front().kind->name), trial, verdict);
                 });
    if (request.pairs > 0)
        TryApart(Pairs(courses, request.kinds, request.pairs, seed), request.jobs,
                 [&](const Case& trial, const Verdict& verdict) {
                     campaign.Note("pairs", trial, verdict);
                 });
    campaign.TellCounts();
    return campaign.found() ? kFindings : 0;
}

}  // namespace

int main(int count, char** arguments) {
    try {
        Request request = ReadRequest(count, arguments);
        if (!request.case_text.empty())
            return RunOne(request.case_text);
        if (request.every == 0 && request.pairs == 0) {
            request.every = 100;
            request.pairs = 500;
        }
        return RunCampaign(request);
    } catch (const WrongUsage& wrong) {
        std::cerr << "fault-campaign: " << wrong.line << '\n';
        return kWrongUsage;
    }
}
