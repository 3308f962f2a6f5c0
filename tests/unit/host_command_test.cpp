#include "unit/devices/host_command.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <mutex>
#include <vector>

#include "tests/support/process.h"

namespace {

using namespace std::chrono_literals;

class HostCommand : public tests::Process {
  protected:
    auto Ear() {
        return [this](const std::string& line) {
            const std::scoped_lock lock(mutex_);
            said_.push_back(line);
        };
    }
    std::vector<std::string> said() {
        const std::scoped_lock lock(mutex_);
        return said_;
    }
    std::ptrdiff_t Runs() const { return std::ranges::count(Read("runs"), '\n'); }

  private:
    std::mutex mutex_;
    std::vector<std::string> said_;
};

TEST_F(HostCommand, RunsOneAtATimeAndOnceMoreForAllThatCameMeanwhile) {
    const std::string work = "echo run >> " + Path("runs") + "; until [ -e " + Path("go") +
                             " ]; do sleep 0.01; done; echo end >> " + Path("ends");
    {
        unit::HostCommand command("the reset command", work, Ear());
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
    EXPECT_TRUE(said().empty());
}

TEST_F(HostCommand, TellsOfFailures) {
    const std::pair<const char*, const char*> cases[] = {
        {"exit 3", "the reset command failed with status 3: exit 3"},
        {"kill -9 $$", "the reset command was ended by signal 9: kill -9 $$"},
        {"no-such-program 2>/dev/null",
         "the reset command failed with status 127: no-such-program 2>/dev/null"},
    };
    std::vector<std::string> expected;
    for (const auto& [work, line] : cases) {
        unit::HostCommand command("the reset command", work, Ear());
        command.Start();
        expected.emplace_back(line);
        ASSERT_TRUE(WaitUntil([&] { return said().size() == expected.size(); })) << line;
        EXPECT_EQ(said(), expected);
    }
}

TEST_F(HostCommand, TellsOnceOfATimeThatIsTooLongAndEndsWithItsOwner) {
    const std::string work = "trap '' TERM; sleep 1000 & echo $! > " + Path("child") +
                             "; echo run >> " + Path("runs") + "; wait; wait";
    {
        unit::HostCommand command("the reset command", work, Ear(), 30ms);
        command.Start();
        ASSERT_TRUE(WaitUntil([&] { return said().size() == 1 && Runs() == 1; }));
        EXPECT_EQ(said()[0], "the reset command still runs after 0.03 s: " + work);
    }
    EXPECT_EQ(said().size(), 1U) << "an end by force is no failure";
    const pid_t child = std::stoi(Read("child"));
    // Gone, or waiting only for whoever adopted it.
    EXPECT_TRUE(WaitUntil([&] {
        std::ifstream status("/proc/" + std::to_string(child) + "/stat");
        const std::string text((std::istreambuf_iterator<char>(status)), {});
        return text.empty() || text.find(") Z ") != std::string::npos;
    }));
}

}  // namespace
