#include "tests/campaign/leftovers.h"

#include <map>
#include <sstream>

namespace tests::campaign {

namespace {

// What one failure of the call leaves open at most.
struct LeftRow {
    std::string_view call;
    std::string_view what;
    int count;
};

constexpr LeftRow kMayLeave[] = {
    {"CloseHandle", "handles", 1},
    {"CloseMsgQueue", "handles", 1},
    {"DeleteDC", "device contexts", 1},
    {"DeleteObject", "drawing objects", 1},
    {"EndPaint", "device contexts", 1},
    {"ReleaseDC", "device contexts", 1},
    // What could not be put back keeps the other object selected, which then cannot be deleted.
    {"SelectObject", "drawing objects", 1},
    // The request, and the end of the queue that it writes to.
    {"StopPowerNotifications", "handles", 2},
};

}  // namespace

std::string TooMuchLeft(const std::string& leftovers,
                        const std::vector<std::string_view>& failed_calls) {
    std::map<std::string, int> allowed;
    for (const std::string_view call : failed_calls)
        for (const LeftRow& row : kMayLeave)
            if (row.call == call)
                allowed[std::string(row.what)] += row.count;
    std::string too_much;
    std::istringstream parts(leftovers);
    for (std::string part; std::getline(parts, part, ',');) {
        std::istringstream words(part);
        int count = 0;
        std::string what;
        words >> count >> std::ws;
        std::getline(words, what);
        if (count > allowed[what])
            too_much += (too_much.empty() ? "" : ", ") + std::to_string(count) + " " + what +
                        " of " + std::to_string(allowed[what]) + " allowed";
    }
    return too_much;
}

}  // namespace tests::campaign
