#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace platform::window {

// A dialog resource without controls, in pixels.
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

// Nothing with ERROR_CALL_NOT_IMPLEMENTED for controls, a menu or the extended form.
//
// As on Windows CE, DS_CONTROL removes the caption and the system menu.
std::optional<DialogTemplate> ReadDialogTemplate(LPCDLGTEMPLATEW resource);

}  // namespace platform::window
