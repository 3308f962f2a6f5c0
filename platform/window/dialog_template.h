#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace platform::window {

// What a dialog resource without controls says, measured in pixels.
struct DialogTemplate {
    DWORD style = 0;
    DWORD extended_style = 0;
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    std::wstring class_name;  // empty: the class of the atom
    ATOM class_atom = 0;
    std::wstring title;
};

// Nothing with the last error set when the template asks for what is not there: controls
// (ERROR_CALL_NOT_IMPLEMENTED, as for a menu or the extended form).
//
// As Windows CE does, DS_CONTROL takes the caption and the system menu away.
std::optional<DialogTemplate> ReadDialogTemplate(LPCDLGTEMPLATEW resource);

}  // namespace platform::window
