#include "platform/window/dialog_template.h"

#include <cstring>

#include "platform/kernel/text.h"
#include "platform/window/class_registry.h"

namespace platform::window {
namespace {

// Horizontal and vertical base units of 8 point "MS Sans Serif", which every dialog is measured by.
constexpr int kBaseWidth = 6;
constexpr int kBaseHeight = 13;

constexpr WORD kOrdinalFollows = 0xFFFF;
// The head of the extended form: version 1 and a signature where the style would be.
constexpr DWORD kExtendedForm = 0xFFFF0001;

// Rounds to the nearest pixel, halves away from zero.
int Scale(int units, int base, int parts) {
    const int doubled = 2 * units * base;
    return (doubled + (units < 0 ? -parts : parts)) / (2 * parts);
}

// The 16-bit units after the head of the template.
class Reader {
  public:
    explicit Reader(const void* position) : position_(static_cast<const std::byte*>(position)) {}

    WORD Unit() {
        WORD unit = 0;
        std::memcpy(&unit, position_, sizeof unit);
        position_ += sizeof unit;
        return unit;
    }

    std::wstring Text() {
        std::u16string text;
        while (const WORD unit = Unit())
            text.push_back(static_cast<char16_t>(unit));
        return kernel::FromUtf16(text);
    }

    // A name or the number of a resource.
    void NameOrOrdinal(std::wstring& name, WORD& ordinal) {
        WORD first = 0;
        std::memcpy(&first, position_, sizeof first);
        if (first == kOrdinalFollows) {
            Unit();
            ordinal = Unit();
            return;
        }
        name = Text();
    }

  private:
    const std::byte* position_;
};

}  // namespace

std::optional<DialogTemplate> ReadDialogTemplate(LPCDLGTEMPLATEW resource) {
    if (!resource) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return std::nullopt;
    }
    DLGTEMPLATE head{};
    std::memcpy(&head, resource, sizeof head);
    if (head.style == kExtendedForm || head.cdit != 0) {
        SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
        return std::nullopt;
    }

    Reader reader(reinterpret_cast<const std::byte*>(resource) + sizeof head);
    std::wstring menu_name;
    WORD menu_ordinal = 0;
    reader.NameOrOrdinal(menu_name, menu_ordinal);
    if (!menu_name.empty() || menu_ordinal != 0) {
        SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
        return std::nullopt;
    }

    DialogTemplate result;
    reader.NameOrOrdinal(result.class_name, result.class_atom);
    if (result.class_name.empty() && result.class_atom == 0)
        result.class_atom = kDialogClass;
    result.title = reader.Text();
    result.style = head.style;
    if ((head.style & DS_CONTROL) != 0)
        result.style &= ~(WS_CAPTION | WS_SYSMENU);
    result.extended_style = head.dwExtendedStyle;
    result.x = Scale(head.x, kBaseWidth, 4);
    result.y = Scale(head.y, kBaseHeight, 8);
    result.width = Scale(head.cx, kBaseWidth, 4);
    result.height = Scale(head.cy, kBaseHeight, 8);
    return result;
}

}  // namespace platform::window
