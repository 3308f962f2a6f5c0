#include "dvrlink/SerialPort.h"

#include "app/log/DebugLog.h"
#include "dvrlink/LinkState.h"

namespace {

// A handle under configuration, closed unless it is released.
class OpenPort {
  public:
    explicit OpenPort(HANDLE handle) : m_handle(handle) {}
    OpenPort(const OpenPort&) = delete;
    OpenPort& operator=(const OpenPort&) = delete;
    ~OpenPort() {
        if (IsOpen())
            CloseHandle(m_handle);
    }

    bool IsOpen() const { return m_handle != nullptr && m_handle != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return m_handle; }
    HANDLE Release() {
        const HANDLE handle = m_handle;
        m_handle = nullptr;
        return handle;
    }

  private:
    HANDLE m_handle;
};

bool SetLine(HANDLE port, const char* function) {
    DCB settings{};
    settings.DCBlength = sizeof settings;
    if (!GetCommState(port, &settings)) {
        LogFailure(L"%s\t%S, GetCommState() fail!!!, ErrorCode(%d), %S(%d)\r\n", function,
                   GetLastError());
        return false;
    }
    settings.BaudRate = 460800;
    settings.ByteSize = 8;
    settings.Parity = NOPARITY;
    settings.StopBits = ONESTOPBIT;
    if (!SetCommState(port, &settings)) {
        LogFailure(L"%s\t%S, SetCommState() fail!!!, ErrorCode(%d), %S(%d)\r\n", function,
                   GetLastError());
        return false;
    }
    return true;
}

bool SetTimeouts(HANDLE port, const char* function) {
    // A read of one byte returns with the byte, or empty after 100 ms.
    COMMTIMEOUTS timeouts{};
    timeouts.ReadIntervalTimeout = 0;
    timeouts.ReadTotalTimeoutMultiplier = 50;
    timeouts.ReadTotalTimeoutConstant = 50;
    timeouts.WriteTotalTimeoutMultiplier = 10;
    timeouts.WriteTotalTimeoutConstant = 1000;
    if (!SetCommTimeouts(port, &timeouts)) {
        LogFailure(L"%s\t%S, SetCommTimeouts() fail!!!, ErrorCode(%d), %S(%d)\r\n", function,
                   GetLastError());
        return false;
    }
    return true;
}

bool OpenLinkPort(const char* function) {
    OpenPort port(
        CreateFileW(L"COM9:", GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!port.IsOpen()) {
        LogFailure(L"%s\t%S, CreateFile() fail!!!, ErrorCode(%d), %S(%d)\r\n", function,
                   GetLastError());
        return false;
    }
    if (!SetLine(port.Get(), function) || !SetTimeouts(port.Get(), function))
        return false;
    SetCommMask(port.Get(), EV_RXCHAR | EV_ERR);
    g_hComPort = port.Release();
    return true;
}

}  // namespace

BOOL COM_Init() {
    if (g_hComPort != nullptr)
        return TRUE;
    LogEntry(__func__);
    const BOOL opened = OpenLinkPort(__func__);
    LogExit(__func__);
    return opened;
}

BOOL COM_DeInit() {
    const HANDLE port = g_hComPort;
    if (port == nullptr)
        return TRUE;
    g_bReceiveRunning = FALSE;
    Sleep(10);
    g_hComPort = nullptr;
    return CloseHandle(port);
}
