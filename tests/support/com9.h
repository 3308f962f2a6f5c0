#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

namespace tests {

// The program's: reads 50 ms and 50 ms per byte, writes 1 s and 10 ms per byte.
inline constexpr COMMTIMEOUTS kProgramTimeouts{0, 50, 50, 10, 1000};

// Opens "COM9:" with the program's settings, 460800 baud, 8N1, and these time-outs.
inline HANDLE OpenCom9(COMMTIMEOUTS timeouts = kProgramTimeouts) {
    const HANDLE port =
        CreateFileW(L"COM9:", GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    DCB settings{};
    settings.DCBlength = sizeof settings;
    EXPECT_TRUE(GetCommState(port, &settings));
    settings.BaudRate = 460800;
    settings.ByteSize = 8;
    settings.Parity = NOPARITY;
    settings.StopBits = ONESTOPBIT;
    EXPECT_TRUE(SetCommState(port, &settings));
    EXPECT_TRUE(SetCommTimeouts(port, &timeouts));
    return port;
}

// Returns the number of bytes written.
inline DWORD Write(HANDLE port, const std::string& text) {
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(port, text.data(), static_cast<DWORD>(text.size()), &written, nullptr));
    return written;
}

inline std::string Read(HANDLE port, DWORD most) {
    std::string text(most, '?');
    DWORD read = 0;
    EXPECT_TRUE(ReadFile(port, text.data(), most, &read, nullptr));
    EXPECT_EQ(text.find_first_not_of('?', read), std::string::npos) << "written beyond its end";
    return text.substr(0, read);
}

}  // namespace tests
