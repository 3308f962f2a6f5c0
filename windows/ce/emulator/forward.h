#pragma once

#include <windows.h>

#include <commctrl.h>
#include <msgqueue.h>

#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

#include "windows/ce/emulator/host_pointers.h"
#include "windows/ce/emulator/processor.h"
#include "windows/ce/emulator/text.h"

namespace ce {

// A function of the platform as a SystemFunction: converts every argument and the result by type.

// What points to the same bytes on the unit and on the host.
template <typename Object>
inline constexpr bool kSameLayout =
    std::is_void_v<Object> || std::is_arithmetic_v<Object> || std::is_same_v<Object, RECT> ||
    std::is_same_v<Object, DCB> || std::is_same_v<Object, COMMTIMEOUTS> ||
    std::is_same_v<Object, MSGQUEUEOPTIONS> || std::is_same_v<Object, SYSTEM_POWER_STATUS_EX2> ||
    std::is_same_v<Object, INITCOMMONCONTROLSEX>;

// A handle's type points to a structure that has no meaning.
template <typename Object>
concept HandleTarget = requires(Object object) {
    object.unused;
};

// The program passes none of these.
template <typename Object>
inline constexpr bool kAlwaysNull =
    std::is_same_v<Object, OVERLAPPED> || std::is_same_v<Object, SECURITY_ATTRIBUTES>;

// Reads the next argument of a call.
struct ArgumentReader {
    std::uint32_t Next() { return call.Argument(index++); }

    const SystemCall& call;
    unsigned index = 0;
};

template <typename Type>
class Argument {
  public:
    explicit Argument(ArgumentReader& reader) : value_(From(reader.Next())) {}
    Type Get() const { return value_; }

  private:
    static Type From(std::uint32_t value) {
        if constexpr (std::is_pointer_v<Type>) {
            using Object = std::remove_cv_t<std::remove_pointer_t<Type>>;
            static_assert(kSameLayout<Object> || HandleTarget<Object> || kAlwaysNull<Object> ||
                          std::is_function_v<Object>);
            // INVALID_HANDLE_VALUE and the like are negative numbers.
            return reinterpret_cast<Type>(std::intptr_t{static_cast<std::int32_t>(value)});
        } else if constexpr (std::is_signed_v<Type>) {
            return static_cast<Type>(static_cast<std::int32_t>(value));
        } else {
            return static_cast<Type>(value);
        }
    }

    Type value_;
};

// Text, or the number of a resource.
template <>
class Argument<LPCWSTR> {
  public:
    explicit Argument(ArgumentReader& reader) : value_(reader.Next()) {
        if (!IS_INTRESOURCE(value_))
            text_ = TextAt(value_);
    }
    LPCWSTR Get() const { return IS_INTRESOURCE(value_) ? At<wchar_t>(value_) : text_.c_str(); }

  private:
    Address value_;
    std::wstring text_;
};

template <>
class Argument<LPARAM> {
  public:
    explicit Argument(ArgumentReader& reader) : value_(HostPointer::Parameter(reader.Next())) {}
    LPARAM Get() const { return value_; }

  private:
    LPARAM value_;
};

// The program is the only module.
template <>
class Argument<HINSTANCE> {
  public:
    explicit Argument(ArgumentReader& reader) { reader.Next(); }
    static HINSTANCE Get() { return nullptr; }
};

template <>
class Argument<POINT> {
  public:
    explicit Argument(ArgumentReader& reader) {
        value_.x = static_cast<LONG>(reader.Next());
        value_.y = static_cast<LONG>(reader.Next());
    }
    POINT Get() const { return value_; }

  private:
    POINT value_{};
};

template <typename Result>
std::uint32_t ToRegister(Result result) {
    if constexpr (std::is_pointer_v<Result>)
        return AddressOf(result);
    else
        return static_cast<std::uint32_t>(result);
}

template <auto kFunction, typename Result, typename... Arguments>
void ForwardCall(SystemCall& call, Result (*)(Arguments...)) {
    [[maybe_unused]] ArgumentReader reader{call};  // without arguments
    // Braces evaluate from left to right.
    const std::tuple<Argument<Arguments>...> arguments{Argument<Arguments>(reader)...};
    std::apply(
        [&](const auto&... argument) {
            if constexpr (std::is_void_v<Result>)
                kFunction(argument.Get()...);
            else
                call.Return(ToRegister(kFunction(argument.Get()...)));
        },
        arguments);
}

template <auto kFunction>
void Forward(SystemCall& call) {
    ForwardCall<kFunction>(call, kFunction);
}

}  // namespace ce
