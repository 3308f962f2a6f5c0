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

    void Serve() {
        server_.emplace(operator_, "unit", ControlServer::Abilities(),
                        [](const std::string& line) { ADD_FAILURE() << line; });
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

TEST_F(Control, WatchersHearTheKindsTheyAskedFor) {
    Serve();
    constexpr char kPosted[] = "broadcast  message 1024 1 2";
    constexpr char kFrame[] = "frame      to unit  IND  DVR_RunningState  2 normal  ok";
    constexpr char kLogged[] = "log        said";
    const std::pair<const char*, std::vector<const char*>> cases[] = {
        {"watch", {kPosted, kFrame}},
        {"watch broadcasts", {kPosted}},
        {"watch frames", {kFrame}},
        {"watch log", {kLogged}},
        {"watch all",
         {kPosted, kFrame, kLogged, "driver     DVR1: 0x0881 02, error 31",
          "power      off, battery 40 % flag 2", "card       out", "finger     up 7 8",
          "unit       awake"}},
    };
    std::vector<SocketClient> clients;
    for (const auto& [line, heard] : cases) {
        clients.push_back(Client());
        clients.back().Send({line}, 10s);
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
    for (std::size_t i = 0; i < clients.size(); ++i)
        for (const char* heard : cases[i].second) {
            SCOPED_TRACE(cases[i].first);
            std::string text;
            do {
                text = Receive(clients[i]).text;
            } while (text.find("_All_APP_") != std::string::npos);
            EXPECT_TRUE(text.ends_with(std::string("  ") + heard)) << text;
        }
}

}  // namespace
}  // namespace tests
