#include <windows.h>

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cwchar>
#include <string>
#include <string_view>

#include "platform/kernel/kernel.h"
#include "platform/kernel/scheduler.h"
#include "platform/kernel/text.h"

namespace platform::kernel {
namespace {

enum class Size { kDefault, kNarrow, kWide, kLong64 };

struct Conversion {
    bool left = false;
    bool alternate = false;
    bool zero = false;
    int width = 0;
    int precision = -1;
    Size size = Size::kDefault;
    wchar_t type = 0;
};

// The format language that the API documents for its wide formatters: in a wide format %s and %c
// are wide, %S and %C narrow, %ls and %hs always wide and narrow; l is 32 bits and I64 is 64. Flags
// - # 0, width and precision, types d i u x X c C s S p %. Anything else is copied as it stands. A
// null text prints as "(null)".
class Formatter {
  public:
    Formatter(const wchar_t* format, va_list& arguments) : at_(format), arguments_(arguments) {}

    std::wstring Run() {
        while (*at_) {
            if (*at_ != L'%') {
                out_ += *at_++;
                continue;
            }
            const wchar_t* const start = at_++;
            const Conversion conversion = Parse();
            if (!Convert(conversion)) {
                out_.append(start, at_);
            }
        }
        return std::move(out_);
    }

  private:
    Conversion Parse() {
        Conversion conversion;
        ParseFlags(conversion);
        conversion.width = ParseNumber();
        if (*at_ == L'.') {
            ++at_;
            conversion.precision = ParseNumber();
        }
        ParseSize(conversion);
        conversion.type = *at_;
        if (*at_)
            ++at_;
        return conversion;
    }

    void ParseFlags(Conversion& conversion) {
        for (;; ++at_) {
            switch (*at_) {
                case L'-':
                    conversion.left = true;
                    break;
                case L'#':
                    conversion.alternate = true;
                    break;
                case L'0':
                    conversion.zero = true;
                    break;
                default:
                    return;
            }
        }
    }

    int ParseNumber() {
        int number = 0;
        for (; *at_ >= L'0' && *at_ <= L'9'; ++at_)
            number = std::min(number * 10 + static_cast<int>(*at_ - L'0'), kLongest);
        return number;
    }

    void ParseSize(Conversion& conversion) {
        if (std::wstring_view(at_).starts_with(L"I64")) {
            at_ += 3;
            conversion.size = Size::kLong64;
            return;
        }
        for (;; ++at_) {
            if (*at_ == L'h')
                conversion.size = Size::kNarrow;
            else if (*at_ == L'l' || *at_ == L'w')
                conversion.size = conversion.size == Size::kWide ? Size::kLong64 : Size::kWide;
            else
                return;
        }
    }

    bool Convert(const Conversion& conversion) {
        switch (conversion.type) {
            case L'%':
                out_ += L'%';
                return true;
            case L'd':
            case L'i':
                PutSigned(conversion);
                return true;
            case L'u':
                PutUnsigned(conversion, 10, false);
                return true;
            case L'x':
                PutUnsigned(conversion, 16, false);
                return true;
            case L'X':
                PutUnsigned(conversion, 16, true);
                return true;
            case L'p':
                PutPointer(conversion);
                return true;
            case L'c':
            case L'C':
                PutCharacter(conversion);
                return true;
            case L's':
            case L'S':
                PutText(conversion);
                return true;
            default:
                return false;
        }
    }

    // In a wide format the small letter means wide text and the capital narrow text.
    static bool IsNarrow(const Conversion& conversion) {
        if (conversion.size == Size::kNarrow)
            return true;
        if (conversion.size != Size::kDefault)
            return false;
        return conversion.type == L'S' || conversion.type == L'C';
    }

    void PutCharacter(const Conversion& conversion) {
        const int value = va_arg(arguments_, int);
        const auto character = IsNarrow(conversion)
                                   ? static_cast<wchar_t>(static_cast<unsigned char>(value))
                                   : static_cast<wchar_t>(value);
        Pad(conversion, {}, std::wstring(1, character), false);
    }

    void PutText(const Conversion& conversion) {
        // Reads `precision` characters at most: the text may have no terminator.
        const std::size_t most = conversion.precision < 0
                                     ? std::wstring::npos
                                     : static_cast<std::size_t>(conversion.precision);
        std::wstring text;
        if (IsNarrow(conversion)) {
            const char* narrow = va_arg(arguments_, const char*);
            text = narrow ? FromNarrow({narrow, Length(narrow, most)}) : L"(null)";
        } else {
            const wchar_t* wide = va_arg(arguments_, const wchar_t*);
            text = wide ? std::wstring(wide, Length(wide, most)) : L"(null)";
        }
        Pad(conversion, {}, text, false);
    }

    template <class Character>
    static std::size_t Length(const Character* text, std::size_t most) {
        std::size_t length = 0;
        while (length < most && text[length])
            ++length;
        return length;
    }

    void PutSigned(const Conversion& conversion) {
        std::int64_t value = conversion.size == Size::kLong64 ? va_arg(arguments_, std::int64_t)
                                                              : va_arg(arguments_, int);
        if (conversion.size == Size::kNarrow)
            value = static_cast<std::int16_t>(value);
        const std::uint64_t magnitude =
            value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
        Pad(conversion, value < 0 ? L"-" : L"", Digits(conversion, magnitude, 10, false), true);
    }

    void PutUnsigned(const Conversion& conversion, unsigned base, bool capitals) {
        std::uint64_t value = conversion.size == Size::kLong64 ? va_arg(arguments_, std::uint64_t)
                                                               : va_arg(arguments_, unsigned);
        if (conversion.size == Size::kNarrow)
            value = static_cast<std::uint16_t>(value);
        const wchar_t* prefix = L"";
        if (conversion.alternate && base == 16 && value != 0)
            prefix = capitals ? L"0X" : L"0x";
        Pad(conversion, prefix, Digits(conversion, value, base, capitals), true);
    }

    void PutPointer(Conversion conversion) {
        conversion.precision = static_cast<int>(2 * sizeof(void*));
        const auto value = reinterpret_cast<std::uintptr_t>(va_arg(arguments_, void*));
        Pad(conversion, {}, Digits(conversion, value, 16, true), true);
    }

    static std::wstring Digits(const Conversion& conversion, std::uint64_t value, unsigned base,
                               bool capitals) {
        const wchar_t* const set = capitals ? L"0123456789ABCDEF" : L"0123456789abcdef";
        std::wstring digits;
        for (; value != 0; value /= base)
            digits += set[value % base];
        const int least = conversion.precision < 0 ? 1 : conversion.precision;
        while (static_cast<int>(digits.size()) < least)
            digits += L'0';
        std::reverse(digits.begin(), digits.end());
        return digits;
    }

    void Pad(const Conversion& conversion, std::wstring_view prefix, const std::wstring& body,
             bool number) {
        const auto length = static_cast<int>(prefix.size() + body.size());
        const std::size_t fill = static_cast<std::size_t>(std::max(0, conversion.width - length));
        // A precision switches zero filling off for numbers.
        const bool zeros =
            conversion.zero && !conversion.left && !(number && conversion.precision >= 0);
        if (!conversion.left && !zeros)
            out_.append(fill, L' ');
        out_ += prefix;
        if (zeros)
            out_.append(fill, L'0');
        out_ += body;
        if (conversion.left)
            out_.append(fill, L' ');
    }

    static constexpr int kLongest = 4096;

    const wchar_t* at_;
    va_list& arguments_;
    std::wstring out_;
};

}  // namespace
}  // namespace platform::kernel

using namespace platform::kernel;

void NKDbgPrintfW(LPCWSTR format, ...) {
    SchedulingPoint();
    const DWORD last_error = GetLastError();
    va_list arguments;
    va_start(arguments, format);
    const std::wstring text = Formatter(format, arguments).Run();
    va_end(arguments);
    CurrentBoard().DebugOutput(text);
    SetLastError(last_error);
}

int wvsprintfW(LPWSTR out, LPCWSTR format, va_list arguments) {
    // The API's own limit: 1024 characters with the terminator.
    constexpr std::size_t kMost = 1023;
    va_list copy;
    va_copy(copy, arguments);
    const std::wstring text = Formatter(format, copy).Run();
    va_end(copy);
    const std::size_t length = std::min(text.size(), kMost);
    std::wmemcpy(out, text.data(), length);
    out[length] = 0;
    return static_cast<int>(length);
}

int wsprintfW(LPWSTR out, LPCWSTR format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = wvsprintfW(out, format, arguments);
    va_end(arguments);
    return length;
}

int lstrlenW(LPCWSTR text) {
    return text ? static_cast<int>(std::wcslen(text)) : 0;
}
