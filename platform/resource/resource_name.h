#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace platform::resource {

// The type or the name of a resource: a number, or a text that ignores case.
class ResourceName {
  public:
    ResourceName() = default;
    explicit ResourceName(WORD number) : number_(number) {}
    explicit ResourceName(std::wstring_view text);

    // From an argument of the API: MAKEINTRESOURCE, a text, or "#" and the number in decimal.
    static ResourceName FromApi(LPCWSTR name);

    bool operator==(const ResourceName&) const = default;

  private:
    WORD number_ = 0;
    std::wstring text_;
};

// Compares texts without regard to case.
bool SameText(std::wstring_view left, std::wstring_view right);

}  // namespace platform::resource
