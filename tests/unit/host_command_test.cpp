#include "unit/devices/host_command.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <mutex>

#include "tests/support/process.h"

namespace {

using namespace std::chrono_literals;

class HostCommand : public tests::Process {
  protected:
    auto Say() {
        return [this](const std::string& line) {
            const std::scoped_lock lock(mutex_);
            said_ += line + "\n";
        };
    }
    std::string said() {
        const std::scoped_lock lock(mutex_);
        return said_;
    }
    std::ptrdiff_t Runs() const { return std::ranges::count(Read("runs"), '\n'); }

  private:
    std::mutex mutex_;
    std::string said_;
};

TEST_F(HostCommand, RunsOneAtATimeAndOnceMoreForAllStartsDuringARun) {
    const std::string work = "echo run >> " + Path("runs") + "; until [ -e " + Path("go") +
                             " ]; do sleep 0.01; done; echo end >> " + Path("ends");
    {
        unit::HostCommand command("the reset command", work, Say());
        command.Start();
        ASSERT_TRUE(WaitUntil([&] { return Runs() == 1; }));
        for (int again = 0; again < 5; ++again)
            command.Start();
        EXPECT_EQ(Runs(), 1);
        std::ofstream(Path("go")) << "go";
        EXPECT_TRUE(WaitUntil([&] { return Read("ends") == "end\nend\n"; }));
        command.Start();
        EXPECT_TRUE(WaitUntil([&] { return Runs() == 3; }));
    }
    EXPECT_EQ(Runs(), 3);
    EXPECT_EQ(said(), "");
}

TEST_F(HostCommand, ReportsFailures) {
    std::string expected;
    for (const auto& [work, how] :
         {std::pair("exit 3", "failed with status 3"), {"kill -9 $$", "was ended by signal 9"}}) {
        unit::HostCommand command("the reset command", work, Say());
        command.Start();
        expected += std::string("the reset command ") + how + ": " + work + "\n";
        EXPECT_TRUE(WaitUntil([&] { return said().size() >= expected.size(); }));
        EXPECT_EQ(said(), expected);
    }
}

TEST_F(HostCommand, ReportsALongRunOnceAndEndsWithItsOwner) {
    const std::string work = "trap '' TERM; sleep 1000 & echo $! > " + Path("child") +
                             "; echo run >> " + Path("runs") + "; wait; wait";
    {
        unit::HostCommand command("the reset command", work, Say(), 30ms);
        command.Start();
        ASSERT_TRUE(WaitUntil([&] { return !said().empty() && Runs() == 1; }));
    }
    EXPECT_EQ(said(), "the reset command still runs after 0.03 s: " + work + "\n")
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
