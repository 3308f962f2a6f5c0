#include <grp.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <string>

#include "serial/open_problem.h"
#include "serial/tty.h"

namespace serial {
namespace {

constexpr uid_t kNobody = 65534;

// What `work` tells when it runs as nobody, in no group but its own: root may open everything.
std::string AsNobody(const std::function<std::string()>& work) {
    int ends[2] = {};
    EXPECT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        const bool dropped = geteuid() != 0 || (setgroups(0, nullptr) == 0 &&
                                                setresgid(kNobody, kNobody, kNobody) == 0 &&
                                                setresuid(kNobody, kNobody, kNobody) == 0);
        const std::string told = dropped ? work() : "not dropped";
        _exit(write(ends[1], told.data(), told.size()) < 0 ? 1 : 0);
    }
    close(ends[1]);
    std::string told;
    char byte = 0;
    while (read(ends[0], &byte, 1) == 1)
        told += byte;
    close(ends[0]);
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    return told;
}

// A terminal of the host's, with its other end in the test's hands.
class OnTerminal : public testing::Test {
  protected:
    OnTerminal() { EXPECT_EQ(openpty(&far_end, &near_end, path, nullptr, nullptr), 0); }
    ~OnTerminal() override {
        close(near_end);
        close(far_end);
    }

    int far_end = -1;
    int near_end = -1;
    char path[128] = {};
};

TEST_F(OnTerminal, MissingPermissionNamesTheGroupToJoin) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can hand the device to another group";
    const struct group* const dialout = getgrnam("dialout");
    const struct passwd* const nobody = getpwuid(kNobody);
    ASSERT_TRUE(dialout && nobody);
    const std::string name = nobody->pw_name;
    const gid_t own_group = nobody->pw_gid;
    const std::string denied = path + std::string(": permission denied; ");
    const auto belongs = [&](const std::string& group) {
        return denied + "the device belongs to group " + group + ": sudo adduser " + name + ' ' +
               group + ", then log in again";
    };
    const struct {
        gid_t group;
        mode_t mode;
        int error;
        std::string problem;
    } cases[] = {
        {dialout->gr_gid, 0660, EACCES, belongs("dialout")},
        {own_group, 0620, EACCES, denied + "only its owner root may open the device"},
        {12345, 0660, EACCES, belongs("12345")},
        {dialout->gr_gid, 0666, 0, ""},
    };
    for (const auto& [group, mode, error, problem] : cases) {
        ASSERT_EQ(chown(path, 0, group), 0);
        ASSERT_EQ(chmod(path, mode), 0);
        const std::string told = AsNobody([&] {
            Tty tty;
            std::string said;
            const int result = tty.Open(path, said);
            return std::to_string(result) + said;
        });
        EXPECT_EQ(told, std::to_string(error) + problem);
    }
    // In the group by the user database, but not since this log-in.
    ASSERT_EQ(chown(path, 0, own_group), 0);
    EXPECT_EQ(AsNobody([&] { return OpenProblem(path, EACCES); }),
              denied + "the device belongs to group " + getgrgid(own_group)->gr_name +
                  ", which this log-in does not have yet: log in again");
}

TEST_F(OnTerminal, IsForOneProgramAloneAndFreeAfterwards) {
    std::string problem;
    for (int round = 0; round < 2; ++round) {
        Tty first;
        ASSERT_EQ(first.Open(path, problem), 0) << problem;
        for (int attempt = 0; attempt < 2; ++attempt) {
            Tty second;
            EXPECT_EQ(second.Open(path, problem), EBUSY);
            EXPECT_EQ(problem,
                      path + std::string(": the serial device is in use by another program"));
        }
    }
}

TEST_F(OnTerminal, SettingsThatADeviceDoesNotTakeAreTold) {
    Tty tty;
    std::string problem;
    ASSERT_EQ(tty.Open(path, problem), 0) << problem;
    EXPECT_EQ(tty.Apply({.baud = 460800}, problem), 0);
    EXPECT_EQ(problem, "");
    // A pseudo-terminal has eight bits and no parity, whatever it is told.
    EXPECT_EQ(tty.Apply({.baud = 460800, .data_bits = 7, .parity = Parity::kEven}, problem),
              EINVAL);
    EXPECT_EQ(problem,
              path + std::string(": the device did not take the settings 460800 baud, 7E1, "
                                 "no flow control; it works with 460800 baud, 8N1, no "
                                 "flow control"));
    problem.clear();
    EXPECT_EQ(tty.Apply({.baud = 460801}, problem), EINVAL);
}

}  // namespace
}  // namespace serial
