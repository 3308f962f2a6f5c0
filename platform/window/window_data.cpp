#include <cstring>

#include "platform/kernel/api_call.h"
#include "platform/window/desktop.h"

using namespace platform;
using namespace platform::window;

namespace {

// The bits of GWL_STYLE and GWL_EXSTYLE that have calls of their own.
constexpr DWORD kFixedStyle =
    WS_VISIBLE | WS_DISABLED | WS_CHILD | WS_CAPTION | WS_THICKFRAME | WS_VSCROLL | WS_HSCROLL;
constexpr DWORD kFixedExtendedStyle = WS_EX_TOPMOST;

LONG_PTR Signed(DWORD value) {
    return static_cast<LONG>(value);
}

// One value of a window as the API numbers them. Fixed bits stay as they are.
class Value {
  public:
    Value(Window& window, int index, std::size_t size)
        : window_(window), index_(index), size_(size) {}

    bool Valid() const {
        switch (index_) {
            case GWL_STYLE:
            case GWL_EXSTYLE:
            case GWL_ID:
                return true;
            case GWLP_WNDPROC:
            case GWLP_USERDATA:
                return size_ == sizeof(LONG_PTR);
            default:
                return index_ >= 0 && std::size_t(index_) + size_ <= window_.extra.size();
        }
    }

    LONG_PTR Get() const {
        LONG_PTR value = 0;
        switch (index_) {
            case GWL_STYLE:
                return Signed(window_.style);
            case GWL_EXSTYLE:
                return Signed(window_.extended_style);
            case GWLP_ID:
                return window_.identifier;
            case GWLP_WNDPROC:
                return reinterpret_cast<LONG_PTR>(window_.procedure);
            case GWLP_USERDATA:
                return window_.user_data;
            default:
                std::memcpy(&value, window_.extra.data() + index_, size_);
                return size_ == sizeof(LONG) ? static_cast<LONG>(value) : value;
        }
    }

    void Set(LONG_PTR value) {
        const DWORD bits = static_cast<DWORD>(value);
        switch (index_) {
            case GWL_STYLE:
                window_.style = (window_.style & kFixedStyle) | (bits & ~kFixedStyle);
                return;
            case GWL_EXSTYLE:
                window_.extended_style =
                    (window_.extended_style & kFixedExtendedStyle) | (bits & ~kFixedExtendedStyle);
                return;
            case GWLP_ID:
                window_.identifier = value;
                return;
            case GWLP_WNDPROC:
                window_.procedure = reinterpret_cast<WNDPROC>(value);
                return;
            case GWLP_USERDATA:
                window_.user_data = value;
                return;
            default:
                std::memcpy(window_.extra.data() + index_, &value, size_);
                return;
        }
    }

  private:
    Window& window_;
    int index_;
    std::size_t size_;
};

// The earlier value when `replacement` is given. Little-endian hosts only, as the memcpy of a part
// of a LONG_PTR assumes.
LONG_PTR Access(HWND handle, int index, std::size_t size, const LONG_PTR* replacement) {
    kernel::KernelLock lock = kernel::LockKernel();
    const auto window = RequireWindow(lock, handle);
    if (!window)
        return 0;
    Value value(*window, index, size);
    if (!value.Valid()) {
        SetLastError(ERROR_INVALID_INDEX);
        return 0;
    }
    if (index == GWLP_WNDPROC && replacement && *replacement == 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const LONG_PTR previous = value.Get();
    if (replacement)
        value.Set(*replacement);
    return previous;
}

}  // namespace

LONG GetWindowLongW(HWND window, int index) {
    const kernel::ApiCall call("GetWindowLongW");
    if (call.Fails())
        return 0;
    return static_cast<LONG>(Access(window, index, sizeof(LONG), nullptr));
}

LONG SetWindowLongW(HWND window, int index, LONG value) {
    const kernel::ApiCall call("SetWindowLongW");
    if (call.Fails())
        return 0;
    const LONG_PTR wide = value;
    return static_cast<LONG>(Access(window, index, sizeof(LONG), &wide));
}

LONG_PTR GetWindowLongPtrW(HWND window, int index) {
    const kernel::ApiCall call("GetWindowLongPtrW");
    if (call.Fails())
        return 0;
    return Access(window, index, sizeof(LONG_PTR), nullptr);
}

LONG_PTR SetWindowLongPtrW(HWND window, int index, LONG_PTR value) {
    const kernel::ApiCall call("SetWindowLongPtrW");
    if (call.Fails())
        return 0;
    return Access(window, index, sizeof(LONG_PTR), &value);
}
