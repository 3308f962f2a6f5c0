#pragma once

#include <string>

namespace serial {

// The two ends of a pseudo-terminal: the near end is the tty that others open by `path`. The
// caller closes both.
struct PseudoTerminal {
    int far_end = -1;  // non-blocking
    int near_end = -1;
    std::string path;
};

// Makes one whose near end is raw, so nothing that the far end sends is echoed back before a
// program sets the tty up. False with one line in `problem`.
bool MakePseudoTerminal(PseudoTerminal& made, std::string& problem);

}  // namespace serial
