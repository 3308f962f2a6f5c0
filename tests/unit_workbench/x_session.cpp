#include "tests/unit_workbench/x_session.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

namespace tests {
namespace {

constexpr auto kLimit = std::chrono::seconds(60);
constexpr auto kGlance = std::chrono::milliseconds(20);

// Output to `out`, errors to `err` when given.
pid_t Spawn(const std::vector<std::string>& words, const std::vector<std::string>& environment,
            const std::string& out, const std::string& err) {
    const auto pointers = [](const std::vector<std::string>& texts) {
        std::vector<char*> all;
        for (const std::string& text : texts)
            all.push_back(const_cast<char*>(text.c_str()));
        all.push_back(nullptr);
        return all;
    };
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    const int flags = O_CREAT | O_WRONLY | O_TRUNC;
    posix_spawn_file_actions_addopen(&files, 1, out.c_str(), flags, 0600);
    posix_spawn_file_actions_addopen(&files, 2, err.c_str(), flags, 0600);
    pid_t child = 0;
    const int error = posix_spawnp(&child, words.front().c_str(), &files, nullptr,
                                   pointers(words).data(), pointers(environment).data());
    posix_spawn_file_actions_destroy(&files);
    EXPECT_EQ(error, 0) << words.front() << ": " << std::strerror(error);
    return error == 0 ? child : 0;
}

int End(pid_t& child, int signal) {
    if (child == 0)
        return -1;
    kill(child, signal);
    int status = 0;
    waitpid(child, &status, 0);
    child = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace

bool Eventually(const std::function<bool()>& holds) {
    const auto deadline = std::chrono::steady_clock::now() + kLimit;
    while (!holds()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(kGlance);
    }
    return true;
}

XSession::XSession() {
    char name[] = "/tmp/tolvane-window-XXXXXX";
    folder_ = mkdtemp(name);
    // The server chooses a free display and tells it. It must not begin anew when a first client
    // has come and gone: the next would find nobody there.
    const std::string size = std::to_string(kWidth) + "x" + std::to_string(kHeight) + "x24";
    server_ =
        Spawn({"Xvfb", "-displayfd", "1", "-screen", "0", size, "-nolisten", "tcp", "-noreset"}, {},
              Path("display"), Path("xvfb"));
    EXPECT_TRUE(Eventually([this] { return Read("display").ends_with("\n"); })) << Read("xvfb");
    display_ = ":" + Read("display").substr(0, Read("display").find('\n'));
}

XSession::~XSession() {
    End(program_, SIGKILL);
    End(server_, SIGTERM);
    std::filesystem::remove_all(folder_);
}

bool XSession::Start(const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {TOLVANE_BINARY};
    words.insert(words.end(), arguments.begin(), arguments.end());
    // SDL has unloaded the X libraries before leaks are looked for, so what they leave has no name
    // that a suppression could tell. A graphics driver would bring threads and locks that the
    // thread sanitizer does not see, so SDL shows its own drawing without one.
    std::vector<std::string> environment = {
        "DISPLAY=" + display_,           "SDL_VIDEODRIVER=x11", "SDL_RENDER_DRIVER=software",
        "XDG_RUNTIME_DIR=" + folder_,    "HOME=" + folder_,     "LSAN_OPTIONS=detect_leaks=0",
        "SDL_FRAMEBUFFER_ACCELERATION=0"};
    for (const char* const name : {"PATH", "ASAN_OPTIONS", "TSAN_OPTIONS"})
        if (const char* const value = getenv(name))
            environment.push_back(std::string(name) + "=" + value);
    program_ = Spawn(words, environment, Path("out"), Path("err"));
    return Eventually([this] {
        return !Output("xdotool search --onlyvisible --name 'Tolvane - virtual unit'").empty();
    });
}

int XSession::Interrupt() {
    return End(program_, SIGINT);
}

std::string XSession::Output(const std::string& command) const {
    std::string text;
    FILE* const pipe = popen(("DISPLAY=" + display_ + " " + command + " 2>/dev/null").c_str(), "r");
    char piece[4096];
    for (std::size_t count = 0; (count = fread(piece, 1, sizeof piece, pipe)) > 0;)
        text.append(piece, count);
    pclose(pipe);
    return text;
}

void XSession::Do(const std::string& words) const {
    Output("xdotool " + words);
}

void XSession::ClickAt(int x, int y) const {
    Do("mousemove " + std::to_string(x) + " " + std::to_string(y) + " click 1");
}

// The server's own dump of its root window, as a portable pixmap.
Capture XSession::Look() const {
    std::istringstream dump(Output("import -silent -window root -depth 8 ppm:-"));
    std::string kind;
    int most = 0;
    Capture capture;
    dump >> kind >> capture.width >> capture.height >> most;
    dump.get();
    std::string bytes(static_cast<std::size_t>(capture.width * capture.height) * 3, '\0');
    dump.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    EXPECT_EQ(kind, "P6");
    EXPECT_EQ(most, 255);
    EXPECT_EQ(static_cast<std::size_t>(dump.gcount()), bytes.size());
    for (std::size_t byte = 0; byte < bytes.size(); byte += 3) {
        std::uint32_t pixel = 0;
        for (std::size_t channel = 0; channel < 3; ++channel)
            pixel = pixel << 8 | static_cast<std::uint8_t>(bytes[byte + channel]);
        capture.pixels.push_back(pixel);
    }
    return capture;
}

std::string XSession::Read(const std::string& name) const {
    std::ostringstream text;
    text << std::ifstream(Path(name)).rdbuf();
    return text.str();
}

}  // namespace tests
