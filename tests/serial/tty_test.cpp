#include <grp.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "serial/pseudo_terminal.h"
#include "serial/tty.h"

namespace serial {
namespace {

constexpr uid_t kNobody = 65534;

// Makes the test run as nobody, in nobody's group alone; root may open everything.
struct AsNobody {
    AsNobody() { EXPECT_EQ(setgroups(0, nullptr) + setegid(kNobody) + seteuid(kNobody), 0); }
    AsNobody(const AsNobody&) = delete;
    AsNobody& operator=(const AsNobody&) = delete;
    ~AsNobody() { EXPECT_EQ(seteuid(0) + setegid(0), 0); }
};

// A terminal of the host, with the test at its far end.
class OnTerminal : public testing::Test {
  protected:
    OnTerminal() { EXPECT_TRUE(MakePseudoTerminal(terminal_, problem)) << problem; }
    ~OnTerminal() override {
        close(terminal_.near_end);
        close(terminal_.far_end);
    }

    std::string problem;
    const std::string& path = terminal_.path;

  private:
    PseudoTerminal terminal_;
};

TEST_F(OnTerminal, MissingPermissionNamesTheGroupToJoin) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can hand the device to another group";
    const gid_t dialout = getgrnam("dialout")->gr_gid;
    const gid_t own_group = getpwuid(kNobody)->pw_gid;
    const std::string denied = path + ": permission denied; ";
    const auto belongs = [&](const std::string& group) {
        return denied + "the device belongs to group " + group + ": sudo adduser nobody " + group +
               ", then log in again";
    };
    const struct {
        gid_t group;
        mode_t mode;
        int error;
        std::string expected;
    } cases[] = {
        {dialout, 0660, EACCES, belongs("dialout")},
        {own_group, 0620, EACCES, denied + "only its owner root may open the device"},
        {12345, 0660, EACCES, belongs("12345")},
        {dialout, 0666, 0, ""},
    };
    for (const auto& [group, mode, error, expected] : cases) {
        ASSERT_EQ(chown(path.c_str(), 0, group), 0);
        ASSERT_EQ(chmod(path.c_str(), mode), 0);
        const AsNobody nobody;
        problem.clear();
        EXPECT_EQ(Tty().Open(path, problem), error);
        EXPECT_EQ(problem, expected);
    }
    // In the group according to the user database, but not in this log-in.
    ASSERT_EQ(chown(path.c_str(), 0, own_group), 0);
    const AsNobody nobody;
    EXPECT_EQ(OpenProblem(path, EACCES), denied + "the device belongs to group " +
                                             getgrgid(own_group)->gr_name +
                                             ", which this log-in does not have yet: log in again");
}

TEST_F(OnTerminal, IsExclusiveWhileOpen) {
    for (int round = 0; round < 2; ++round) {
        Tty first;
        EXPECT_EQ(first.Open(path, problem), 0) << problem;
        EXPECT_EQ(Tty().Open(path, problem), EBUSY);
        EXPECT_EQ(Tty().Open(path, problem), EBUSY);
        EXPECT_EQ(problem, path + ": the serial device is in use by another program");
    }
}

TEST_F(OnTerminal, ReportsSettingsThatADeviceIgnores) {
    Tty tty;
    ASSERT_EQ(tty.Open(path, problem), 0) << problem;
    EXPECT_EQ(tty.Apply({.baud = 460800, .stop_bits = 2}, problem), 0);
    EXPECT_EQ(tty.Apply({.baud = 460800}, problem), 0);
    EXPECT_EQ(problem, "");
    // A pseudo-terminal always has eight bits and no parity.
    EXPECT_EQ(tty.Apply({.baud = 460800, .data_bits = 7, .parity = Parity::kEven}, problem),
              EINVAL);
    EXPECT_EQ(problem, path +
                           ": the device did not take the settings 460800 baud, 7E1, no flow "
                           "control; it works with 460800 baud, 8N1, no flow control");
    EXPECT_EQ(tty.Apply({.baud = 460801}, problem), EINVAL);
}

}  // namespace
}  // namespace serial
