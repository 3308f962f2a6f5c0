#pragma once

#include "dvrlink/Commands.h"
#include "dvrlink/DvrFrame.h"

// A handler for each command of the DVR, in an acknowledgement (_ACK) and in an indication (_IND).
// Handlers run on the receive thread with a copy of the frame, log it, and keep no state. The ones
// that decode the payload report the DVR's running state, its storage card, its firmware version
// and the progress of an update to the wizard.
using Handler = void(DvrFrame frame);

// The first part of a handler: logs the command, and whether it is a query. FALSE, with a log line,
// when the frame is not of the handler's type.
BOOL AcceptFrame(const DvrFrame& frame, FrameType type, const char* handler);

#define DVR_HANDLER_PLAIN(handler, type)    \
    inline void handler(DvrFrame frame) {   \
        AcceptFrame(frame, type, __func__); \
    }
#define DVR_HANDLER_DECODING(handler, type) void handler(DvrFrame frame);
#define DVR_HANDLERS(code, name, acknowledgement, indication)        \
    DVR_HANDLER_##acknowledgement(name##_ACK, kFrameAcknowledgement) \
        DVR_HANDLER_##indication(name##_IND, kFrameIndication)

DVR_COMMANDS(DVR_HANDLERS)

#undef DVR_HANDLERS
#undef DVR_HANDLER_DECODING
#undef DVR_HANDLER_PLAIN

// Runs the handler of the frame's type and command with a copy of the frame. A type or a command
// without a handler is ignored. The receive thread only.
void Dispatch_Command(const DvrFrame* frame);
