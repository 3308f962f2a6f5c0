#include "unit/devices/host_command.h"

#include <fstream>
#include <mutex>

#include "tests/support/process.h"

namespace {

class HostCommand : public tests::Process {};

TEST_F(HostCommand, ReportsALongRunOnceAndEndsWithItsOwner) {
    std::mutex mutex;
    std::string said;
    const auto say = [&](const std::string& line) {
        const std::scoped_lock lock(mutex);
        said += line + "\n";
    };
    const std::string work = "trap '' TERM; sleep 1000 & echo $! > " + Path("child") +
                             "; echo run >> " + Path("runs") + "; wait; wait";
    {
        unit::HostCommand command("the reset command", work, say, std::chrono::milliseconds(30));
        command.Start();
        ASSERT_TRUE(WaitUntil([&] {
            const std::scoped_lock lock(mutex);
            return !said.empty() && Read("runs") == "run\n";
        }));
    }
    EXPECT_EQ(said, "the reset command still runs after 0.03 s: " + work + "\n")
        << "killing the command is no failure";
    const pid_t child = std::stoi(Read("child"));
    // It ended, or is a zombie that its adopter has not reaped.
    EXPECT_TRUE(WaitUntil([&] {
        std::string state;
        std::ifstream("/proc/" + std::to_string(child) + "/stat") >> state >> state >> state;
        return state.empty() || state == "Z";
    }));
}

}  // namespace
