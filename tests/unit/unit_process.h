#pragma once

#include <signal.h>

#include <string>
#include <vector>

#include "tests/support/process.h"

namespace tests {

using Words = std::vector<std::string>;

// Units as processes of their own, and unitctl beside them.
class UnitProcess : public Process {
  protected:
    pid_t StartUnit(const std::string& tag = "unit-", const Words& more = {"--headless"}) {
        Words options = {"--speed", "10"};
        options.insert(options.end(), more.begin(), more.end());
        return Start(TOLVANE_BINARY, options, tag);
    }
    bool Stands(const std::string& tag) const {
        return Read(tag + "out").find("---CMainFrame::OnCreate") != std::string::npos;
    }
    bool WaitForWindow(const std::string& tag = "unit-") {
        return WaitUntil([&] { return Stands(tag); });
    }
    pid_t StartAndWait(const std::string& tag = "unit-", const Words& more = {"--headless"}) {
        const pid_t unit = StartUnit(tag, more);
        EXPECT_TRUE(WaitForWindow(tag)) << Read(tag + "err");
        return unit;
    }
    int End(pid_t child, int signal = SIGTERM) {
        kill(child, signal);
        return Wait(child);
    }
    int Ctl(const Words& words) { return Run(UNITCTL_BINARY, words, "ctl-"); }
};

}  // namespace tests
