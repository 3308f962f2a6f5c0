#include "control/local_socket.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "control/socket_client.h"
#include "tests/support/process.h"

namespace control {
namespace {

namespace fs = std::filesystem;

class Runtime : public tests::Process {
  protected:
    // Returns the problem without the folder's name before it.
    std::string Problem() {
        EXPECT_FALSE(RuntimeFolder::Open(problem_));
        EXPECT_TRUE(problem_.starts_with(folder_ + ": ")) << problem_;
        return problem_.substr(std::min(problem_.size(), folder_.size() + 2));
    }
    bool Claim(const char* name = "unit") {
        return SocketClaim::Make(name, taken_, problem_).has_value();
    }

    std::string problem_;
    bool taken_ = false;
    const std::string folder_ = Path("tolvane");
};

TEST_F(Runtime, FolderAndSocketAreAccessibleToTheUserOnly) {
    umask(0);
    const auto claim = SocketClaim::Make("unit", taken_, problem_);
    ASSERT_TRUE(claim) << problem_;
    EXPECT_EQ(RuntimeFolder::Open(problem_).value().path(), folder_);
    for (const auto& [path, mode] :
         {std::pair("", 0700), {"/unit.sock", 0600}, {"/unit.lock", 0600}})
        EXPECT_EQ(fs::status(folder_ + path).permissions(), fs::perms(mode)) << path;
}

TEST_F(Runtime, RefusesUnsafeFolders) {
    fs::create_directory(Path("elsewhere"));
    fs::permissions(Path("elsewhere"), fs::perms::owner_all);
    fs::create_directory_symlink(Path("elsewhere"), folder_);
    EXPECT_EQ(Problem(), "not a folder");
    fs::remove(folder_);
    std::ofstream(folder_) << "";
    EXPECT_EQ(Problem(), "not a folder");
    fs::remove(folder_);
    fs::create_directory(folder_);
    for (const int mode : {0750, 0701, 0777}) {
        fs::permissions(folder_, fs::perms(mode));
        EXPECT_EQ(Problem(),
                  "other users can access the folder; it must have the permissions 0700");
    }
    fs::permissions(folder_, fs::perms::owner_all);
    if (geteuid() == 0) {
        ASSERT_EQ(chown(folder_.c_str(), 65534, 65534), 0);
        EXPECT_EQ(Problem(), "the folder belongs to another user");
    }
}

TEST_F(Runtime, DoesNotOpenOrRemoveSymlinksAtItsEntries) {
    ASSERT_TRUE(RuntimeFolder::Open(problem_));
    std::ofstream(Path("precious")) << "kept";
    for (const char* entry : {"/unit.lock", "/unit.sock"}) {
        fs::create_symlink(Path("precious"), folder_ + entry);
        EXPECT_FALSE(Claim()) << entry;
        EXPECT_FALSE(taken_);
        EXPECT_TRUE(problem_.starts_with(folder_ + entry)) << problem_;
        EXPECT_EQ(Read("precious"), "kept");
        fs::remove(folder_ + entry);
    }
}

TEST_F(Runtime, ANameIsFreeOnlyWhenItsProcessIsDead) {
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
    EXPECT_FALSE(Claim());
    EXPECT_TRUE(taken_);
    EXPECT_TRUE(Claim("other")) << problem_;
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    ASSERT_TRUE(fs::exists(folder_ + "/unit.sock"));
    bool not_running = false;
    EXPECT_FALSE(SocketClient::Connect("unit", {}, not_running, problem_));
    EXPECT_TRUE(not_running);
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(Claim()) << problem_;
        EXPECT_FALSE(fs::exists(folder_ + "/unit.sock"));
    }
}

TEST_F(Runtime, UsesTmpWithoutASessionFolder) {
    for (const char* session : {"", "relative", "/no/such/folder", "/dev/null"}) {
        setenv("XDG_RUNTIME_DIR", session, 1);
        const auto folder = RuntimeFolder::Open(problem_);
        ASSERT_TRUE(folder) << problem_;
        EXPECT_EQ(folder->path(), "/tmp/tolvane-" + std::to_string(geteuid()));
    }
}

TEST(SocketName, AllowsWordsButNoPaths) {
    const std::string longest(32, 'a');
    EXPECT_TRUE(IsSocketName("Unit-2_b") && IsSocketName(longest));
    EXPECT_FALSE(IsSocketName(longest + "a"));
    for (const char* name : {"", ".", "..", "a/b", "a b", "a.b", "\xC3\xA4", "a\n"})
        EXPECT_FALSE(IsSocketName(name)) << name;
}

}  // namespace
}  // namespace control
