#include <poll.h>
#include <signal.h>

#include <atomic>
#include <thread>

#include "control/socket_client.h"
#include "control/socket_server.h"
#include "tests/support/process.h"

// A second process of tolvane asks the first one, which the test plays.

namespace {

using control::SocketServer;

// What the test replies as the first unit.
struct Replies {
    const char* object = "mutex";
    int windowless_questions = 0;  // before "window" has a number
    const char* forward = "yes";
    bool hangs_up = false;  // instead of the first answer about a window
};

class TestFirst {
  public:
    explicit TestFirst(const Replies& replies) : replies_(replies) {
        std::string problem;
        bool taken = false;
        auto claim = control::SocketClaim::Make("unit", taken, problem);
        EXPECT_TRUE(claim) << problem;
        server_.emplace(
            *std::move(claim),
            SocketServer::Handlers{
                [this](auto id, const auto& request) { Reply(id, request.line); }, [](auto) {}});
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

    std::atomic<int> window_questions{0};
    std::atomic<int> forwards{0};

  private:
    void Reply(SocketServer::ClientId id, const std::string& line) {
        const char* answer = "none";
        if (line == "other-process object Tolvane") {
            answer = replies_.object;
        } else if (line == "other-process window class Tolvane") {
            ending_ = replies_.hangs_up;
            answer = window_questions++ < replies_.windowless_questions ? "0" : "305419896";
        } else if (line == "other-process forward 305419896 owned") {
            ++forwards;
            answer = replies_.forward;
        }
        if (answer)
            server_->SendOutcome(id, control::Done(answer));
    }

    const Replies replies_;
    std::optional<SocketServer> server_;
    std::atomic<bool> ending_{false};
    std::thread thread_;
};

class SecondProcess : public tests::Process {};

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
        const pid_t second = Start(TOLVANE_BINARY, {"--headless", "--speed", "10"});
        if (c.runs) {
            ASSERT_TRUE(WaitUntil([&] {
                return Read("out").find("---CMainFrame::OnCreate") != std::string::npos;
            })) << Read("err");
            EXPECT_GE(std::stod(Read("out")), c.earliest);
            // The second takes the socket that the first has left.
            EXPECT_TRUE(!c.replies.hangs_up || WaitUntil([] {
                bool not_running = false;
                std::string problem;
                return control::SocketClient::Connect("unit", {}, not_running, problem).has_value();
            }));
            kill(second, SIGTERM);
        }
        EXPECT_EQ(Wait(second), c.runs ? 0 : 1);
        EXPECT_EQ(Read("out").empty(), !c.runs);
        EXPECT_EQ(Read("err").empty(), c.runs) << Read("err");
        EXPECT_EQ(first.window_questions, c.windows_asked);
        EXPECT_EQ(first.forwards, c.forwards);
    }
}

}  // namespace
