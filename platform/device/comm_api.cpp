#include <windows.h>

#include "platform/device/serial_port.h"
#include "platform/kernel/api_call.h"

using namespace platform;
using device::SerialPort;

namespace {

// Runs `request` on the port behind `handle`; a null `argument` is refused.
template <class Request>
BOOL OnPort(HANDLE handle, const void* argument, Request request) {
    const std::shared_ptr<SerialPort> port = kernel::FindObjectAs<SerialPort>(handle);
    if (!port)
        return FALSE;
    const DWORD error = argument ? request(*port) : ERROR_INVALID_PARAMETER;
    if (error == ERROR_SUCCESS)
        return TRUE;
    SetLastError(error);
    return FALSE;
}

}  // namespace

BOOL GetCommState(HANDLE handle, LPDCB settings) {
    const kernel::ApiCall call("GetCommState");
    if (call.Fails())
        return FALSE;
    return OnPort(handle, settings, [&](SerialPort& port) { return port.ReadSettings(*settings); });
}

BOOL SetCommState(HANDLE handle, LPDCB settings) {
    const kernel::ApiCall call("SetCommState");
    if (call.Fails())
        return FALSE;
    return OnPort(handle, settings,
                  [&](SerialPort& port) { return port.ApplySettings(*settings); });
}

BOOL GetCommTimeouts(HANDLE handle, LPCOMMTIMEOUTS timeouts) {
    const kernel::ApiCall call("GetCommTimeouts");
    if (call.Fails())
        return FALSE;
    return OnPort(handle, timeouts, [&](SerialPort& port) {
        *timeouts = port.timeouts();
        return ERROR_SUCCESS;
    });
}

BOOL SetCommTimeouts(HANDLE handle, LPCOMMTIMEOUTS timeouts) {
    const kernel::ApiCall call("SetCommTimeouts");
    if (call.Fails())
        return FALSE;
    return OnPort(handle, timeouts, [&](SerialPort& port) {
        port.SetTimeouts(*timeouts);
        return ERROR_SUCCESS;
    });
}

BOOL SetCommMask(HANDLE handle, DWORD mask) {
    const kernel::ApiCall call("SetCommMask");
    if (call.Fails())
        return FALSE;
    return OnPort(handle, &mask, [&](SerialPort& port) {
        port.SetEventMask(mask);
        return ERROR_SUCCESS;
    });
}

BOOL GetCommMask(HANDLE handle, LPDWORD mask) {
    const kernel::ApiCall call("GetCommMask");
    if (call.Fails())
        return FALSE;
    return OnPort(handle, mask, [&](SerialPort& port) {
        *mask = port.event_mask();
        return ERROR_SUCCESS;
    });
}
