#pragma once

#include <windows.h>

#include <cstddef>

namespace platform::gdi {

// Icons alive that a program made and has to destroy, for leak checks.
std::size_t IconCount();

// Forgets every icon and cursor. With the GDI lock held.
void DropIcons();

}  // namespace platform::gdi
