#include "unit/control/control_server.h"

#include <poll.h>
#include <sys/eventfd.h>

#include <iterator>

#include "platform/kernel/scheduler.h"
#include "unit/commands/unit_commands.h"

namespace unit {

namespace kernel = platform::kernel;
using control::Done;
using control::Misused;

namespace {

// How often to try to claim the socket, in milliseconds of the host.
constexpr int kClaimInterval = 50;

}  // namespace

void Reply::Line(std::string_view text) {
    const std::scoped_lock lock(mutex_);
    if (server_)
        server_->SendLine(client_, text);
}

void Reply::End(const control::Outcome& outcome) {
    const std::scoped_lock lock(mutex_);
    if (server_)
        server_->SendOutcome(client_, outcome);
    server_ = nullptr;
}

void Reply::Abandon() {
    const std::scoped_lock lock(mutex_);
    server_ = nullptr;
}

bool Reply::wanted() const {
    const std::scoped_lock lock(mutex_);
    return server_ != nullptr;
}

ControlServer::ControlServer(Operator& op, const std::string& name, Abilities abilities,
                             std::function<void(const std::string&)> say)
    : operator_(op),
      name_(name),
      abilities_(std::move(abilities)),
      say_(std::move(say)),
      stop_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (Claim())
        thread_ = std::thread([this] { Work(); });
}

ControlServer::~ControlServer() {
    *alive_ = false;
    if (thread_.joinable()) {
        eventfd_write(stop_.get(), 1);
        thread_.join();
    }
    watches_.clear();
    for (const auto& [client, reply] : replies_)
        reply->Abandon();
}

// False when no socket will ever be possible.
bool ControlServer::Claim() {
    std::string problem;
    bool taken = false;
    std::optional<control::SocketClaim> claim = control::SocketClaim::Make(name_, taken, problem);
    taken_ = taken;
    if (!claim) {
        if (!taken)
            say_("no control socket: " + problem);
        return taken;
    }
    server_ = std::make_unique<control::SocketServer>(
        *std::move(claim),
        control::SocketServer::Handlers{
            [this](ClientId client, const control::Request& request) { Take(client, request); },
            [this](ClientId client) { Leave(client); }});
    claimed_ = true;
    return true;
}

void ControlServer::Work() {
    for (;;) {
        pollfd watched[] = {{stop_.get(), POLLIN, 0},
                            {server_ ? server_->descriptor() : -1, POLLIN, 0}};
        poll(watched, std::size(watched), server_ ? -1 : kClaimInterval);
        if (watched[0].revents != 0)
            return;
        if (server_)
            server_->HandleReady();
        else if (!Claim())
            return;
    }
}

void ControlServer::Take(ClientId client, const control::Request& request) {
    Leave(client);
    auto reply = std::make_shared<Reply>(*server_, client);
    std::string problem;
    const auto words = control::SplitWords(request.line, problem);
    if (!words)
        return reply->End(Misused(problem));
    if (words->empty())
        return reply->End(Done());
    auto match = AllCommands().Read(*words, problem);
    if (!match) {
        const std::string only = OnlyInScenarios(*words);
        return reply->End(only.empty() ? Misused(problem) : control::Refused(only));
    }
    if (!request.folder.empty())
        match->values.ResolvePaths(request.folder);
    replies_[client] = reply;
    const Job job{client, request, std::move(match->values), std::move(reply)};
    const std::size_t own = OwnCommands().size();
    if (match->pattern < own)
        return (this->*OwnCommands()[match->pattern].start)(job);
    const auto& unit_rows = UnitCommands().rows();
    if (match->pattern >= own + unit_rows.size())
        return StartRunCommand(job);
    const UnitTable::Row& row = unit_rows[match->pattern - own];
    if (row.check)
        problem = row.check(job.values);
    if (!problem.empty())
        return job.reply->End(Misused(problem));
    Post([this, &row, job] { Execute(row, job); });
}

// Cancels the client's pending request.
void ControlServer::Leave(ClientId client) {
    watches_.erase(client);
    const auto found = replies_.find(client);
    if (found == replies_.end())
        return;
    found->second->Abandon();
    replies_.erase(found);
}

void ControlServer::Post(std::function<void()> action) {
    kernel::At(kernel::Now(), [alive = alive_, action = std::move(action)] {
        if (*alive)
            action();
    });
}

}  // namespace unit
