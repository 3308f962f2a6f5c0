#include "unit/control/first_unit.h"

#include <chrono>
#include <optional>
#include <thread>

#include "control/socket_client.h"
#include "control/words.h"
#include "platform/kernel/text.h"

namespace unit {

using control::QuoteWord;
using control::SocketClient;
using platform::NamedKind;
using platform::OtherProcessWindow;
using platform::kernel::ToUtf8;
using namespace std::chrono_literals;

namespace {

using HostClock = std::chrono::steady_clock;

constexpr auto kReplyLimit = 500ms;
// The other unit's host thread may be busy, for example with the first picture of its window.
constexpr auto kForwardLimit = 3s;
constexpr auto kConnectInterval = 5ms;

OtherProcessWindow ReadWindow(const std::string& reply) {
    return static_cast<OtherProcessWindow>(control::ReadNumber(reply).value_or(0));
}

}  // namespace

std::string FirstUnit::Ask(const std::string& line, std::chrono::milliseconds limit) {
    const auto deadline = HostClock::now() + limit;
    const auto left = [deadline] {
        return std::chrono::ceil<std::chrono::milliseconds>(deadline - HostClock::now());
    };
    std::optional<SocketClient> client;
    // Without a socket, the other unit is about to create one, or it has died and this process is
    // about to.
    while (there()) {
        bool not_running = false;
        std::string problem;
        client = SocketClient::Connect(name_, left(), not_running, problem);
        if (client)
            break;
        if (!not_running || HostClock::now() >= deadline)
            gone_ = true;
        std::this_thread::sleep_for(kConnectInterval);
    }
    if (!client)
        return {};
    client->Send({line}, left());
    const SocketClient::ReplyPart reply = client->Receive(left());
    if (reply.kind == SocketClient::ReplyPart::Kind::kLate)
        gone_ = true;
    return reply.kind == SocketClient::ReplyPart::Kind::kLine ? reply.text : std::string();
}

NamedKind FirstUnit::FindObject(std::wstring_view name) {
    const std::string reply = Ask("other-process object " + QuoteWord(ToUtf8(name)), kReplyLimit);
    return reply == "mutex" ? NamedKind::kMutex : NamedKind::kNone;
}

OtherProcessWindow FirstUnit::FindWindow(std::optional<std::wstring_view> class_name,
                                         std::optional<std::wstring_view> title) {
    std::string line = "other-process window";
    if (class_name)
        line += " class " + QuoteWord(ToUtf8(*class_name));
    if (title)
        line += " title " + QuoteWord(ToUtf8(*title));
    return ReadWindow(Ask(line, kReplyLimit));
}

bool FirstUnit::BringForward(OtherProcessWindow window, bool with_owned) {
    const std::string owned = with_owned ? " owned" : "";
    const bool came =
        Ask("other-process forward " + std::to_string(window) + owned, kForwardLimit) == "yes";
    if (came)
        came_forward_();
    return came;
}

}  // namespace unit
