#include "tests/campaign/log_check.h"

#include <algorithm>
#include <array>
#include <optional>

namespace tests::campaign {

namespace {

// "[Tolvane.exe] \tFUNCTION, MESSAGE, WORD(ERROR), FILE.cpp(LINE)", or the same without a WORD.
struct Form {
    std::string_view function;
    std::string_view message;
    std::string_view word = "ErrorCode";

    bool operator==(const Form&) const = default;
};

// What the program says of a call that fails: one of these lines, with the call's error. A row
// without lines is about a call whose result the program does not look at, or that it makes again.
struct Row {
    std::string_view call;
    // The thread's calls just before, the latest first; what is left open matches all.
    std::array<std::string_view, 3> before;
    // The function that has told of its entry and not of its exit; any when empty.
    std::string_view inside;
    std::vector<Form> forms;
};

constexpr std::string_view kNoWord;
constexpr std::string_view kScalersWord = "ErroCode";
constexpr std::string_view kInit = "CPowerDetector::Init";
constexpr std::string_view kDetector = "CPowerDetector::ThreadProc_PowerDetector";

// The first row that fits counts. One row a line, whatever its length.
// clang-format off
const Row kRows[] = {
    {"CloseHandle", {"CloseHandle", "MsgWaitForMultipleObjects"}, "", {{"UART_DeInit", "COM_DeInit() fail!!!"}}},
    {"CloseMsgQueue", {}, "", {{"CPowerDetector::DeInit", "CloseMsgQueue() fail!!!"}}},
    {"CreateEventW", {}, "Mstar_C4_Scaler_Init", {{"Mstar_C4_Scaler_Init", "CreateEvent() fail!!!", kScalersWord}}},
    {"CreateEventW", {}, "", {{kInit, "CreateEvent() fail!!!"}}},
    {"CreateFileW", {}, "Mstar_C4_Scaler_Init", {}},
    {"CreateFileW", {}, "COM_Init", {{"COM_Init", "CreateFile() fail!!!"}}},
    {"CreateFileW", {}, "", {{"CMainFrame::Reset_DVR", "CreateFile() fail!!!"}}},
    {"CreateMsgQueue", {}, "", {{kInit, "CreateMsgQueue() fail!!!"}}},
    {"CreateThread", {}, "UART_Init", {{"UART_Init", "CreateThread() fail!!!"}}},
    {"CreateThread", {}, "", {{kInit, "CreateThread() fail!!!"}}},
    {"DeleteDC", {"SelectObject", "BitBlt", "SetBkMode"}, "", {{"CNotify::OnPaint", "DeleteDC() fail!!!"}}},
    {"DeleteDC", {"SelectObject", "BitBlt"}, "", {}},
    {"DeleteDC", {"SelectObject"}, "", {{"CMainFrame::~CMainFrame", "DeleteDC() fail!!!"}}},
    {"DeleteObject", {"FillRect"}, "", {{"CMainFrame::OnPaint", "DeleteObject() fail!!!"}}},
    {"DeleteObject", {"DeleteDC"}, "", {{"CNotify::OnPaint", "DeleteObject() fail!!!"}, {"CMainFrame::~CMainFrame", "DeleteObject() fail!!!"}}},
    {"DeviceIoControl", {}, "", {
        {"CMainFrame::Reset_DVR", "DeviceIoControl() fail!!!"},
        {"Mstar_C4_Scaler_Sw2Scaler", "OSKA sw to scaler fail!!!", kScalersWord},
        {"Mstar_C4_Scaler_SW2GOP", "DeviceIoControl() fail!!!", kScalersWord},
        {"Mstar_C4_Scaler_SetAlpha", "OSKA set alpha fail!!!", kScalersWord},
        {"Mstar_C4_Scaler_ColorKey", "OSKA Scaler set ColorKey fail!!!", kScalersWord},
        {"Mstar_C4_Scaler_ChangeDisplayWinddow", "DeviceIoControl() fail!!!", kScalersWord},
        {"Mstar_C4_Scaler_SetWindow", "DeviceIoControl() fail!!!", kScalersWord}}},
    {"GetCommState", {}, "", {{"COM_Init", "GetCommState() fail!!!"}}},
    {"GetSystemPowerStatusEx2", {}, "", {{"CMainFrame::OnCreate", "GetSystemPowerStatusEx2() fail!!!"}, {kDetector, "GetSystemPowerStatusEx2() fail!!!"}}},
    {"LoadImageW", {}, "CMainFrame::OnCreate", {{"CMainFrame::OnCreate", "LoadImage() fail!!!"}}},
    {"LoadImageW", {"SetWindowPos"}, "", {{"CNotify::OnInitDialog", "LoadImage() fail!!!"}}},
    {"ReadMsgQueue", {}, "", {{kDetector, "ReadMsgQueue() fail!!!"}}},
    {"RequestPowerNotifications", {}, "", {{kInit, "RequestPowerNotifications() fail!!!"}}},
    {"SetCommState", {}, "", {{"COM_Init", "SetCommState() fail!!!"}}},
    {"SetCommTimeouts", {}, "", {{"COM_Init", "SetCommTimeouts() fail!!!"}}},
    {"StopPowerNotifications", {}, "", {{"CPowerDetector::DeInit", "StopPowerNotifications() fail!!!"}}},
    {"WriteFile", {}, "", {{"UART_SendCommand", "WriteFile() fail!!!"}}},
};

// What follows from a failure, or from a driver that is missing.
const Form kConsequences[] = {
    {"UART_Init", "COM_Init() fail!!!"},
    {"CMainFrame::OnCreate", "UART_Init() fail!!!"},
    {"CMainFrame::OnCreate", "g_pCPowerDetector->Init() fail!!!"},
    {"CMainFrame::OnTimer", "Mstar_C4_Scaler_Init() fail!!!", kScalersWord},
    {"Mstar_C4_Scaler_Init", "CreateFile() fail!!!", kScalersWord},
    {"Mstar_C4_Scaler_ChangeDisplayWinddow", "Invalid Arguments!!!", kScalersWord},
    {"Mstar_C4_Scaler_SetAlpha", "Invalid Arguments!!!", kScalersWord},
    {"Mstar_C4_Scaler_ColorKey", "Invalid Arguments!!!", kScalersWord},
    {"UART_SendCommand", "Invalid Arguments!!!"},
    {"CMainFrame::~CMainFrame", "Invalid Arguments!!!", kNoWord},
    {"CNotify::OnPaint", "Invalid Arguments!!!", kNoWord},
};
// clang-format on

constexpr std::string_view kPrefix = "[Tolvane.exe] ";

// A line of a failure, taken apart.
struct Told {
    Form form;
    std::optional<std::uint64_t> error;
};

// Cuts the part before the last ", " off the end of `text`.
std::string_view CutLast(std::string_view& text) {
    const std::size_t comma = text.rfind(", ");
    if (comma == std::string_view::npos)
        return {};
    const std::string_view last = text.substr(comma + 2);
    text = text.substr(0, comma);
    return last;
}

// The number of "WORD(number)"; nothing when the text has another form.
std::optional<std::uint64_t> NumberOf(std::string_view text, std::string_view& word) {
    const std::size_t open = text.find('(');
    if (open == std::string_view::npos || !text.ends_with(')'))
        return std::nullopt;
    word = text.substr(0, open);
    const std::string_view digits = text.substr(open + 1, text.size() - open - 2);
    if (digits.empty() || !std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; }))
        return std::nullopt;
    return std::stoull(std::string(digits));
}

// Nothing for a line that is not a failure's in its exact form.
std::optional<Told> TakeApart(std::string_view line) {
    if (!line.starts_with(kPrefix) || line.substr(kPrefix.size(), 1) != "\t")
        return std::nullopt;
    line.remove_prefix(kPrefix.size() + 1);
    std::string_view file;
    if (!NumberOf(CutLast(line), file) || !file.ends_with(".cpp") ||
        file.find('/') != std::string_view::npos)
        return std::nullopt;
    const std::size_t comma = line.find(", ");
    if (comma == std::string_view::npos)
        return std::nullopt;
    Told told{{line.substr(0, comma), line.substr(comma + 2), kNoWord}, std::nullopt};
    std::string_view word;
    if (const auto error = NumberOf(line.substr(line.rfind(", ") + 2), word)) {
        told.error = error;
        told.form.word = word;
        told.form.message = line.substr(comma + 2, line.rfind(", ") - comma - 2);
    }
    return told;
}

bool TellsOfFailure(std::string_view line) {
    return line.find(" fail!!!") != std::string_view::npos ||
           line.find("Invalid Arguments!!!") != std::string_view::npos;
}

bool IsInside(const std::vector<std::string>& lines, std::size_t end, std::string_view function) {
    const std::string entry = std::string(kPrefix) + "+++" + std::string(function);
    const std::string exit = std::string(kPrefix) + "---" + std::string(function);
    for (std::size_t index = end; index-- > 0;)
        if (lines[index] == entry || lines[index] == exit)
            return lines[index] == entry;
    return false;
}

const Row* RowFor(const FailureSeen& failure, const std::vector<std::string>& lines) {
    const auto fits = [&](const Row& row) {
        if (row.call != failure.call.call ||
            !(row.inside.empty() || IsInside(lines, failure.lines, row.inside)))
            return false;
        for (std::size_t index = 0; index < row.before.size(); ++index)
            if (!row.before[index].empty() &&
                (index >= failure.before.size() || failure.before[index] != row.before[index]))
                return false;
        return true;
    };
    const Row* const row = std::ranges::find_if(kRows, fits);
    return row == std::end(kRows) ? nullptr : row;
}

}  // namespace

std::vector<std::string> CheckLog(const std::vector<std::string>& lines,
                                  const std::vector<FailureSeen>& failures) {
    std::vector<std::string> wrong;
    std::vector<std::optional<Told>> told;
    for (const std::string& line : lines)
        told.push_back(TellsOfFailure(line) ? TakeApart(line) : std::nullopt);
    const bool without_picture = std::ranges::any_of(
        failures, [](const FailureSeen& each) { return each.call.call == "LoadImageW"; });

    for (const FailureSeen& failure : failures) {
        const Row* const row = RowFor(failure, lines);
        // The grey box that stands for a picture is drawn with a brush of its own.
        if (row == nullptr || row->forms.empty() ||
            (row->before[0] == "FillRect" && without_picture))
            continue;
        const auto tells = [&](const std::optional<Told>& line) {
            return line && line->error == failure.call.error &&
                   std::ranges::find(row->forms, line->form) != row->forms.end();
        };
        const auto line = std::find_if(told.begin() + static_cast<std::ptrdiff_t>(failure.lines),
                                       told.end(), tells);
        if (line == told.end())
            wrong.push_back("call " + std::to_string(failure.call.number_of_all) + ", " +
                            std::string(failure.call.call) + ", failed with error " +
                            std::to_string(failure.call.error) + " and was not told of");
    }
    for (std::size_t index = 0; index < lines.size(); ++index) {
        if (!TellsOfFailure(lines[index]))
            continue;
        const auto known = [&](const Form& form) { return told[index]->form == form; };
        if (!told[index] || !(std::ranges::any_of(kConsequences, known) ||
                              std::ranges::any_of(kRows, [&](const Row& row) {
                                  return std::ranges::any_of(row.forms, known);
                              })))
            wrong.push_back("a failure is told in no known form: " + lines[index]);
    }
    return wrong;
}

}  // namespace tests::campaign
