#pragma once

#include <windows.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include "platform/gdi/surface.h"

namespace platform::gdi {

// Opens the font files. False, with one line about what is missing in `problem`, when a text could
// not be drawn. Called once at the start by code that can report it to a person.
bool CheckFonts(std::string& problem);

// A device context that draws on a window's surface, clipped to `clip` (surface pixels). `drawn` is
// called after every drawing call, without any lock held. Any thread, without the GDI lock.
HDC CreateWindowDC(std::shared_ptr<Surface> surface, const RECT& clip, std::function<void()> drawn);

// Ends one and deselects its objects. False when it is none.
bool DestroyWindowDC(HDC dc);

// Living objects, for leak checks: device contexts, drawing objects that are not stock objects, and
// icons that the program made.
std::size_t DeviceContextCount();
std::size_t DrawingObjectCount();
std::size_t IconCount();

// How many lines of text were shaped, not found in the cache. Any thread.
std::size_t ShapedLineCount();

// Frees what an ended program left behind, as the end of a process does: device contexts, drawing
// objects, icons. Their handles are invalid from then on. Called when no thread draws any more.
void EndProgram();

// The same, and frees the fonts and the cached texts as well.
void Shutdown();

}  // namespace platform::gdi
