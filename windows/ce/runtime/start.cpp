// The image's entry point.
#include <windows.h>

namespace {

using Constructor = void (*)();

// Made by the linker: a length that is -1, the constructors, a null pointer.
extern "C" const Constructor __CTOR_LIST__[];

// As every C++ start-up does: from the last to the first.
void RunConstructors() {
    const Constructor* const first = __CTOR_LIST__ + 1;
    const Constructor* end = first;
    while (*end != nullptr)
        ++end;
    while (end != first)
        (*--end)();
}

}  // namespace

// The kernel starts a process with WinMain's arguments. The process ends with its first thread,
// whose exit code it takes.
extern "C" [[noreturn]] void WinMainCRTStartup(HINSTANCE instance, HINSTANCE previous,
                                               LPWSTR command_line, int show) {
    RunConstructors();
    ExitThread(static_cast<DWORD>(WinMain(instance, previous, command_line, show)));
}
