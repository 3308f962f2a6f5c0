#include "tests/campaign/failure_check.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <tuple>

namespace tests::campaign {

namespace {

using Lines = std::vector<std::string>;
using Failures = std::vector<CallFailure>;

// A line of failures.txt: what the program logs of a call that fails, without the prefix and with
// "#" for the error. Without a call it is what follows from a failure or from a driver that is
// missing; without a form it is about a call whose result the program ignores, or that it makes
// again. With "leaves" it is what one failure leaves open at most; of a call that the program makes
// again, what it leaves open when it fails again.
struct Row {
    std::string call;
    // The thread's calls just before, the latest first; or "in" and the function whose entry was
    // logged and whose exit was not. The first row that fits counts, and all others for the same.
    std::string where;
    std::string form;
};

const std::vector<Row>& Rows() {
    static const std::vector<Row> rows = [] {
        std::vector<Row> read;
        std::ifstream file(CAMPAIGN_FAILURES);
        for (Row row; std::getline(file, row.call, '|') && std::getline(file, row.where, '|') &&
                      std::getline(file, row.form);)
            read.push_back(row);
        return read;
    }();
    return rows;
}

constexpr char kLeaves[] = "leaves";
// How often a thread may repeat a call within a second while it fails. A flood of reports repaints
// the screen, with a dozen texts, up to 30 times.
constexpr int kMostRepeated = 500;

// A line of a failure in the form of a row, and its error; an empty form for any other line.
struct LogLine {
    explicit LogLine(const std::string& line) {
        if (line.find("fail!!!") == line.npos && line.find("Invalid Arguments!!!") == line.npos)
            return;
        const std::size_t begin = line.find('\t') + 1;
        form = line.substr(begin, line.rfind('(') - begin);
        constexpr std::string_view kCode = "Code(";
        if (const std::size_t at = form.find(kCode); at != form.npos) {
            const std::size_t number = at + kCode.size();
            error = form.substr(number, form.find(')', number) - number);
            form.replace(number, error.size(), "#");
        }
    }
    std::string form;
    std::string error;
};

bool IsInside(const Lines& lines, std::size_t end, const std::string& function) {
    while (end-- > 0)
        if (lines[end] == "[Tolvane.exe] +++" + function ||
            lines[end] == "[Tolvane.exe] ---" + function)
            return lines[end].find("+++") != std::string::npos;
    return false;
}

bool Fits(const Row& row, const CallFailure& failure, const Lines& lines) {
    return row.call == failure.call.call &&
           (row.where.starts_with("in ") ? IsInside(lines, failure.lines, row.where.substr(3))
                                         : failure.before.starts_with(row.where));
}

void CheckLog(const Lines& lines, const Failures& failures, Lines& wrong) {
    const std::vector<LogLine> log(lines.begin(), lines.end());
    for (std::size_t at = 0; at < log.size(); ++at)
        if (!log[at].form.empty() && std::ranges::count(Rows(), log[at].form, &Row::form) == 0)
            wrong.push_back("a failure is logged in no known form: " + lines[at]);
    const bool without_picture = std::ranges::any_of(
        failures, [](const CallFailure& each) { return each.call.call == "LoadImageW"; });
    for (const CallFailure& failure : failures) {
        const auto row = std::ranges::find_if(
            Rows(), [&](const Row& each) { return Fits(each, failure, lines); });
        // The grey box in place of a picture is drawn with a brush of its own.
        if (row == Rows().end() || row->form.empty() ||
            (row->where == "FillRect" && without_picture))
            continue;
        const std::string error = std::to_string(failure.call.error);
        const auto reports = [&](const LogLine& line) {
            return line.error == error && std::ranges::any_of(Rows(), [&](const Row& each) {
                       return each.call == row->call && each.where == row->where &&
                              each.form == line.form;
                   });
        };
        if (std::none_of(log.begin() + std::ptrdiff_t(failure.lines), log.end(), reports))
            wrong.push_back("call " + std::to_string(failure.call.number_of_all) + ", " +
                            std::string(failure.call.call) + ", failed with error " + error +
                            " and was not logged");
    }
}

void CheckPace(const Failures& failures, Lines& wrong) {
    std::map<std::tuple<DWORD, std::string_view, std::chrono::seconds>, int> repeated;
    std::set<std::string> calls;
    for (const auto& [call, before, lines] : failures)
        // The receive thread's pause after a read is 1 ms, and so is the platform's.
        if (call.call != "ReadFile" &&
            ++repeated[{call.thread, call.call, floor<std::chrono::seconds>(call.time)}] >
                kMostRepeated)
            calls.emplace(call.call);
    for (const std::string& call : calls)
        wrong.push_back(call + " was repeated without a pause while it failed");
}

bool IsMadeAgain(const std::string& call) {
    return std::ranges::any_of(Rows(), [&](const Row& row) {
        return row.call == call && row.where == call && row.form.empty();
    });
}

void CheckLeftovers(const std::string& leftovers, const Failures& failures, Lines& wrong) {
    std::map<std::string, int> allowed;
    std::set<std::string> made_again;
    for (const CallFailure& failure : failures) {
        const std::string call(failure.call.call);
        if (IsMadeAgain(call) &&
            (!failure.before.starts_with(call) || !made_again.insert(call).second))
            continue;
        for (const Row& row : Rows())
            if (row.call == call && row.where == kLeaves)
                allowed[row.form.substr(2)] += row.form.front() - '0';
    }
    std::istringstream text(leftovers);
    std::string what;
    for (int count = 0; text >> count && std::getline(text >> std::ws, what, ',');)
        if (count > allowed[what])
            wrong.push_back("left after the end: " + std::to_string(count) + " " + what + " of " +
                            std::to_string(allowed[what]) + " allowed");
}

}  // namespace

Lines CheckFailures(const Lines& lines, const Failures& failures, const std::string& leftovers) {
    Lines wrong;
    CheckLeftovers(leftovers, failures, wrong);
    CheckLog(lines, failures, wrong);
    CheckPace(failures, wrong);
    return wrong;
}

}  // namespace tests::campaign
