#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "control/descriptor.h"
#include "control/socket_server.h"
#include "unit/commands/operator.h"
#include "unit/events/event_hub.h"
#include "unit/scenario/language.h"

namespace unit {

// The reply to one request of a client, sent by whoever works on the request, now or later. May
// outlive the client and the server: what is sent then is lost. Any thread.
class Reply {
  public:
    Reply(control::SocketServer& server, control::SocketServer::ClientId client)
        : server_(&server), client_(client) {}

    void Line(std::string_view text);
    // Completes the reply; what follows is lost.
    void End(const control::Outcome& outcome);
    // Nobody waits for the reply any more.
    void Abandon();
    bool wanted() const;

  private:
    mutable std::mutex mutex_;
    control::SocketServer* server_;
    const control::SocketServer::ClientId client_;
};

// A scenario that a client sent to be run on the running unit.
struct SentScenario {
    std::string file;  // its absolute path on the client's side, or empty
    std::string text;
    std::string folder;            // the client's working folder, or empty
    std::shared_ptr<Reply> reply;  // abandoned when the client hangs up: the scenario must stop
};

// A single command of the scenario language for the running unit.
struct SentCommand {
    Scenario scenario;
    std::shared_ptr<Reply> reply;  // abandoned when the client hangs up: the command must stop
};

// The unit's control socket: executes commands from other processes on the host thread and replies.
// A thread of its own communicates with the clients; the unit never waits for a client. Created and
// destroyed on the host thread, while the platform is booted.
class ControlServer {
  public:
    // What the unit can do in addition to UnitCommands; called on the host thread.
    struct Abilities {
        std::function<std::string()> state{};  // JSON
        std::function<void(SentScenario)> run{};
        std::function<void(SentCommand)> run_command{};
        std::function<void()> raise{};  // brings the host's window, if any, to the front
    };

    // Claims the socket of that name; while another unit has it, tries again until that unit ends.
    // `say` receives one line when no socket is possible.
    ControlServer(Operator& op, const std::string& name, Abilities abilities,
                  std::function<void(const std::string&)> say);
    ~ControlServer();
    ControlServer(const ControlServer&) = delete;
    ControlServer& operator=(const ControlServer&) = delete;

    // Whether this unit has the socket, or whether another one has. Any thread.
    bool claimed() const { return claimed_; }
    bool taken() const { return taken_; }

  private:
    using ClientId = control::SocketServer::ClientId;

    // A request that is being executed.
    struct Job {
        ClientId client;
        control::Request request;
        control::Values values;
        std::shared_ptr<Reply> reply;
    };
    struct OwnCommand {
        std::string_view pattern;
        std::string_view help;
        void (ControlServer::*start)(const Job&);
    };
    static const std::vector<OwnCommand>& OwnCommands();
    static const control::Grammar& AllCommands();

    bool Claim();
    void Work();
    void Take(ClientId client, const control::Request& request);
    void Leave(ClientId client);

    // Runs the action on the host thread, unless this server was destroyed by then.
    void Post(std::function<void()> action);
    // Ends the reply once done() has an outcome, or as refused at the deadline.
    void EndWhen(std::shared_ptr<Reply> reply,
                 std::function<std::optional<control::Outcome>()> done,
                 platform::kernel::Time deadline);

    // The commands of scenarios that a running unit has in addition to UnitCommands.
    static const ScenarioRows& RunRows();
    // Why words that are a line of a scenario cannot be a command; empty for others.
    static std::string OnlyInScenarios(const std::vector<std::string>& words);

    void StartRunCommand(const Job& job);
    void StartWatch(const Job& job);
    void StartRun(const Job& job);
    void StartState(const Job& job);
    void StartHelp(const Job& job);
    void StartComplete(const Job& job);
    void StartFindObject(const Job& job);
    void StartFindWindow(const Job& job);
    void StartBringForward(const Job& job);
    void Execute(const UnitTable::Row& row, const Job& job);
    void RaiseRequest(const UnitTable::Row& row, const Job& job);

    Operator& operator_;
    const std::string name_;
    const Abilities abilities_;
    const std::function<void(const std::string&)> say_;
    // Only the host thread uses its value.
    const std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    std::atomic<bool> claimed_{false};
    std::atomic<bool> taken_{false};

    // Only thread_ uses these, once it runs.
    control::Descriptor stop_;
    std::unique_ptr<control::SocketServer> server_;
    std::map<ClientId, std::shared_ptr<Reply>> replies_;
    std::map<ClientId, EventHub::Subscription> watches_;
    std::thread thread_;
};

}  // namespace unit
