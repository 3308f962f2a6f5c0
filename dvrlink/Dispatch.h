#pragma once

#include "dvrlink/DvrFrame.h"

// Runs the handler of the frame's type and command with a copy of the frame. A type or a command
// without a handler is ignored. The receive thread only.
void Dispatch_Command(const DvrFrame* frame);
