#pragma once

#include <windows.h>

// The DVR's commands: code, name, and whether the handler of its acknowledgements and that of its
// indications decode the payload (DECODING) or only log the command (PLAIN).
#define DVR_COMMANDS(COMMAND)                              \
    COMMAND(0x0010, DVR_RunningState, DECODING, DECODING)  \
    COMMAND(0x0011, DVR_Mode, DECODING, DECODING)          \
    COMMAND(0x0012, Video_Resolution, PLAIN, PLAIN)        \
    COMMAND(0x0013, Video_TimeStamp, PLAIN, PLAIN)         \
    COMMAND(0x0014, Video_CycleTime, PLAIN, PLAIN)         \
    COMMAND(0x0015, Video_SoundRecording, PLAIN, PLAIN)    \
    COMMAND(0x0016, Photo_Resolution, PLAIN, PLAIN)        \
    COMMAND(0x0017, Play_DeleteFile, PLAIN, PLAIN)         \
    COMMAND(0x0018, Play_Thumbnail, PLAIN, PLAIN)          \
    COMMAND(0x0019, Play_Volume, PLAIN, PLAIN)             \
    COMMAND(0x001A, Language, PLAIN, PLAIN)                \
    COMMAND(0x001B, Automatic_ShutDown, PLAIN, PLAIN)      \
    COMMAND(0x001C, System_Reboot, PLAIN, PLAIN)           \
    COMMAND(0x001D, Factory_DefaultSetting, PLAIN, PLAIN)  \
    COMMAND(0x001E, Frequency, PLAIN, PLAIN)               \
    COMMAND(0x001F, Time, DECODING, DECODING)              \
    COMMAND(0x0020, Key, PLAIN, PLAIN)                     \
    COMMAND(0x0021, Play_File, PLAIN, PLAIN)               \
    COMMAND(0x0022, Video_Record, PLAIN, DECODING)         \
    COMMAND(0x0023, Photo_Capture, PLAIN, PLAIN)           \
    COMMAND(0x0024, AC_LineStatus, PLAIN, PLAIN)           \
    COMMAND(0x0025, BatteryStatus, PLAIN, PLAIN)           \
    COMMAND(0x0026, StorageCardStatus, DECODING, DECODING) \
    COMMAND(0x0027, QueryInformation, PLAIN, PLAIN)        \
    COMMAND(0x0028, QueryFileName, PLAIN, PLAIN)           \
    COMMAND(0x0029, G_Sensor, PLAIN, PLAIN)                \
    COMMAND(0x002A, Normal_REC_Overwrite, PLAIN, PLAIN)    \
    COMMAND(0x002B, Event_REC_Overwrite, PLAIN, PLAIN)     \
    COMMAND(0x002C, Lock_UnLock_File, PLAIN, PLAIN)        \
    COMMAND(0x002D, EventTrigger, PLAIN, PLAIN)            \
    COMMAND(0x002E, FW_Upgrade_Version, DECODING, DECODING)

// Their codes: DvrCommand::Play_Volume.
struct DvrCommand {
#define DVR_COMMAND_CODE(code, name, acknowledgement, indication) name = code,
    enum Code : WORD { DVR_COMMANDS(DVR_COMMAND_CODE) };
#undef DVR_COMMAND_CODE
};
