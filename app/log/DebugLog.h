#pragma once

#include <windows.h>

#include <source_location>

// The lines of the debug output. Each call contains its format literally, so that a search for a
// logged line finds the call. "%s" takes wide text, "%S" narrow text. A line without a
// helper here is written with NKDbgPrintfW itself.

// The prefix of every line.
inline constexpr wchar_t kLogPrefix[] = L"[Tolvane.exe] ";

// The module and the line that a failure line names. Made from the place of the call unless the
// call gives both.
struct LogSource {
    char module[40] = {};
    int line;

    // The module of UART.cpp and of UART.Frames.cpp is "UART.cpp".
    constexpr LogSource(const char* path, int line_number) : line(line_number) {
        const char* name = path;
        for (const char* character = path; *character != '\0'; ++character)
            if (*character == '/' || *character == '\\')
                name = character + 1;
        constexpr char kEnding[] = ".cpp";
        int length = 0;
        while (name[length] != '\0' && name[length] != '.' &&
               length + sizeof kEnding < sizeof module) {
            module[length] = name[length];
            ++length;
        }
        for (const char character : kEnding)
            module[length++] = character;
    }
    constexpr LogSource(const std::source_location& place)  // implicit: a default argument
        : LogSource(place.file_name(), static_cast<int>(place.line())) {}
};

// L"%s+++%S\r\n" and L"%s---%S\r\n": the entry and the exit of a function.
inline void LogEntry(const char* function) {
    NKDbgPrintfW(L"%s+++%S\r\n", kLogPrefix, function);
}
inline void LogExit(const char* function) {
    NKDbgPrintfW(L"%s---%S\r\n", kLogPrefix, function);
}

// For formats like L"%s\t%S, CreateFile() fail!!!, ErrorCode(%d), %S(%d)\r\n". Call it right after
// the call that failed, with GetLastError() as the error.
inline void LogFailure(const wchar_t* format, const char* function, DWORD error,
                       const LogSource& source = std::source_location::current()) {
    NKDbgPrintfW(format, kLogPrefix, function, error, source.module, source.line);
}

// For formats without an error code, like L"%s\t%S, Invalid Arguments!!!, %S(%d)\r\n".
inline void LogRefusal(const wchar_t* format, const char* function,
                       const LogSource& source = std::source_location::current()) {
    NKDbgPrintfW(format, kLogPrefix, function, source.module, source.line);
}

inline void LogNoMemory(const char* function,
                        const LogSource& source = std::source_location::current()) {
    LogFailure(L"%s\t%S, Allocate memory fail!!!, ErrorCode(%d), %S(%d)\r\n", function,
               GetLastError(), source);
}
