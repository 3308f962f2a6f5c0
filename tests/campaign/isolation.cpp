#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <map>
#include <nlohmann/json.hpp>

#include "tests/campaign/case_run.h"

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

namespace tests::campaign {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(Result, findings, injected, cycles, reopened, counts)

namespace {

using nlohmann::json;

constexpr std::string_view kMark = "\n== result ==\n";
constexpr unsigned kSecondsOfTheHost = 120;
// How much of the output of a process that died is shown, in bytes.
constexpr std::size_t kLastOutput = 3000;

[[noreturn]] void BeChild(const Case& test_case, int output) {
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    alarm(kSecondsOfTheHost);
    Result result = RunCase(test_case);
#ifdef __SANITIZE_ADDRESS__
    if (__lsan_do_recoverable_leak_check() != 0)
        result.findings.push_back("memory is left after the end");
#endif
    const std::string text =
        std::string(kMark) + json(result).dump(-1, ' ', false, json::error_handler_t::replace);
    _exit(write(output, text.data(), text.size()) == static_cast<ssize_t>(text.size()) ? 0 : 1);
}

struct Child {
    const Case* test_case;
    int output;
};

std::pair<pid_t, Child> StartChild(const Case& test_case) {
    const int output = memfd_create("output", MFD_CLOEXEC);
    const pid_t process = fork();
    if (output < 0 || process < 0)
        std::abort();
    if (process == 0)
        BeChild(test_case, output);
    return {process, {&test_case, output}};
}

std::string HowItEnded(int status) {
    if (!WIFSIGNALED(status))
        return "it ended with " + std::to_string(WEXITSTATUS(status));
    return WTERMSIG(status) == SIGALRM ? "it hangs"
                                       : "it died of signal " + std::to_string(WTERMSIG(status));
}

Result ResultOf(const Child& child, int status) {
    std::string output(static_cast<std::size_t>(lseek(child.output, 0, SEEK_END)), '\0');
    output.resize(static_cast<std::size_t>(pread(child.output, output.data(), output.size(), 0)));
    close(child.output);
    const std::size_t mark = output.rfind(kMark);
    if (status == 0 && mark != std::string::npos)
        return json::parse(output.substr(mark + kMark.size())).get<Result>();
    output.erase(0, output.size() - std::min(output.size(), kLastOutput));
    return {.findings = {HowItEnded(status) + "; its last output:\n" + output}};
}

}  // namespace

void RunIsolated(const std::vector<Case>& cases, std::size_t side_by_side,
                 const std::function<void(const Case&, const Result&)>& done) {
    // The fonts that the first run reads serve all the others.
    static const Result warm = RunCase(ParseCase("quick"));
    std::map<pid_t, Child> children;
    for (auto next = cases.begin(); next != cases.end() || !children.empty();) {
        if (next != cases.end() && children.size() < side_by_side) {
            children.insert(StartChild(*next++));
            continue;
        }
        int status = 0;
        if (const auto child = children.extract(waitpid(-1, &status, 0)))
            done(*child.mapped().test_case, ResultOf(child.mapped(), status));
    }
}

}  // namespace tests::campaign
