#include "unit/control/control_server.h"

#include <gtest/gtest.h>

#include <atomic>

#include "control/socket_client.h"
#include "platform/kernel/scheduler.h"
#include "tests/support/process.h"

// The control socket of a unit whose program does nothing, from a client's end.

namespace tests {
namespace {

using namespace std::chrono_literals;
using namespace unit;
using control::SocketClient;
using Kind = SocketClient::Reply::Kind;
namespace kernel = platform::kernel;

class Control : public Process {
  protected:
    static VirtualUnit::Options Fast() {
        VirtualUnit::Options options;
        options.kernel.mode = kernel::Mode::kFreeRunning;
        options.kernel.speed = 50;
        return options;
    }
    int Program() {
        while (!program_ends_)
            Sleep(100);
        return 0;
    }
    ~Control() override {
        program_ends_ = true;
        server_.reset();
        EXPECT_TRUE(unit_.Close(60s)) << unit_.leftovers();
        EXPECT_EQ(unit_.leftovers(), "");
    }

    void Serve(ControlServer::Abilities abilities = {}) {
        server_.emplace(operator_, "unit", std::move(abilities),
                        [this](const std::string& line) { said_ += line; });
        unit_.Start();
    }
    static SocketClient Client() {
        std::string problem;
        bool nobody = false;
        auto client = SocketClient::Connect("unit", 10s, nobody, problem);
        EXPECT_TRUE(client) << problem;
        return *std::move(client);
    }
    // Runs the hardware while the client waits for its answer's next line.
    static SocketClient::Reply Receive(SocketClient& client) {
        std::optional<SocketClient::Reply> reply;
        kernel::RunHardware([&] {
            reply = client.Receive(1ms);
            return reply->kind != Kind::kLate;
        });
        return *reply;
    }
    static SocketClient::Reply Ask(SocketClient& client, const control::Request& request) {
        client.Send(request, 10s);
        return Receive(client);
    }

    std::atomic<bool> program_ends_{false};
    DebugLog log_{[](std::chrono::microseconds, const std::string&) {}};
    VirtualUnit unit_{Fast(), {[this] { return Program(); }, {}}, log_, [](const std::string&) {}};
    Operator operator_{unit_, ""};
    std::optional<ControlServer> server_;
    std::string said_;
};

TEST_F(Control, APowerRequestThatNobodyAnswersIsRefusedAndTheNextOneIsHeard) {
    Serve();
    SocketClient client = Client();
    const kernel::Time before = kernel::Now();
    SocketClient::Reply reply = Ask(client, {"request resume"});
    EXPECT_EQ(reply.kind, Kind::kRefused);
    EXPECT_EQ(reply.text, "no acknowledgement came within 2 s of the unit's time");
    EXPECT_GE(kernel::Now() - before, 2s);
    // The event was made for those who come later, raised as it is.
    const HANDLE event =
        OpenEventW(EVENT_ALL_ACCESS, FALSE, L"_KESTA_Technology,Inc._All_APP_PowerResume_Request_");
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
    CloseHandle(event);

    client.Send({"request resume"}, 10s);
    kernel::After(200ms, [] {
        PostMessageW(
            HWND_BROADCAST,
            RegisterWindowMessageW(L"_KESTA_Technology,Inc._Sodrey_PowerResume_Acknowledge_"), 0,
            0);
    });
    reply = Receive(client);
    EXPECT_EQ(reply.kind, Kind::kLine);
    EXPECT_TRUE(reply.text.ends_with("  resume acknowledged")) << reply.text;
    EXPECT_EQ(Receive(client).kind, Kind::kDone);
}

TEST_F(Control, AScenarioIsHandedOverAndAbandonedWhenItsClientLeaves) {
    std::vector<SentScenario> sent;
    Serve({.state = {}, .run = [&](SentScenario scenario) {
               scenario.answer->Line("line 1 done");
               sent.push_back(std::move(scenario));
           }});
    {
        SocketClient client = Client();
        EXPECT_EQ(Ask(client, {"run my.scenario", "tap Next\nwait 3s\n", "/from/here"}).text,
                  "line 1 done");
    }
    ASSERT_EQ(sent.size(), 1U);
    EXPECT_EQ(sent[0].file, "/from/here/my.scenario");
    EXPECT_EQ(sent[0].text, "tap Next\nwait 3s\n");
    kernel::RunHardware([&] { return !sent[0].answer->wanted(); });
    sent[0].answer->Line("to nobody");
    SocketClient client = Client();
    EXPECT_EQ(Ask(client, {"run"}).text, "line 1 done");
    sent[1].answer->End(control::Refused("line 2 failed"));
    EXPECT_EQ(Receive(client).text, "line 2 failed");
    client.Send({"run"}, 10s);
    kernel::RunHardware([&] { return sent.size() == 3; });
    EXPECT_EQ(Receive(client).kind, Kind::kLine);
    server_.reset();
    EXPECT_FALSE(sent[2].answer->wanted());
    EXPECT_EQ(client.Receive(10s).kind, Kind::kGone);
}

TEST_F(Control, WatchersHearTheKindsTheyAskedFor) {
    Serve();
    constexpr char kFrame[] = "frame      to unit  IND  DVR_RunningState  2 normal  ok";
    struct Case {
        const char* line;
        std::vector<const char*> heard;
    };
    const Case cases[] = {
        {"watch", {"broadcast  message 1024 1 2", kFrame}},
        {"watch broadcasts", {"broadcast  message 1024 1 2"}},
        {"watch frames", {kFrame}},
        {"watch log", {"log        said"}},
        {"watch all",
         {"broadcast  message 1024 1 2", kFrame, "log        said",
          "driver     DVR1: 0x0881 02, error 31", "power      off, battery 40 % flag 2",
          "card       out", "finger     up 7 8", "unit       awake"}},
    };
    std::vector<SocketClient> clients;
    for (const Case& c : cases) {
        clients.push_back(Client());
        clients.back().Send({c.line}, 10s);
    }
    // Requests are read in the clients' order, so the last one's answer stands for all.
    SocketClient last = Client();
    Ask(last, {"help"});
    EventHub& hub = unit_.events();
    hub.Tell(BroadcastPosted{L"", 1024, 1, 2});
    hub.Tell(LineBytes{Direction::kToUnit, {0xA5, 0x5A, 0x80, 0x00, 0x10, 0x00}});
    hub.Tell(LineBytes{Direction::kToUnit, {0x01, 0x02, 0x01, 0x92}});
    hub.Tell(LineLogged{"said"});
    hub.Tell(ScreenDrawn{});
    hub.Tell(DriverCalled{
        L"DVR1:", DriverCalled::Call::kControl, 0x881, {std::byte{2}}, ERROR_GEN_FAILURE});
    hub.Tell(SupplyChanged{{0, 2, 40}});
    hub.Tell(CardMoved{false, {}});
    hub.Tell(FingerMoved{platform::window::Touch::kUp, 7, 8});
    hub.Tell(SuspendChanged{false});
    for (std::size_t i = 0; i < clients.size(); ++i) {
        for (const char* heard : cases[i].heard) {
            SCOPED_TRACE(cases[i].line);
            std::string text;
            do {
                text = Receive(clients[i]).text;
            } while (text.find("_All_APP_") != std::string::npos);
            EXPECT_TRUE(text.ends_with(std::string("  ") + heard)) << text;
        }
    }
}

TEST_F(Control, ASocketThatIsTakenIsClaimedWhenItsOwnerEnds) {
    std::string problem;
    bool taken = false;
    std::optional<control::SocketClaim> other = control::SocketClaim::Make("unit", taken, problem);
    ASSERT_TRUE(other);
    Serve();
    EXPECT_FALSE(server_->claimed());
    EXPECT_EQ(said_, "");
    other.reset();
    EXPECT_TRUE(WaitUntil([&] { return server_->claimed(); }));
    SocketClient client = Client();
    EXPECT_EQ(Ask(client, {"nope"}).kind, Kind::kRefused);
}

}  // namespace
}  // namespace tests
