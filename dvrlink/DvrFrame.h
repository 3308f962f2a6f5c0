#pragma once

#include <windows.h>

#include <cstddef>

// The frames between the program and the DVR. On the wire every number has its high byte first:
// sync (2 bytes), type (1), command (2), length (2), payload (length), checksum (2). There is no
// escaping. The checksum is the low 16 bits of the sum of all bytes before it.

inline constexpr WORD kFrameSync = 0xA55A;
inline constexpr WORD kMaxPayloadBytes = 64;
inline constexpr DWORD kHeaderBytes = 7;
inline constexpr DWORD kChecksumBytes = 2;
inline constexpr DWORD kMaxFrameBytes = kHeaderBytes + kMaxPayloadBytes + kChecksumBytes;

enum FrameType : BYTE {
    kFrameCommand = 0x10,          // from the program
    kFrameAcknowledgement = 0x20,  // the DVR acknowledges a frame of the program
    kFrameIndication = 0x80,       // the DVR reports by itself
};

// Set in the command code of a request for the current value, and of its acknowledgement.
inline constexpr WORD kQueryBit = 0x8000;

#pragma pack(push, 1)
// One received frame, numbers in host order. The payload bytes past the length are zero.
struct DvrFrame {
    WORD sync;
    BYTE type;
    WORD command;
    WORD length;
    BYTE payload[kMaxPayloadBytes];
    WORD checksum;
};
#pragma pack(pop)

static_assert(sizeof(DvrFrame) == kMaxFrameBytes && kMaxFrameBytes == 73);
static_assert(offsetof(DvrFrame, type) == 2 && offsetof(DvrFrame, command) == 3);
static_assert(offsetof(DvrFrame, length) == 5 && offsetof(DvrFrame, payload) == kHeaderBytes);
static_assert(offsetof(DvrFrame, checksum) == kHeaderBytes + kMaxPayloadBytes);
