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
extern "C" [[noreturn]] void StartProgram(HINSTANCE instance, HINSTANCE previous,
                                          LPWSTR command_line, int show) {
    RunConstructors();
    ExitThread(static_cast<DWORD>(WinMain(instance, previous, command_line, show)));
}

// The entry point is ARM code, the state in which a kernel without Thumb support of its own starts
// a process; the assembler for this target knows Thumb alone.
__asm__(
    ".text\n"
    ".globl WinMainCRTStartup\n"
    ".p2align 2\n"
    "WinMainCRTStartup:\n"
    ".long 0xE59FC000\n"  // ldr ip, [pc]: the word after the next instruction
    ".long 0xE12FFF1C\n"  // bx ip
    ".long StartProgram\n");
