#include "windows/ce/runtime/fatal.h"

#include <windows.h>

#include <bits/functexcept.h>

void EndProcess(const char* reason) {
    constexpr UINT kExitCode = 3;  // as abort() ends a process
    NKDbgPrintfW(L"Tolvane.exe: %S\r\n", reason);
    TerminateProcess(GetCurrentProcess(), kExitCode);
    for (;;)
        Sleep(INFINITE);
}

// Called through a virtual table while its object is constructed or destroyed.
extern "C" void __cxa_pure_virtual() {
    EndProcess("pure virtual function called");
}

// What the standard library throws with.
namespace std {

void __throw_bad_alloc() {
    EndProcess("out of memory");
}

void __throw_bad_array_new_length() {
    EndProcess("array too long");
}

void __throw_length_error(const char* what) {
    EndProcess(what);
}

}  // namespace std
