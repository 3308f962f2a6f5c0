#include "tests/campaign/failure_check.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <deque>
#include <map>
#include <regex>
#include <span>

namespace tests::campaign {

namespace {

// What the program logs of a call that fails: one of these lines, with the call's error in
// parentheses and the source after it. A row without lines is about a call whose result the
// program ignores, or that it makes again.
struct Row {
    std::string_view call;
    // The thread's calls just before, the latest first; an empty one matches any.
    std::array<std::string_view, 3> before;
    // The function whose entry was logged and whose exit was not; any when empty.
    std::string_view inside;
    std::vector<std::string_view> logged;
};

// The first row that fits counts. A line that begins with ", " fits any function. One row a line,
// whatever its length.
// clang-format off
const Row kRows[] = {
    {"CloseHandle", {"CloseHandle", "MsgWaitForMultipleObjects"}, "", {"UART_DeInit, COM_DeInit() fail!!!, ErrorCode"}},
    {"CloseMsgQueue", {}, "", {"CPowerDetector::DeInit, CloseMsgQueue() fail!!!, ErrorCode"}},
    {"CreateEventW", {}, "Mstar_C4_Scaler_Init", {"Mstar_C4_Scaler_Init, CreateEvent() fail!!!, ErroCode"}},
    {"CreateEventW", {}, "", {"CPowerDetector::Init, CreateEvent() fail!!!, ErrorCode"}},
    {"CreateFileW", {}, "Mstar_C4_Scaler_Init", {}},
    {"CreateFileW", {}, "COM_Init", {"COM_Init, CreateFile() fail!!!, ErrorCode"}},
    {"CreateFileW", {}, "", {"CMainFrame::Reset_DVR, CreateFile() fail!!!, ErrorCode"}},
    {"CreateMsgQueue", {}, "", {"CPowerDetector::Init, CreateMsgQueue() fail!!!, ErrorCode"}},
    {"CreateThread", {}, "UART_Init", {"UART_Init, CreateThread() fail!!!, ErrorCode"}},
    {"CreateThread", {}, "", {"CPowerDetector::Init, CreateThread() fail!!!, ErrorCode"}},
    {"DeleteDC", {"SelectObject", "BitBlt", "SetBkMode"}, "", {"CNotify::OnPaint, DeleteDC() fail!!!, ErrorCode"}},
    {"DeleteDC", {"SelectObject", "BitBlt"}, "", {}},
    {"DeleteDC", {"SelectObject"}, "", {"CMainFrame::~CMainFrame, DeleteDC() fail!!!, ErrorCode"}},
    {"DeleteObject", {"FillRect"}, "", {"CMainFrame::OnPaint, DeleteObject() fail!!!, ErrorCode"}},
    {"DeleteObject", {"DeleteDC"}, "", {"CNotify::OnPaint, DeleteObject() fail!!!, ErrorCode", "CMainFrame::~CMainFrame, DeleteObject() fail!!!, ErrorCode"}},
    {"DeviceIoControl", {}, "", {
        "CMainFrame::Reset_DVR, DeviceIoControl() fail!!!, ErrorCode",
        "Mstar_C4_Scaler_Sw2Scaler, OSKA sw to scaler fail!!!, ErroCode",
        "Mstar_C4_Scaler_SW2GOP, DeviceIoControl() fail!!!, ErroCode",
        "Mstar_C4_Scaler_SetAlpha, OSKA set alpha fail!!!, ErroCode",
        "Mstar_C4_Scaler_ColorKey, OSKA Scaler set ColorKey fail!!!, ErroCode",
        "Mstar_C4_Scaler_ChangeDisplayWinddow, DeviceIoControl() fail!!!, ErroCode",
        "Mstar_C4_Scaler_SetWindow, DeviceIoControl() fail!!!, ErroCode"}},
    {"GetCommState", {}, "", {"COM_Init, GetCommState() fail!!!, ErrorCode"}},
    {"GetSystemPowerStatusEx2", {}, "", {"CMainFrame::OnCreate, GetSystemPowerStatusEx2() fail!!!, ErrorCode", "CPowerDetector::ThreadProc_PowerDetector, GetSystemPowerStatusEx2() fail!!!, ErrorCode"}},
    {"LoadImageW", {}, "CMainFrame::OnCreate", {"CMainFrame::OnCreate, LoadImage() fail!!!, ErrorCode"}},
    {"LoadImageW", {"SetWindowPos"}, "", {"CNotify::OnInitDialog, LoadImage() fail!!!, ErrorCode"}},
    {"ReadMsgQueue", {}, "", {"CPowerDetector::ThreadProc_PowerDetector, ReadMsgQueue() fail!!!, ErrorCode"}},
    {"RegisterWindowMessageW", {}, "", {"CMainFrame::CMainFrame, RegisterWindowMessage() fail!!!, ErrorCode", "CPowerDetector::Init, RegisterWindowMessage() fail!!!, ErrorCode"}},
    {"RegisterWindowMessageW", {}, "", {", RegisterWindowMessage() fail!!!, ErrorCode"}},
    {"RequestPowerNotifications", {}, "", {"CPowerDetector::Init, RequestPowerNotifications() fail!!!, ErrorCode"}},
    {"SetCommState", {}, "", {"COM_Init, SetCommState() fail!!!, ErrorCode"}},
    {"SetCommTimeouts", {}, "", {"COM_Init, SetCommTimeouts() fail!!!, ErrorCode"}},
    {"SetEvent", {}, "", {"CPowerDetector::DeInit, SetEvent() fail!!!, ErrorCode"}},
    {"SetTimer", {}, "", {
        "CMainFrame::OnCreate, SetTimer() fail!!!, ErrorCode",
        "CMainFrame::OnXCommand, SetTimer() fail!!!, ErrorCode",
        "CMainFrame::OnPaint, SetTimer() fail!!!, ErrorCode",
        "CMainFrame::DVR_RunningState, SetTimer() fail!!!, ErrorCode",
        "CMainFrame::StorageCardStatus, SetTimer() fail!!!, ErrorCode",
        "CNotify::OnClose, SetTimer() fail!!!, ErrorCode"}},
    {"SetEvent", {"SetEvent"}, "", {}},
    {"SetEvent", {}, "", {"CPowerDetector::DeInit, SetEvent() fail!!!, ErrorCode"}},
    {"SetTimer", {}, "", {", SetTimer() fail!!!, ErrorCode"}},
    {"StopPowerNotifications", {}, "", {"CPowerDetector::DeInit, StopPowerNotifications() fail!!!, ErrorCode"}},
    {"WriteFile", {}, "", {"UART_SendCommand, WriteFile() fail!!!, ErrorCode"}},
};

// How often a thread may repeat a call in a second while it fails.
constexpr std::size_t kMostRepeated = 200;

// What follows from a failure, or from a driver that is missing.
constexpr std::string_view kConsequences[] = {
    "UART_Init, COM_Init() fail!!!, ErrorCode",
    "CMainFrame::OnCreate, UART_Init() fail!!!, ErrorCode",
    "CMainFrame::OnCreate, g_pCPowerDetector->Init() fail!!!, ErrorCode",
    "CMainFrame::OnTimer, Mstar_C4_Scaler_Init() fail!!!, ErroCode",
    "Mstar_C4_Scaler_Init, CreateFile() fail!!!, ErroCode",
    "Mstar_C4_Scaler_ChangeDisplayWinddow, Invalid Arguments!!!, ErroCode",
    "Mstar_C4_Scaler_SetAlpha, Invalid Arguments!!!, ErroCode",
    "Mstar_C4_Scaler_ColorKey, Invalid Arguments!!!, ErroCode",
    "UART_SendCommand, Invalid Arguments!!!, ErrorCode",
    "CMainFrame::~CMainFrame, Invalid Arguments!!!",
    "CNotify::OnPaint, Invalid Arguments!!!",
};

// The source that a line names, by the beginning of its function.
constexpr struct { std::string_view function, module; } kModules[] = {
    {"CMainFrame::", "MainFrm"}, {"CNotify::", "CNotify"}, {"CPowerDetector::", "CPowerDetector"},
    {"Mstar_C4_", "MStar_C4_Scaler"}, {"UART_", "UART"}, {"COM_", "UART"},
};

struct Left {
    std::string_view call;
    std::string what;
    int count;
};

// What one failure of the call leaves open at most.
const Left kMayLeave[] = {
    {"CloseHandle", "handles", 1},
    {"CloseMsgQueue", "handles", 1},
    {"DeleteDC", "device contexts", 1},
    {"DeleteObject", "drawing objects", 1},
    {"EndPaint", "device contexts", 1},
    {"ReleaseDC", "device contexts", 1},
    // The object stays selected and cannot be deleted.
    {"SelectObject", "drawing objects", 1},
    // The request, and the end of the queue that it writes to.
    {"StopPowerNotifications", "handles", 2},
};
// clang-format on

// The parts of a line of a failure; an empty form for any other line.
struct LogLine {
    explicit LogLine(const std::string& line) {
        static const std::regex pattern(
            R"(\[Tolvane\.exe\] \t(.*?)(?:\((\d+)\))?, (\w+)\.cpp\(\d+\))");
        std::smatch parts;
        is_failure = line.find(" fail!!!") != std::string::npos ||
                     line.find("Invalid Arguments!!!") != std::string::npos;
        if (is_failure && std::regex_match(line, parts, pattern)) {
            form = parts[1];
            error = parts[2];
            module = parts[3];
        }
    }
    bool Is(std::span<const std::string_view> forms) const {
        return std::ranges::any_of(forms, [this](std::string_view each) {
            return form == each || (each.starts_with(", ") && form.ends_with(each));
        });
    }
    bool NamesItsModule() const {
        const auto* const row = std::ranges::find_if(
            kModules, [this](const auto& each) { return form.starts_with(each.function); });
        return row != std::end(kModules) && row->module == module;
    }

    bool is_failure;
    std::string form;
    std::string error;  // empty without one
    std::string module;
};

bool IsInside(const std::vector<std::string>& lines, std::size_t end, std::string_view function) {
    const std::string name(function);
    while (end-- > 0)
        if (lines[end] == "[Tolvane.exe] +++" + name || lines[end] == "[Tolvane.exe] ---" + name)
            return lines[end].find("+++") != std::string::npos;
    return false;
}

bool Fits(const Row& row, const CallFailure& failure, const std::vector<std::string>& lines) {
    if (row.call != failure.call.call ||
        !(row.inside.empty() || IsInside(lines, failure.lines, row.inside)))
        return false;
    for (std::size_t index = 0; index < row.before.size(); ++index)
        if (!row.before[index].empty() &&
            (index >= failure.before.size() || failure.before[index] != row.before[index]))
            return false;
    return true;
}

}  // namespace

std::vector<std::string> CheckLog(const std::vector<std::string>& lines,
                                  const std::vector<CallFailure>& failures) {
    std::vector<std::string> wrong;
    const std::vector<LogLine> log(lines.begin(), lines.end());
    for (std::size_t at = 0; at < log.size(); ++at)
        if (log[at].is_failure && !log[at].Is(kConsequences) &&
            std::ranges::none_of(kRows, [&](const Row& row) { return log[at].Is(row.logged); }))
            wrong.push_back("a failure is logged in no known form: " + lines[at]);
        else if (log[at].is_failure && !log[at].NamesItsModule())
            wrong.push_back("a failure is logged with another source: " + lines[at]);
    const bool without_picture = std::ranges::any_of(
        failures, [](const CallFailure& each) { return each.call.call == "LoadImageW"; });
    for (const CallFailure& failure : failures) {
        const auto* const row = std::ranges::find_if(
            kRows, [&](const Row& each) { return Fits(each, failure, lines); });
        // The grey box in place of a picture is drawn with a brush of its own.
        if (row == std::end(kRows) || row->logged.empty() ||
            (row->before[0] == "FillRect" && without_picture))
            continue;
        const std::string error = std::to_string(failure.call.error);
        if (std::none_of(
                log.begin() + static_cast<std::ptrdiff_t>(failure.lines), log.end(),
                [&](const LogLine& line) { return line.error == error && line.Is(row->logged); }))
            wrong.push_back("call " + std::to_string(failure.call.number_of_all) + ", " +
                            std::string(failure.call.call) + ", failed with error " + error +
                            " and was not logged");
    }
    return wrong;
}

std::vector<std::string> CheckPace(const std::vector<CallFailure>& failures) {
    std::map<std::pair<DWORD, std::string_view>, std::deque<platform::kernel::Time>> latest;
    std::map<std::string_view, std::string> wrong;
    for (const CallFailure& failure : failures) {
        auto& times = latest[{failure.call.thread, failure.call.call}];
        times.push_back(failure.call.time);
        // The receive thread's pause after a read is 1 ms, and so is the platform's.
        if (times.size() <= kMostRepeated || failure.call.call == "ReadFile")
            continue;
        if (failure.call.time - times.front() < std::chrono::seconds(1))
            wrong[failure.call.call] = std::string(failure.call.call) + " was repeated " +
                                       std::to_string(kMostRepeated) +
                                       " times in a second while it failed";
        times.pop_front();
    }
    std::vector<std::string> lines;
    for (auto& [call, line] : wrong)
        lines.push_back(std::move(line));
    return lines;
}

std::string TooMuchLeft(const std::string& leftovers, const std::vector<CallFailure>& failures) {
    std::map<std::string, int> allowed;
    for (const CallFailure& failure : failures)
        for (const Left& row : kMayLeave)
            if (row.call == failure.call.call)
                allowed[row.what] += row.count;
    static const std::regex part(R"((\d+) ([^,]+))");
    std::string too_much;
    for (std::sregex_iterator at(leftovers.begin(), leftovers.end(), part), end; at != end; ++at)
        if (const int most = allowed[(*at)[2]]; std::stoi((*at)[1]) > most)
            too_much += " " + at->str() + " of " + std::to_string(most) + " allowed";
    return too_much;
}

}  // namespace tests::campaign
