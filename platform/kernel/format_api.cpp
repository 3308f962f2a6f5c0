#include <windows.h>

#include <algorithm>
#include <cwchar>

#include "platform/kernel/kernel.h"
#include "platform/kernel/scheduler.h"
#include "platform/kernel/wide_format.h"

using namespace platform::kernel;

void NKDbgPrintfW(LPCWSTR format, ...) {
    SchedulingPoint();
    const DWORD last_error = GetLastError();
    va_list arguments;
    va_start(arguments, format);
    const std::wstring text = FormatWide(format, arguments);
    va_end(arguments);
    CurrentBoard().DebugOutput(text);
    SetLastError(last_error);
}

int wvsprintfW(LPWSTR out, LPCWSTR format, va_list arguments) {
    // The API's own limit: 1024 characters with the terminator.
    constexpr std::size_t kMost = 1023;
    va_list copy;
    va_copy(copy, arguments);
    const std::wstring text = FormatWide(format, copy);
    va_end(copy);
    const std::size_t length = std::min(text.size(), kMost);
    std::wmemcpy(out, text.data(), length);
    out[length] = 0;
    return static_cast<int>(length);
}

int wsprintfW(LPWSTR out, LPCWSTR format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = wvsprintfW(out, format, arguments);
    va_end(arguments);
    return length;
}

int lstrlenW(LPCWSTR text) {
    return text ? static_cast<int>(std::wcslen(text)) : 0;
}
