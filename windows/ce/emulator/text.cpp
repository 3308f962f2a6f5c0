#include "windows/ce/emulator/text.h"

#include <algorithm>
#include <cstring>

#include "platform/kernel/text.h"

namespace ce {
namespace {

// Calls visit(conversion) with the letter of each one that takes an argument.
template <typename Text, typename Visit>
void ForEachConversion(const Text& format, Visit visit) {
    for (auto at = format.begin(); (at = std::find(at, format.end(), '%')) != format.end(); ++at) {
        at = std::find_if(at + 1, format.end(), [](auto character) {
            return std::strchr("-+ #0123456789.hl", static_cast<int>(character)) == nullptr;
        });
        if (at == format.end())
            return;
        if (*at != '%')
            visit(*at);
    }
}

std::u16string ToUtf16(const std::wstring& text) {
    std::u16string units;
    for (const wchar_t character : text) {
        const auto code = static_cast<char32_t>(character);
        if (code < 0x10000) {
            units += static_cast<char16_t>(code);
        } else {
            units += static_cast<char16_t>(0xD7C0 + (code >> 10));
            units += static_cast<char16_t>(0xDC00 + (code & 0x3FF));
        }
    }
    return units;
}

template <typename Text>
FormatArguments ReadArguments(const SystemCall& call, unsigned first, const Text& format,
                              char wide_text) {
    FormatArguments arguments;
    unsigned index = 0;
    ForEachConversion(format, [&](auto conversion) {
        if (index == arguments.values.size())
            return;
        const std::uint32_t value = call.Argument(first + index);
        arguments.values[index] = value;
        if (static_cast<char>(conversion) == wide_text && value != 0)
            arguments.values[index] = reinterpret_cast<std::uintptr_t>(
                arguments.texts.emplace_back(TextAt(value)).c_str());
        ++index;
    });
    return arguments;
}

}  // namespace

std::wstring TextAt(Address text) {
    return platform::kernel::FromUtf16(At<const char16_t>(text));
}

std::uint32_t StoreText(Address buffer, std::uint32_t capacity, const std::wstring& text) {
    if (capacity == 0)
        return 0;
    const std::u16string units = ToUtf16(text).substr(0, capacity - 1);
    std::memcpy(At(buffer), units.c_str(), (units.size() + 1) * sizeof(char16_t));
    return static_cast<std::uint32_t>(units.size());
}

FormatArguments WideFormatArguments(const SystemCall& call, unsigned first,
                                    const std::wstring& format) {
    return ReadArguments(call, first, format, 's');
}

FormatArguments NarrowFormatArguments(const SystemCall& call, unsigned first,
                                      const std::string& format) {
    return ReadArguments(call, first, format, '\0');
}

}  // namespace ce
