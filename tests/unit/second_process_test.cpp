#include <poll.h>
#include <sys/wait.h>

#include <atomic>
#include <thread>

#include "control/socket_server.h"
#include "tests/support/numbers.h"
#include "tests/unit/unit_process.h"

// A second process of tolvane while the first one runs.

namespace {

using tests::Words;

class SecondProcess : public tests::UnitProcess {
  protected:
    // True when a unit has the control socket in time. Disconnects that unit's power.
    bool WaitForSocket() {
        return WaitUntil([this] { return Ctl({"power", "off"}) == 0; });
    }
    // The exit status of a copy that must end by itself.
    int WaitForEnd(pid_t unit) {
        const bool ended = WaitUntil([unit] {
            siginfo_t info{};
            return waitid(P_PID, unit, &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
                   info.si_pid == unit;
        });
        return ended ? Wait(unit) : End(unit, SIGKILL);
    }
};

TEST_F(SecondProcess, BringsTheFirstForwardAndEndsWithStatusOne) {
    setenv("SDL_VIDEODRIVER", "dummy", 1);
    setenv("DISPLAY", ":0", 1);
    const pid_t first = StartAndWait("first-", {});
    for (const Words& options : {Words{"--headless"}, Words{}}) {
        EXPECT_EQ(WaitForEnd(StartUnit("second-", options)), 1);
        EXPECT_EQ(Read("second-err"),
                  "tolvane: another unit runs already; its window was brought forward\n");
        EXPECT_EQ(Read("second-out"), "");
    }
    // A unit with another name does not count.
    EXPECT_EQ(End(StartAndWait("other-", {"--headless", "--unit", "garage-2"})), 0);
    EXPECT_EQ(End(first), 0);
    EXPECT_EQ(Read("first-err"), "");
}

TEST_F(SecondProcess, OneOfTwoStartedTogetherRuns) {
    for (int round = 0; round < 5; ++round) {
        const pid_t units[] = {StartUnit("0-"), StartUnit("1-")};
        ASSERT_TRUE(WaitUntil([&] { return Stands("0-") || Stands("1-"); }));
        const int runs = Stands("0-") ? 0 : 1;
        const std::string other = std::to_string(1 - runs) + "-";
        EXPECT_EQ(WaitForEnd(units[1 - runs]), 1) << Read(other + "err");
        EXPECT_FALSE(Stands(other));
        EXPECT_EQ(End(units[runs]), 0);
    }
}

// tools/soak sets the variable.
TEST_F(SecondProcess, RunsAfterTheFirstWasKilled) {
    const std::uint64_t rounds = tests::NumberFrom("TOLVANE_KILLS", 12);
    for (std::uint64_t round = 0; round < rounds; ++round) {
        SCOPED_TRACE(round);
        const pid_t first = StartUnit("first-");
        // At times from before its socket to after its window.
        std::this_thread::sleep_for(std::chrono::microseconds(round * 84'000 / rounds));
        const pid_t second = round % 2 == 0 ? StartUnit("second-") : 0;
        EXPECT_EQ(End(first, SIGKILL), -SIGKILL);
        // A copy may learn of the window just before the first is killed.
        const pid_t next = second != 0 ? second : StartUnit("second-");
        EXPECT_TRUE(WaitUntil([&] { return Stands("second-") || !Read("second-err").empty(); }));
        EXPECT_EQ(End(next), Stands("second-") ? 0 : 1) << Read("second-err");
    }
}

TEST_F(SecondProcess, IgnoresAFirstThatHangsAndTakesItsSocketLater) {
    const pid_t first = StartAndWait("first-");
    kill(first, SIGSTOP);
    const pid_t second = StartAndWait("second-");
    EXPECT_EQ(End(first, SIGKILL), -SIGKILL);
    EXPECT_TRUE(WaitForSocket());
    EXPECT_TRUE(WaitUntil(
        [this] { return Read("second-out").find("AC_LINE_OFFLINE") != std::string::npos; }));
    // The second is the first now.
    EXPECT_EQ(WaitForEnd(StartUnit("third-")), 1);
    EXPECT_EQ(End(second), 0);
    EXPECT_EQ(Read("second-err"), "");
}

// What the test replies as the first unit.
struct Replies {
    const char* object = "mutex";
    int windowless_questions = 0;  // before "window" has a number
    const char* forward = "yes";
    bool hangs_up = false;  // instead of the first answer about a window
};

class TestFirst {
    using Id = control::SocketServer::ClientId;

  public:
    explicit TestFirst(const Replies& replies) : replies_(replies) {
        std::string problem;
        bool taken = false;
        auto claim = control::SocketClaim::Make("unit", taken, problem);
        EXPECT_TRUE(claim) << problem;
        control::SocketServer::Handlers handlers{
            [this](Id id, const control::Request& request) { Reply(id, request.line); }, [](Id) {}};
        server_.emplace(*std::move(claim), handlers);
        thread_ = std::thread([this] {
            while (!ending_) {
                pollfd watched{server_->descriptor(), POLLIN, 0};
                poll(&watched, 1, 10);
                server_->HandleReady();
            }
            server_.reset();
        });
    }
    ~TestFirst() {
        ending_ = true;
        thread_.join();
    }

    std::atomic<int> questions{0};
    std::atomic<int> window_questions{0};
    std::atomic<int> forwards{0};

  private:
    void Reply(Id id, const std::string& line) {
        ++questions;
        if (line == "other-process object Tolvane")
            return Say(id, replies_.object);
        if (line == "other-process window class Tolvane") {
            if (replies_.hangs_up)
                ending_ = true;
            return Say(id, window_questions++ < replies_.windowless_questions ? "0" : "305419896");
        }
        if (line == "other-process forward 305419896 owned") {
            ++forwards;
            return Say(id, replies_.forward);
        }
        Say(id, "none");
    }
    void Say(Id id, const char* answer) {
        if (answer)
            server_->SendOutcome(id, control::Done(answer));
    }

    const Replies replies_;
    std::optional<control::SocketServer> server_;
    std::atomic<bool> ending_{false};
    std::thread thread_;
};

TEST_F(SecondProcess, EndsOrRunsAccordingToTheFirstsReplies) {
    constexpr int kNever = 1000;
    const struct {
        const char* what;
        Replies replies;
        bool runs;
        int windows_asked;
        int forwards;
        double earliest = 20;  // time of its window; its clock begins at 20
    } cases[] = {
        {"the window comes late", {.windowless_questions = 7}, false, 8, 1},
        {"the window never comes", {.windowless_questions = kNever}, true, 25, 0, 22.5},
        {"the window cannot come forward", {.forward = "no"}, true, 25, 25},
        {"it ends while it is asked", {.hangs_up = true}, true, 1, 0},
        {"the name is free", {.object = "none"}, true, 0, 0},
        {"its replies make no sense", {.object = "\x01?"}, true, 0, 0},
        {"it never replies", {.object = nullptr}, true, 0, 0},
        {"it hangs later", {.forward = nullptr}, true, 1, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        TestFirst first(c.replies);
        const pid_t second = StartUnit("second-");
        if (c.runs) {
            ASSERT_TRUE(WaitForWindow("second-")) << Read("second-err");
            EXPECT_GE(std::stod(Read("second-out")), c.earliest);
            EXPECT_TRUE(!c.replies.hangs_up || WaitForSocket());
            EXPECT_EQ(End(second), 0);
            EXPECT_EQ(Read("second-err"), "");
        } else {
            EXPECT_EQ(WaitForEnd(second), 1);
            EXPECT_EQ(Read("second-out"), "");
        }
        EXPECT_EQ(first.window_questions, c.windows_asked);
        EXPECT_EQ(first.forwards, c.forwards);
    }
}

}  // namespace
