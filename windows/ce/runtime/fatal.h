#pragma once

// Writes the reason to the debug output and ends the process: the image has no exceptions.
[[noreturn]] void EndProcess(const char* reason);
