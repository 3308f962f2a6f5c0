#include "control/runtime_folder.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

#include "control/socket_claim.h"
#include "tests/control/runtime_fixture.h"

namespace control {
namespace {

namespace fs = std::filesystem;

mode_t ModeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

class Runtime : public RuntimeTest {
  protected:
    std::string Problem() {
        std::string problem;
        EXPECT_FALSE(RuntimeFolder::Open(problem));
        EXPECT_TRUE(problem.starts_with(folder_ + ": ")) << problem;
        EXPECT_EQ(problem.find('\n'), std::string::npos);
        return problem.substr(std::min(problem.size(), folder_.size() + 2));
    }

    std::string problem_;
    bool taken_ = false;
    const std::string folder_ = session_ + "/tolvane";
};

TEST_F(Runtime, FolderAndSocketAreTheUsersAlone) {
    umask(0);
    const auto folder = RuntimeFolder::Open(problem_);
    ASSERT_TRUE(folder) << problem_;
    EXPECT_EQ(folder->path(), folder_);
    EXPECT_EQ(ModeOf(folder_), 0700U);
    const auto claim = SocketClaim::Make("unit", taken_, problem_);
    ASSERT_TRUE(claim) << problem_;
    EXPECT_EQ(ModeOf(folder_ + "/unit.sock"), 0600U);
    EXPECT_EQ(ModeOf(folder_ + "/unit.lock"), 0600U);
}

TEST_F(Runtime, UnsafeFoldersAreRefused) {
    fs::create_directory(session_ + "/elsewhere");
    fs::permissions(session_ + "/elsewhere", fs::perms::owner_all);
    fs::create_directory_symlink(session_ + "/elsewhere", folder_);
    EXPECT_EQ(Problem(), "not a folder");
    fs::remove(folder_);
    std::ofstream(folder_) << "";
    EXPECT_EQ(Problem(), "not a folder");
    fs::remove(folder_);
    fs::create_directory(folder_);
    for (const mode_t mode : {0750U, 0701U, 0777U}) {
        chmod(folder_.c_str(), mode);
        EXPECT_EQ(Problem(),
                  "the folder is open to other users; it must have the permissions 0700");
    }
    chmod(folder_.c_str(), 0700);
    if (geteuid() == 0) {
        ASSERT_EQ(chown(folder_.c_str(), 65534, 65534), 0);
        EXPECT_EQ(Problem(), "the folder belongs to another user");
    }
}

TEST_F(Runtime, EntriesInTheWayAreNeitherFollowedNorRemoved) {
    ASSERT_TRUE(RuntimeFolder::Open(problem_));
    std::ofstream(session_ + "/precious") << "kept";
    for (const char* entry : {"unit.lock", "unit.sock"}) {
        fs::create_symlink(session_ + "/precious", folder_ + "/" + entry);
        EXPECT_FALSE(SocketClaim::Make("unit", taken_, problem_)) << entry;
        EXPECT_FALSE(taken_);
        EXPECT_TRUE(problem_.starts_with(folder_ + "/" + entry)) << problem_;
        EXPECT_EQ(fs::file_size(session_ + "/precious"), 4U);
        fs::remove(folder_ + "/" + entry);
    }
}

TEST_F(Runtime, ALivingClaimIsNotTakenAndADeadOneIsFreeAtOnce) {
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t child = fork();
    if (child == 0) {
        const auto claim = SocketClaim::Make("unit", taken_, problem_);
        const char sign = claim ? '+' : '-';
        _exit(write(ready[1], &sign, 1) == 1 ? pause() : 1);
    }
    char sign = 0;
    ASSERT_EQ(read(ready[0], &sign, 1), 1);
    ASSERT_EQ(sign, '+');
    EXPECT_FALSE(SocketClaim::Make("unit", taken_, problem_));
    EXPECT_TRUE(taken_);
    EXPECT_TRUE(SocketClaim::Make("other", taken_, problem_)) << problem_;
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    ASSERT_TRUE(fs::exists(folder_ + "/unit.sock"));
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(SocketClaim::Make("unit", taken_, problem_)) << problem_;
        EXPECT_FALSE(fs::exists(folder_ + "/unit.sock"));
    }
}

TEST_F(Runtime, ASessionWithoutAFolderOfItsOwnUsesTheHosts) {
    for (const char* session : {"", "relative", "/no/such/folder", "/dev/null"}) {
        setenv("XDG_RUNTIME_DIR", session, 1);
        const auto folder = RuntimeFolder::Open(problem_);
        ASSERT_TRUE(folder) << problem_;
        EXPECT_EQ(folder->path(), "/tmp/tolvane-" + std::to_string(geteuid()));
    }
}

TEST(SocketName, AllowsWordsAndNoPaths) {
    for (const char* name : {"unit", "Bench-2_b", "0123456789abcdef0123456789abcdef"})
        EXPECT_TRUE(IsSocketName(name)) << name;
    for (const char* name : {"", ".", "..", "a/b", "a b", "a.b", "\xC3\xA4", "a\n",
                             "0123456789abcdef0123456789abcdef0"})
        EXPECT_FALSE(IsSocketName(name)) << name;
}

}  // namespace
}  // namespace control
