#include "platform/resource/resource_name.h"

#include <algorithm>
#include <cwctype>

namespace platform::resource {

namespace {

wchar_t UpperCase(wchar_t character) {
    return static_cast<wchar_t>(std::towupper(static_cast<std::wint_t>(character)));
}

constexpr DWORD kMaxNumber = 0xFFFF;

}  // namespace

ResourceName::ResourceName(std::wstring_view text) : text_(text) {
    std::ranges::transform(text_, text_.begin(), UpperCase);
}

ResourceName ResourceName::FromApi(LPCWSTR name) {
    if (IS_INTRESOURCE(name))
        return ResourceName(static_cast<WORD>(reinterpret_cast<ULONG_PTR>(name)));
    const std::wstring_view text = name;
    if (!text.starts_with(L'#'))
        return ResourceName(text);
    DWORD number = 0;
    for (const wchar_t digit : text.substr(1)) {
        if (digit < L'0' || digit > L'9')
            return ResourceName(text);
        number = number * 10 + static_cast<DWORD>(digit - L'0');
        if (number > kMaxNumber)
            return ResourceName(text);
    }
    return ResourceName(static_cast<WORD>(number));
}

bool SameText(std::wstring_view left, std::wstring_view right) {
    return std::ranges::equal(left, right, {}, UpperCase, UpperCase);
}

}  // namespace platform::resource
