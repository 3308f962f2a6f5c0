// The C library, thread-locals, threads and their end.
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <string_view>

#include "windows/ce/emulator/program.h"
#include "windows/ce/emulator/system_functions.h"
#include "windows/ce/emulator/text.h"

namespace ce::runtime {
namespace {

void Malloc(SystemCall& call) {
    call.Return(call.processor().memory().Allocate(call.Argument(0)));
}

void Free(SystemCall& call) {
    call.processor().memory().Free(call.Argument(0));
}

void MemoryCopy(SystemCall& call) {
    std::memcpy(At(call.Argument(0)), At(call.Argument(1)), call.Argument(2));
    call.Return(call.Argument(0));
}

void MemoryMove(SystemCall& call) {
    std::memmove(At(call.Argument(0)), At(call.Argument(1)), call.Argument(2));
    call.Return(call.Argument(0));
}

void MemorySet(SystemCall& call) {
    std::memset(At(call.Argument(0)), static_cast<int>(call.Argument(1)), call.Argument(2));
    call.Return(call.Argument(0));
}

std::u16string_view Units(Address text) {
    return At<const char16_t>(text);
}

void WideLength(SystemCall& call) {
    call.Return(static_cast<std::uint32_t>(Units(call.Argument(0)).size()));
}

// Fills up with zeros; no terminator when the text is too long.
void WideCopy(SystemCall& call) {
    const std::u16string_view text = Units(call.Argument(1)).substr(0, call.Argument(2));
    auto* const target = At<char16_t>(call.Argument(0));
    std::fill(std::copy(text.begin(), text.end(), target), target + call.Argument(2), u'\0');
    call.Return(call.Argument(0));
}

void Print(SystemCall& call) {
    const char* const format = At<const char>(call.Argument(0));
    const FormatArguments arguments = NarrowFormatArguments(call, 1, format);
    const auto& value = arguments.values;
    call.Return(
        static_cast<std::uint32_t>(std::printf(format, value[0], value[1], value[2], value[3])));
}

// The divisor comes first; the remainder is a second result.
void Divide(SystemCall& call) {
    const auto divisor = static_cast<std::int32_t>(call.Argument(0));
    const auto dividend = static_cast<std::int32_t>(call.Argument(1));
    call.Return(static_cast<std::uint32_t>(dividend / divisor),
                static_cast<std::uint32_t>(dividend % divisor));
}

// TLS_FUNCALLOC; the program frees no slot. Slots have numbers from 1 on, the same for all threads.
void TlsCall(SystemCall& call) {
    static std::atomic<std::uint32_t> last_slot{0};
    call.Return(++last_slot);
}

void TlsGet(SystemCall& call) {
    const auto& slots = call.processor().thread_locals();
    call.Return(call.Argument(0) < slots.size() ? slots[call.Argument(0)] : 0);
}

void TlsSet(SystemCall& call) {
    auto& slots = call.processor().thread_locals();
    slots.resize(std::max<std::size_t>(slots.size(), call.Argument(0) + std::size_t{1}));
    slots[call.Argument(0)] = call.Argument(1);
    call.Return(TRUE);
}

struct ThreadStart {
    Address function;
    std::uint32_t argument;
};

DWORD WINAPI RunThread(LPVOID argument) {
    const std::unique_ptr<ThreadStart> start(static_cast<ThreadStart*>(argument));
    return Program::Current().RunThread(start->function, {start->argument});
}

void StartThread(SystemCall& call) {
    auto start = std::make_unique<ThreadStart>(ThreadStart{call.Argument(2), call.Argument(3)});
    DWORD id = 0;
    const HANDLE thread = CreateThread(nullptr, 0, RunThread, start.get(), call.Argument(4), &id);
    if (thread != nullptr)
        static_cast<void>(start.release());
    if (call.Argument(5) != 0)
        *At<DWORD>(call.Argument(5)) = id;
    call.Return(AddressOf(thread));
}

void EndThread(SystemCall& call) {
    throw ThreadEnded{call.Argument(0)};
}

void EndProcess(SystemCall& call) {
    std::fprintf(stderr, "tolvane-arm: the program ended itself\n");
    std::_Exit(static_cast<int>(call.Argument(1)));
}

struct Row {
    std::string_view name;
    SystemFunction function;
};

constexpr Row kRows[] = {
    {"CreateThread", StartThread},
    {"ExitThread", EndThread},
    {"TerminateProcess", EndProcess},
    {"TlsCall", TlsCall},
    {"TlsGetValue", TlsGet},
    {"TlsSetValue", TlsSet},
    {"__rt_sdiv", Divide},
    {"free", Free},
    {"malloc", Malloc},
    {"memcpy", MemoryCopy},
    {"memmove", MemoryMove},
    {"memset", MemorySet},
    {"printf", Print},
    {"wcslen", WideLength},
    {"wcsncpy", WideCopy},
};

}  // namespace

SystemFunction Find(std::string_view name) {
    const Row* const row = std::ranges::find(kRows, name, &Row::name);
    return row == std::end(kRows) ? nullptr : row->function;
}

}  // namespace ce::runtime
