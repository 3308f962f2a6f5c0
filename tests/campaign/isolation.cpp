#include "tests/campaign/isolation.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

namespace tests::campaign {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::string_view kMark = "\n== verdict ==\n";
// How much of what a process that died has said is shown.
constexpr std::size_t kLastWords = 3000;

std::string WriteVerdict(const Verdict& verdict) {
    std::ostringstream text;
    text << kMark << verdict.struck << ' ' << verdict.cycles << ' ' << verdict.reopened << ' '
         << verdict.calls << ' ' << verdict.frames << ' ' << verdict.bytes << '\n';
    for (const std::string& finding : verdict.findings)
        text << finding << '\n';
    return text.str();
}

Verdict ReadVerdict(const std::string& output) {
    std::istringstream text(output.substr(output.rfind(kMark) + kMark.size()));
    Verdict verdict;
    text >> verdict.struck >> verdict.cycles >> verdict.reopened >> verdict.calls >>
        verdict.frames >> verdict.bytes;
    text.ignore();
    for (std::string line; std::getline(text, line);)
        verdict.findings.push_back(line);
    return verdict;
}

[[noreturn]] void BeChild(const Case& trial, int output) {
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    Verdict verdict = Try(trial);
#ifdef __SANITIZE_ADDRESS__
    if (__lsan_do_recoverable_leak_check() != 0)
        verdict.findings.push_back("memory is left after the end");
#endif
    const std::string text = WriteVerdict(verdict);
    for (std::size_t written = 0; written < text.size();) {
        const ssize_t count = write(output, text.data() + written, text.size() - written);
        if (count <= 0)
            break;
        written += static_cast<std::size_t>(count);
    }
    _exit(0);
}

struct Child {
    const Case* trial;
    pid_t process;
    int output;
    Clock::time_point deadline;
    std::string said{};
};

Child StartChild(const Case& trial) {
    int ends[2] = {};
    if (pipe(ends) != 0)
        std::abort();
    const pid_t process = fork();
    if (process < 0)
        std::abort();
    if (process == 0) {
        close(ends[0]);
        BeChild(trial, ends[1]);
    }
    close(ends[1]);
    return {&trial, process, ends[0], Clock::now() + kTimeOfTheHost};
}

// Reads what there is; false at the end.
bool HearChild(Child& child) {
    char buffer[4096];
    const ssize_t count = read(child.output, buffer, sizeof buffer);
    if (count > 0)
        child.said.append(buffer, static_cast<std::size_t>(count));
    return count > 0;
}

Verdict EndChild(const Child& child, bool too_late) {
    if (too_late)
        kill(child.process, SIGKILL);
    close(child.output);
    int status = 0;
    waitpid(child.process, &status, 0);
    if (child.said.find(kMark) != std::string::npos && !too_late)
        return ReadVerdict(child.said);
    Verdict verdict;
    const std::string last_words = child.said.size() > kLastWords
                                       ? child.said.substr(child.said.size() - kLastWords)
                                       : child.said;
    verdict.findings.push_back(
        (too_late ? "it hangs"
         : WIFSIGNALED(status)
             ? std::string("it died of signal ") + std::to_string(WTERMSIG(status))
             : "it ended with " + std::to_string(WEXITSTATUS(status))) +
        "; it said last:\n" + last_words);
    return verdict;
}

}  // namespace

void TryApart(const std::vector<Case>& cases, std::size_t side_by_side,
              const std::function<void(const Case&, const Verdict&)>& done) {
    // The fonts that the first run reads serve all the others.
    static const Verdict warm = Try({FindRoad("quick"), 1, {}});
    std::vector<Child> children;
    for (auto next = cases.begin(); next != cases.end() || !children.empty();) {
        while (next != cases.end() && children.size() < side_by_side)
            children.push_back(StartChild(*next++));
        std::vector<pollfd> outputs;
        for (const Child& child : children)
            outputs.push_back({child.output, POLLIN, 0});
        poll(outputs.data(), outputs.size(), 1000);
        for (std::size_t index = children.size(); index-- > 0;) {
            Child& child = children[index];
            const bool ended = outputs[index].revents != 0 && !HearChild(child);
            const bool too_late = Clock::now() > child.deadline;
            if (!ended && !too_late)
                continue;
            done(*child.trial, EndChild(child, too_late && !ended));
            children.erase(children.begin() + static_cast<std::ptrdiff_t>(index));
        }
    }
}

}  // namespace tests::campaign
