#include <windows.h>

#include <string_view>

#include "platform/device/stream_driver.h"
#include "platform/kernel/api_call.h"
#include "platform/kernel/kernel.h"

using namespace platform;
using device::Stream;

namespace {

// Device names end with a colon; there is no file system.
bool IsDeviceName(std::wstring_view name) {
    return name.size() >= 2 && name.back() == L':';
}

BOOL Report(DWORD error) {
    if (error == ERROR_SUCCESS)
        return TRUE;
    SetLastError(error);
    return FALSE;
}

template <class Byte, class Pointer>
std::span<Byte> Bytes(Pointer pointer, DWORD size) {
    return {static_cast<Byte*>(pointer), pointer ? size : 0};
}

}  // namespace

HANDLE CreateFileW(LPCWSTR name, DWORD access, DWORD share_mode, LPSECURITY_ATTRIBUTES,
                   DWORD creation, DWORD flags, HANDLE) {
    const kernel::ApiCall call("CreateFileW");
    if (call.Fails())
        return INVALID_HANDLE_VALUE;
    if (!name || creation != OPEN_EXISTING || (flags & FILE_FLAG_OVERLAPPED) != 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    if (!IsDeviceName(name)) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    const std::shared_ptr<device::StreamDriver> driver = kernel::CurrentBoard().FindDriver(name);
    std::shared_ptr<Stream> stream;
    if (!Report(driver ? driver->Open(access, share_mode, stream) : ERROR_DEV_NOT_EXIST))
        return INVALID_HANDLE_VALUE;
    return kernel::OpenHandle(std::move(stream));
}

BOOL ReadFile(HANDLE handle, LPVOID buffer, DWORD size, LPDWORD read, LPOVERLAPPED overlapped) {
    const kernel::ApiCall call("ReadFile");
    if (read)
        *read = 0;
    if (call.Fails())
        return FALSE;
    const std::shared_ptr<Stream> stream = kernel::FindObjectAs<Stream>(handle);
    if (!stream)
        return FALSE;
    if (overlapped || !read || (!buffer && size != 0))
        return Report(ERROR_INVALID_PARAMETER);
    return Report(stream->Read(Bytes<std::byte>(buffer, size), *read));
}

BOOL WriteFile(HANDLE handle, LPCVOID buffer, DWORD size, LPDWORD written,
               LPOVERLAPPED overlapped) {
    const kernel::ApiCall call("WriteFile");
    if (written)
        *written = 0;
    if (call.Fails())
        return FALSE;
    const std::shared_ptr<Stream> stream = kernel::FindObjectAs<Stream>(handle);
    if (!stream)
        return FALSE;
    if (overlapped || !written || (!buffer && size != 0))
        return Report(ERROR_INVALID_PARAMETER);
    return Report(stream->Write(Bytes<const std::byte>(buffer, size), *written));
}

BOOL DeviceIoControl(HANDLE handle, DWORD code, LPVOID input, DWORD input_size, LPVOID output,
                     DWORD output_size, LPDWORD returned, LPOVERLAPPED overlapped) {
    const kernel::ApiCall call("DeviceIoControl");
    if (call.Fails())
        return FALSE;
    const std::shared_ptr<Stream> stream = kernel::FindObjectAs<Stream>(handle);
    if (!stream)
        return FALSE;
    if (overlapped || (!input && input_size != 0) || (!output && output_size != 0))
        return Report(ERROR_INVALID_PARAMETER);
    DWORD count = 0;
    const DWORD error = stream->IoControl(code, Bytes<const std::byte>(input, input_size),
                                          Bytes<std::byte>(output, output_size), count);
    if (returned)
        *returned = count;
    return Report(error);
}
