#pragma once

#include <string>

namespace platform::gdi {

// Opens the font files. False, with one line about what is missing in `problem`, when a text could
// not be drawn. To be called once at the start, by whoever can tell a person.
bool CheckFonts(std::string& problem);

// Frees everything GDI holds: device contexts, drawing objects, icons, fonts and the texts drawn
// last. Every handle is invalid from then on. To be called once no thread draws any more.
void Shutdown();

}  // namespace platform::gdi
