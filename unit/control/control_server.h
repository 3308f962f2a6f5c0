#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "control/descriptor.h"
#include "control/socket_server.h"
#include "unit/commands/operator.h"
#include "unit/control/answer.h"
#include "unit/control/watch.h"

namespace unit {

// A scenario that a client wants followed on the running unit.
struct SentScenario {
    std::string file;  // its absolute path where the client read it, or empty
    std::string text;
    std::string folder;              // where the client stands, or empty
    std::shared_ptr<Answer> answer;  // abandoned when the client hangs up: the scenario is to stop
};

// The unit's control socket: takes the commands of all who are not in this process, follows them on
// the hardware's thread and answers. A thread of its own talks to the clients; the unit never waits
// for one. Made and destroyed on the hardware's thread, while the platform is booted.
class ControlServer {
  public:
    // What the unit can do beside the commands of UnitCommands; called on the hardware's thread.
    struct Abilities {
        std::function<std::string()> state{};  // JSON
        std::function<void(SentScenario)> run{};
        std::function<void()> raise{};  // the host's window, if there is one
    };

    // Claims the socket of that name; while another unit has it, it is tried again and again until
    // that one ends. `say` takes one line when there can be no socket.
    ControlServer(Operator& op, const std::string& name, Abilities abilities,
                  std::function<void(const std::string&)> say);
    ~ControlServer();
    ControlServer(const ControlServer&) = delete;
    ControlServer& operator=(const ControlServer&) = delete;

    // Whether this unit has the socket, or else another one. Any thread.
    bool claimed() const { return claimed_; }
    bool taken() const { return taken_; }

  private:
    using ClientId = control::SocketServer::ClientId;

    // One request that was read, on its way.
    struct Job {
        ClientId client;
        control::Request request;
        control::Values values;
        std::shared_ptr<Answer> answer;
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

    // Runs it on the hardware's thread, unless this has gone by then.
    void Post(std::function<void()> action);
    // Ends the answer as soon as done() holds, with `late` when it does not within `limit` of the
    // unit's time.
    void EndWhen(std::shared_ptr<Answer> answer,
                 std::function<std::optional<control::Outcome>()> done,
                 platform::kernel::Time deadline);

    void StartWatch(const Job& job);
    void StartRun(const Job& job);
    void StartState(const Job& job);
    void StartHelp(const Job& job);
    void StartComplete(const Job& job);
    void StartFindObject(const Job& job);
    void StartFindWindow(const Job& job);
    void StartBringForward(const Job& job);
    void Follow(const UnitTable::Row& row, const Job& job);
    void RaiseRequest(const UnitTable::Row& row, const Job& job);

    Operator& operator_;
    const std::string name_;
    const Abilities abilities_;
    const std::function<void(const std::string&)> say_;
    // Its value is the hardware thread's alone.
    const std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    std::atomic<bool> claimed_{false};
    std::atomic<bool> taken_{false};

    // The thread's alone, once it runs.
    control::Descriptor stop_;
    std::unique_ptr<control::SocketServer> server_;
    std::map<ClientId, std::shared_ptr<Answer>> answers_;
    std::map<ClientId, std::unique_ptr<Watch>> watches_;
    std::thread thread_;
};

}  // namespace unit
