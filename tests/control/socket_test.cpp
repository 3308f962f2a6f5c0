#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <cstdio>

#include "control/local_socket.h"
#include "control/socket_client.h"
#include "control/socket_server.h"
#include "tests/support/process.h"

namespace control {
namespace {

using namespace std::chrono_literals;
using Kind = SocketClient::ReplyPart::Kind;
using Id = SocketServer::ClientId;

// A server named "unit", which handles its clients only in Serve().
class Sockets : public tests::Process {
  protected:
    Sockets() {
        auto claim = SocketClaim::Make("unit", not_running_, problem_);
        EXPECT_TRUE(claim) << problem_;
        SocketServer::Handlers handlers{
            [this](Id id, const Request& request) { Reply(id, request); }, [](Id) {}};
        server_ = std::make_unique<SocketServer>(*std::move(claim), handlers);
    }

    void Reply(Id id, const Request& request) {
        if (request.line == "no")
            return server_->SendOutcome(id, Refused("not that\nreally"));
        if (request.line == "later") {
            waiting_ = id;
            return;
        }
        server_->SendLine(id, "got " + request.line + request.folder);
        server_->SendOutcome(id, Done(request.text));
    }

    void Serve() {
        pollfd watched{server_->descriptor(), POLLIN, 0};
        while (poll(&watched, 1, 0) > 0)
            server_->HandleReady();
    }

    std::optional<SocketClient> Connect(const char* name, SocketClient::Limit limit) {
        return SocketClient::Connect(name, limit, not_running_, problem_);
    }
    SocketClient Client() {
        auto client = Connect("unit", 1s);
        EXPECT_TRUE(client) << problem_;
        return *std::move(client);
    }
    // Connects a client whose request waits for the reply of the test.
    SocketClient Waiting() {
        SocketClient client = Client();
        client.Send({"later"}, 1s);
        Serve();
        return client;
    }

    // Sends the bytes and returns everything received, with * for a hang-up.
    std::string Exchange(const SocketClient& client, std::string_view bytes) {
        std::string reply;
        char buffer[65536];
        do {
            const ssize_t sent =
                send(client.descriptor(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
            bytes.remove_prefix(std::max<ssize_t>(sent, 0));
            Serve();
            ssize_t count = 0;
            while ((count = recv(client.descriptor(), buffer, sizeof buffer, 0)) > 0)
                reply.append(buffer, static_cast<std::size_t>(count));
            if (count == 0 || errno == ECONNRESET)
                return reply + "*";
        } while (!bytes.empty());
        return reply;
    }

    std::unique_ptr<SocketServer> server_;
    Id waiting_ = 0;
    bool not_running_ = false;
    std::string problem_;
};

TEST_F(Sockets, RepliesToRequestsAndRefusesWhatIsNotText) {
    const std::string longest(kMaxLine, 'x');
    std::string long_text;
    for (int i = 0; i < 17; ++i)
        long_text += "|" + std::string(kMaxLine - 1, 'x') + "\n";
    const std::string not_text = "-a line is not plain UTF-8 text\n*";
    const std::string too_long = "-a line is too long; at most 65536 bytes are allowed\n*";
    const std::pair<std::string, std::string> cases[] = {
        {"one\n", "|got one\n+\n"},
        {"one\r\ntwo\n\n", "|got one\n+\n|got two\n+\n|got \n+\n"},
        {"no\nyes\n", "~not that\n-really\n|got yes\n+\n"},
        {"|first\n||second\n|\nrun\nrun\n", "|got run\n|first\n||second\n|\n+\n|got run\n+\n"},
        {"@/home\n|text\ncard\ncard\n", "|got card/home\n|text\n+\n|got card\n+\n"},
        {"gr\xC3\xBC\xC3\x9F\xF0\x9F\x9A\x97\tGott\n",
         "|got gr\xC3\xBC\xC3\x9F\xF0\x9F\x9A\x97\tGott\n+\n"},
        {longest + "\n", "|got " + longest + "\n+\n"},
        {longest + "x\n", too_long},
        {std::string(5'000'000, 'x'), too_long},
        {long_text + "run\n", "-the text is too long; at most 1048576 bytes are allowed\n*"},
        {"ok\n\xFF\n", "|got ok\n+\n" + not_text},
        {std::string("a\0b\n", 4), not_text},
        {"\x1B[2J\n", not_text},
        {"\xC0\xAF\n", not_text},
        {"\xE0\x80\xAF\n", not_text},
        {"\xED\xA0\x80\n", not_text},
        {"\xF4\x90\x80\x80\n", not_text},
        {"\xC3\n", not_text},
        {"half", ""},
    };
    for (const auto& [sent, reply] : cases) {
        SCOPED_TRACE(sent.substr(0, 40));
        EXPECT_EQ(Exchange(Client(), sent).substr(0, 200), reply.substr(0, 200));
        if (sent.size() > 100)
            continue;
        const SocketClient bytewise = Client();
        std::string replied;
        for (const char byte : sent)
            replied += Exchange(bytewise, {&byte, 1});
        EXPECT_EQ(replied.substr(0, replied.find('*')), reply.substr(0, reply.find('*')));
    }
}

TEST_F(Sockets, DropsAndCountsLinesForASlowClient) {
    SocketClient client = Waiting();
    constexpr int kLines = 40'000;
    const std::string padding(200, '.');
    for (int i = 0; i < kLines; ++i)
        server_->SendLine(waiting_, std::to_string(i) + padding);
    server_->SendOutcome(waiting_, Done());
    int next = 0;
    int lost = 0;
    for (;;) {
        Serve();
        const SocketClient::ReplyPart reply = client.Receive(1s);
        if (reply.kind == Kind::kDone)
            break;
        if (reply.kind == Kind::kLost) {
            lost += std::stoi(reply.text);
            next += std::stoi(reply.text);
        } else {
            ASSERT_EQ(reply.kind, Kind::kLine) << reply.text;
            ASSERT_EQ(std::stoi(reply.text), next++);
        }
    }
    EXPECT_EQ(next, kLines);
    EXPECT_GT(lost, kLines / 2);
}

TEST_F(Sockets, DoesNotReadRequestsOfAClientThatDoesNotReadReplies) {
    // Many in one chunk, and one after the other.
    for (const std::string& requests : {std::string(60'000, '\n'), std::string(2000, 'x') + '\n'}) {
        const SocketClient client = Client();
        std::size_t taken = 0;
        for (std::size_t offered = 0; offered < 12'000'000; offered += requests.size()) {
            const ssize_t sent = send(client.descriptor(), requests.data(), requests.size(), 0);
            taken += static_cast<std::size_t>(std::max<ssize_t>(sent, 0));
            Serve();
        }
        EXPECT_LT(taken, 2'000'000U);
        EXPECT_TRUE(Exchange(client, "").starts_with("|got "));
    }
}

TEST_F(Sockets, HandlesTheRequestsOfAClientOneAfterTheOther) {
    const SocketClient client = Client();
    EXPECT_EQ(Exchange(client, "later\n"), "");
    EXPECT_EQ(Exchange(client, "one\n"), "");
    server_->SendOutcome(waiting_, Done());
    EXPECT_EQ(Exchange(client, ""), "+\n|got one\n+\n");
}

TEST_F(Sockets, ThePrintedReplyIsPlainText) {
    SocketClient client = Waiting();
    server_->SendLine(waiting_, "\x1B[2J\xC3 gr\xC3\xBC\xC3\x9F");
    server_->SendOutcome(waiting_, Done());
    Serve();
    std::FILE* const out = std::tmpfile();
    ASSERT_EQ(PrintReply(client, {"next"}, "program", 1s, out, out), kExitDone);
    std::rewind(out);
    char printed[64] = {};
    EXPECT_TRUE(std::fgets(printed, sizeof printed, out));
    EXPECT_STREQ(printed, "?[2J? gr\xC3\xBC\xC3\x9F\n");
    std::fclose(out);
}

TEST_F(Sockets, RefusesClientsBeyondTheLimit) {
    std::vector<SocketClient> clients;
    for (std::size_t i = 0; i < SocketServer::kMaxClients; ++i)
        clients.push_back(Client());
    Serve();
    EXPECT_EQ(Exchange(Client(), "one\n"), "-too many clients at a time; at most 32\n*");
    clients.pop_back();
    Serve();
    EXPECT_EQ(Exchange(Client(), "one\n"), "|got one\n+\n");
}

TEST_F(Sockets, TheClientDistinguishesNoServerFromNoReply) {
    SocketClient client = Waiting();
    EXPECT_EQ(client.Receive(20ms).kind, Kind::kLate);
    EXPECT_FALSE(Connect("other", 1s));
    EXPECT_TRUE(not_running_);
    // The backlog of a server that does not accept connections fills up.
    std::vector<SocketClient> backlog;
    while (auto caller = Connect("unit", 20ms)) {
        backlog.push_back(*std::move(caller));
        ASSERT_LT(backlog.size(), 1000U);
    }
    EXPECT_FALSE(not_running_);
    EXPECT_TRUE(problem_.ends_with("no reply")) << problem_;
    // The server sends what is left at its end.
    server_->SendOutcome(waiting_, Done());
    server_.reset();
    EXPECT_EQ(client.Receive(1s).kind, Kind::kDone);
    EXPECT_EQ(client.Receive(1s).kind, Kind::kGone);
    EXPECT_FALSE(Connect("unit", 1s));
    EXPECT_TRUE(not_running_);
}

// Otherwise the server would be woken for the same client for ever.
TEST_F(Sockets, RejectsClientsWhileTheProcessHasNoDescriptorLeft) {
    const SocketClient waits = Client();
    rlimit usual{};
    getrlimit(RLIMIT_NOFILE, &usual);
    const Descriptor lowest_free(dup(server_->descriptor()));
    const rlimit none{static_cast<rlim_t>(lowest_free.get()) + 1, usual.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    server_->HandleReady();
    pollfd watched{server_->descriptor(), POLLIN, 0};
    EXPECT_EQ(poll(&watched, 1, 0), 0);
    setrlimit(RLIMIT_NOFILE, &usual);
    EXPECT_EQ(Exchange(waits, "one\n"), "*");
    EXPECT_EQ(Exchange(Client(), "one\n"), "|got one\n+\n");
}

}  // namespace
}  // namespace control
