#include "serial/pseudo_terminal.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace serial {

bool MakePseudoTerminal(PseudoTerminal& made, std::string& problem) {
    const int far_end = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    const auto fail = [&](const std::string& what) {
        problem = what + ": " + std::strerror(errno);
        if (far_end >= 0)
            close(far_end);
        return false;
    };
    char path[128];
    if (far_end < 0 || grantpt(far_end) != 0 || unlockpt(far_end) != 0 ||
        ptsname_r(far_end, path, sizeof path) != 0)
        return fail("no pseudo-terminal");
    const int near_end = open(path, O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (near_end < 0)
        return fail(path);
    termios raw{};
    tcgetattr(near_end, &raw);
    cfmakeraw(&raw);
    tcsetattr(near_end, TCSANOW, &raw);
    made = {far_end, near_end, path};
    return true;
}

}  // namespace serial
