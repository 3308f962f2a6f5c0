#pragma once

#include <windows.h>

#include <source_location>

// The lines of the debug output. Formats stand literally where a line is written, so that a line
// seen in a log is found by searching for it; "%s" takes wide text and "%S" narrow text. A line
// without a helper here is written with NKDbgPrintfW itself.

// What every line begins with.
inline constexpr wchar_t kLogPrefix[] = L"[Tolvane.exe] ";

// The source file, without its directories, and the line that a failure line names. Made from the
// place of the call unless a call gives both.
struct LogSource {
    const char* file;
    int line;

    constexpr LogSource(const char* path, int line_number)
        : file(BaseName(path)), line(line_number) {}
    constexpr LogSource(const std::source_location& place)  // implicit: a default argument
        : LogSource(place.file_name(), static_cast<int>(place.line())) {}

    static constexpr const char* BaseName(const char* path) {
        const char* name = path;
        for (const char* character = path; *character != '\0'; ++character)
            if (*character == '/' || *character == '\\')
                name = character + 1;
        return name;
    }
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
                       LogSource source = std::source_location::current()) {
    NKDbgPrintfW(format, kLogPrefix, function, error, source.file, source.line);
}

// For formats without an error code, like L"%s\t%S, Invalid Arguments!!!, %S(%d)\r\n".
inline void LogRefusal(const wchar_t* format, const char* function,
                       LogSource source = std::source_location::current()) {
    NKDbgPrintfW(format, kLogPrefix, function, source.file, source.line);
}

static_assert(LogSource("a/b\\UART.cpp", 1).file[0] == 'U' &&
              LogSource("UART.cpp", 1).file[0] == 'U');
