#pragma once

#include <string>

namespace platform::gdi {

// Opens the font files. False, with one line about what is missing in `problem`, when a text could
// not be drawn. To be called once at the start, by whoever can tell a person.
bool CheckFonts(std::string& problem);

// The program has ended: frees what it left behind, as the end of a process does: device contexts,
// drawing objects, icons. Every handle is invalid from then on. To be called once no thread draws
// any more.
void EndProgram();

// The same, and frees the fonts and the texts drawn last as well.
void Shutdown();

}  // namespace platform::gdi
