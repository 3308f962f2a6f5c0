// Functions with records that have other layouts on the unit, with texts that the system writes,
// with formats, and with functions of the program.
#include <windows.h>

#include <pm.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "windows/ce/emulator/forward.h"
#include "windows/ce/emulator/host_pointers.h"
#include "windows/ce/emulator/program.h"
#include "windows/ce/emulator/system_functions.h"
#include "windows/ce/emulator/text.h"

namespace ce::record {
namespace {

// The unit's records.
struct UnitMessage {
    std::uint32_t window, message, wparam, lparam, time;
    POINT point;
};
static_assert(sizeof(UnitMessage) == 28);

struct UnitClass {
    std::uint32_t style, procedure, class_bytes, window_bytes, module, icon, cursor, background,
        menu, name;
};
static_assert(sizeof(UnitClass) == 40);

struct UnitPaint {
    std::uint32_t context;
    BOOL erase;
    RECT area;
    std::uint32_t reserved[10];
};
static_assert(sizeof(UnitPaint) == 64);

struct UnitFont {
    std::uint8_t numbers[offsetof(LOGFONTW, lfFaceName)];
    char16_t face[LF_FACESIZE];
};
static_assert(sizeof(UnitFont) == 92);

struct UnitBitmap {
    std::uint8_t numbers[offsetof(BITMAP, bmBits)];
    std::uint32_t bits;
};

template <typename Handle>
Handle HandleAt(std::uint32_t value) {
    return reinterpret_cast<Handle>(std::intptr_t{static_cast<std::int32_t>(value)});
}

// The program's window and dialog procedures. The platform calls a function of the host for each.
std::array<std::atomic<Address>, 4> g_procedures{};

template <std::size_t kIndex>
LRESULT CALLBACK HostProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    const HostPointer second(lparam);
    return static_cast<std::int32_t>(Processor::Current().Call(
        g_procedures[kIndex],
        {AddressOf(window), message, static_cast<std::uint32_t>(wparam), second.number()}));
}

constexpr WNDPROC kHostProcedures[] = {HostProcedure<0>, HostProcedure<1>, HostProcedure<2>,
                                       HostProcedure<3>};

WNDPROC HostProcedureOf(Address procedure) {
    for (std::size_t index = 0; index < g_procedures.size(); ++index) {
        Address none = 0;
        if (g_procedures[index].compare_exchange_strong(none, procedure) || none == procedure)
            return kHostProcedures[index];
    }
    return nullptr;
}

void RegisterWindowClass(SystemCall& call) {
    const auto& unit = *At<const UnitClass>(call.Argument(0));
    const std::wstring name = TextAt(unit.name);
    WNDCLASSW host{};
    host.style = unit.style;
    host.lpfnWndProc = HostProcedureOf(unit.procedure);
    host.hIcon = HandleAt<HICON>(unit.icon);
    host.hCursor = HandleAt<HCURSOR>(unit.cursor);
    host.hbrBackground = HandleAt<HBRUSH>(unit.background);
    host.lpszClassName = name.c_str();
    call.Return(RegisterClassW(&host));
}

// The program asks only whether there is such a class.
void GetWindowClass(SystemCall& call) {
    WNDCLASSW host{};
    call.Return(static_cast<std::uint32_t>(
        GetClassInfoW(nullptr, TextAt(call.Argument(1)).c_str(), &host)));
}

void RunDialog(SystemCall& call) {
    call.Return(static_cast<std::uint32_t>(DialogBoxIndirectParamW(
        nullptr, At<const DLGTEMPLATE>(call.Argument(1)), HandleAt<HWND>(call.Argument(2)),
        HostProcedureOf(call.Argument(3)), static_cast<std::int32_t>(call.Argument(4)))));
}

MSG HostMessage(const UnitMessage& unit) {
    return {HandleAt<HWND>(unit.window),
            unit.message,
            unit.wparam,
            static_cast<std::int32_t>(unit.lparam),
            unit.time,
            unit.point};
}

void Store(const MSG& host, Address unit) {
    *At<UnitMessage>(unit) = {AddressOf(host.hwnd),
                              host.message,
                              static_cast<std::uint32_t>(host.wParam),
                              static_cast<std::uint32_t>(host.lParam),
                              host.time,
                              host.pt};
}

void TakeMessage(SystemCall& call) {
    MSG message{};
    const BOOL taken =
        GetMessageW(&message, HandleAt<HWND>(call.Argument(1)), call.Argument(2), call.Argument(3));
    Store(message, call.Argument(0));
    call.Return(static_cast<std::uint32_t>(taken));
}

void LookForMessage(SystemCall& call) {
    MSG message{};
    const BOOL found = PeekMessageW(&message, HandleAt<HWND>(call.Argument(1)), call.Argument(2),
                                    call.Argument(3), call.Argument(4));
    if (found)
        Store(message, call.Argument(0));
    call.Return(static_cast<std::uint32_t>(found));
}

template <auto kFunction>
void PassMessage(SystemCall& call) {
    const MSG message = HostMessage(*At<const UnitMessage>(call.Argument(0)));
    call.Return(static_cast<std::uint32_t>(kFunction(&message)));
}

void TranslateShortcut(SystemCall& call) {
    MSG message = HostMessage(*At<const UnitMessage>(call.Argument(2)));
    call.Return(static_cast<std::uint32_t>(TranslateAcceleratorW(
        HandleAt<HWND>(call.Argument(0)), HandleAt<HACCEL>(call.Argument(1)), &message)));
}

void StartPainting(SystemCall& call) {
    PAINTSTRUCT host{};
    const HDC context = BeginPaint(HandleAt<HWND>(call.Argument(0)), &host);
    *At<UnitPaint>(call.Argument(1)) = {AddressOf(host.hdc), host.fErase, host.rcPaint, {}};
    call.Return(AddressOf(context));
}

void FinishPainting(SystemCall& call) {
    const auto& unit = *At<const UnitPaint>(call.Argument(1));
    PAINTSTRUCT host{};
    host.hdc = HandleAt<HDC>(unit.context);
    host.fErase = unit.erase;
    host.rcPaint = unit.area;
    call.Return(static_cast<std::uint32_t>(EndPaint(HandleAt<HWND>(call.Argument(0)), &host)));
}

void MakeFont(SystemCall& call) {
    const auto& unit = *At<const UnitFont>(call.Argument(0));
    LOGFONTW host{};
    std::memcpy(&host, unit.numbers, sizeof unit.numbers);
    const std::wstring face = TextAt(AddressOf(unit.face));
    std::copy_n(face.begin(), std::min<std::size_t>(face.size(), LF_FACESIZE - 1), host.lfFaceName);
    call.Return(AddressOf(CreateFontIndirectW(&host)));
}

// Of a bitmap: the program asks for nothing else.
void DescribeObject(SystemCall& call) {
    BITMAP host{};
    const int stored = GetObjectW(HandleAt<HGDIOBJ>(call.Argument(0)), sizeof host, &host);
    if (stored == sizeof host && call.Argument(1) == sizeof(UnitBitmap)) {
        auto& unit = *At<UnitBitmap>(call.Argument(2));
        std::memcpy(unit.numbers, &host, sizeof unit.numbers);
        unit.bits = 0;
    }
    call.Return(stored == 0 ? 0 : sizeof(UnitBitmap));
}

std::vector<HANDLE> HandlesAt(Address handles, std::uint32_t count) {
    std::vector<HANDLE> host;
    for (std::uint32_t index = 0; index < count; ++index)
        host.push_back(HandleAt<HANDLE>(At<const std::uint32_t>(handles)[index]));
    return host;
}

void WaitForHandles(SystemCall& call) {
    const std::vector<HANDLE> handles = HandlesAt(call.Argument(1), call.Argument(0));
    call.Return(WaitForMultipleObjects(call.Argument(0), handles.data(),
                                       static_cast<BOOL>(call.Argument(2)), call.Argument(3)));
}

void WaitForHandlesOrMessages(SystemCall& call) {
    const std::vector<HANDLE> handles = HandlesAt(call.Argument(1), call.Argument(0));
    call.Return(MsgWaitForMultipleObjects(call.Argument(0), handles.data(), FALSE, call.Argument(2),
                                          call.Argument(3)));
}

// EVENT_SET; the program does nothing else to an event.
void ModifyEvent(SystemCall& call) {
    call.Return(static_cast<std::uint32_t>(SetEvent(HandleAt<HANDLE>(call.Argument(0)))));
}

// The host's locks, by the addresses of the program's.
class Locks {
  public:
    CRITICAL_SECTION* Add(Address lock) {
        const std::scoped_lock hold(mutex_);
        auto& made = locks_[lock];
        made = std::make_unique<CRITICAL_SECTION>();
        return made.get();
    }
    CRITICAL_SECTION* Find(Address lock) {
        const std::scoped_lock hold(mutex_);
        return locks_.at(lock).get();
    }
    void Remove(Address lock) {
        const std::scoped_lock hold(mutex_);
        locks_.erase(lock);
    }

  private:
    std::mutex mutex_;
    std::map<Address, std::unique_ptr<CRITICAL_SECTION>> locks_;
};

Locks& AllLocks() {
    static Locks locks;
    return locks;
}

void MakeLock(SystemCall& call) {
    InitializeCriticalSection(AllLocks().Add(call.Argument(0)));
}

void RemoveLock(SystemCall& call) {
    DeleteCriticalSection(AllLocks().Find(call.Argument(0)));
    AllLocks().Remove(call.Argument(0));
}

template <auto kFunction>
void UseLock(SystemCall& call) {
    kFunction(AllLocks().Find(call.Argument(0)));
}

// The program reads only a record's first fields, which are the same on the host.
void ReadQueue(SystemCall& call) {
    std::vector<BYTE> buffer(call.Argument(2));
    DWORD read = 0;
    DWORD flags = 0;
    const BOOL done = ReadMsgQueue(HandleAt<HANDLE>(call.Argument(0)), buffer.data(),
                                   call.Argument(2), &read, call.Argument(4), &flags);
    std::memcpy(At(call.Argument(1)), buffer.data(),
                std::min<std::size_t>(read, offsetof(POWER_BROADCAST, SystemPowerState)));
    *At<DWORD>(call.Argument(3)) = read;
    *At<DWORD>(call.Argument(5)) = flags;
    call.Return(static_cast<std::uint32_t>(done));
}

void ModulePath(SystemCall& call) {
    std::wstring path(call.Argument(2), L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), call.Argument(2)));
    call.Return(StoreText(call.Argument(1), call.Argument(2), path));
}

void ResourceText(SystemCall& call) {
    std::wstring text(call.Argument(3), L'\0');
    text.resize(static_cast<std::size_t>(
        LoadStringW(nullptr, call.Argument(1), text.data(), static_cast<int>(call.Argument(3)))));
    call.Return(StoreText(call.Argument(2), call.Argument(3), text));
}

// A found resource is a pointer of the host, so the program gets a number instead.
std::vector<HRSRC>& FoundResources() {
    static thread_local std::vector<HRSRC> found;
    return found;
}

void FindProgramResource(SystemCall& call) {
    ArgumentReader reader{call, 1};
    const Argument<LPCWSTR> name(reader);
    const Argument<LPCWSTR> type(reader);
    const HRSRC found = FindResourceW(nullptr, name.Get(), type.Get());
    if (found != nullptr)
        FoundResources().push_back(found);
    call.Return(found == nullptr ? 0 : static_cast<std::uint32_t>(FoundResources().size()));
}

// The program locks what it loads, by an inline function.
void LoadProgramResource(SystemCall& call) {
    call.Return(
        AddressOf(LockResource(LoadResource(nullptr, FoundResources().at(call.Argument(1) - 1)))));
}

void QueryVersion(SystemCall& call) {
    LPVOID found = nullptr;
    UINT bytes = 0;
    const BOOL done =
        VerQueryValueW(At(call.Argument(0)), TextAt(call.Argument(1)).c_str(), &found, &bytes);
    *At<Address>(call.Argument(2)) = AddressOf(found);
    *At<UINT>(call.Argument(3)) = bytes;
    call.Return(static_cast<std::uint32_t>(done));
}

void Debug(SystemCall& call) {
    const std::wstring format = TextAt(call.Argument(0));
    const auto [value, texts] = WideFormatArguments(call, 1, format);
    NKDbgPrintfW(format.c_str(), value[0], value[1], value[2], value[3], value[4], value[5],
                 value[6], value[7], value[8], value[9]);
}

void Format(SystemCall& call) {
    constexpr std::uint32_t kMostCharacters = 1024;
    const std::wstring format = TextAt(call.Argument(1));
    const auto [value, texts] = WideFormatArguments(call, 2, format);
    wchar_t text[kMostCharacters + 1] = {};
    wsprintfW(text, format.c_str(), value[0], value[1], value[2], value[3], value[4], value[5],
              value[6], value[7], value[8], value[9]);
    call.Return(StoreText(call.Argument(0), kMostCharacters, text));
}

struct Row {
    std::string_view name;
    SystemFunction function;
};

constexpr Row kRows[] = {
    {"BeginPaint", StartPainting},
    {"CreateFontIndirectW", MakeFont},
    {"DeleteCriticalSection", RemoveLock},
    {"DialogBoxIndirectParamW", RunDialog},
    {"DispatchMessageW", PassMessage<DispatchMessageW>},
    {"EndPaint", FinishPainting},
    {"EnterCriticalSection", UseLock<EnterCriticalSection>},
    {"EventModify", ModifyEvent},
    {"FindResourceW", FindProgramResource},
    {"GetClassInfoW", GetWindowClass},
    {"GetMessageW", TakeMessage},
    {"GetModuleFileNameW", ModulePath},
    {"GetObjectW", DescribeObject},
    {"InitializeCriticalSection", MakeLock},
    {"LeaveCriticalSection", UseLock<LeaveCriticalSection>},
    {"LoadResource", LoadProgramResource},
    {"LoadStringW", ResourceText},
    {"MsgWaitForMultipleObjectsEx", WaitForHandlesOrMessages},
    {"NKDbgPrintfW", Debug},
    {"PeekMessageW", LookForMessage},
    {"ReadMsgQueue", ReadQueue},
    {"RegisterClassW", RegisterWindowClass},
    {"TranslateAcceleratorW", TranslateShortcut},
    {"TranslateMessage", PassMessage<TranslateMessage>},
    {"VerQueryValueW", QueryVersion},
    {"WaitForMultipleObjects", WaitForHandles},
    {"wsprintfW", Format},
};

}  // namespace

SystemFunction Find(std::string_view name) {
    const Row* const row = std::ranges::find(kRows, name, &Row::name);
    return row == std::end(kRows) ? nullptr : row->function;
}

}  // namespace ce::record
