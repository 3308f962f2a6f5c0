#pragma once

#include "dvrlink/DvrFrame.h"
#include "dvrlink/PlainHandler.h"

// A handler for each command of the DVR, in an acknowledgement (_ACK) and in an indication (_IND).
// Handlers run on the receive thread with a copy of the frame, log it, and keep no state.

// These decode the payload. While g_pMainFrame is set, they pass on to it what it shows: running
// state, storage card, firmware version and the progress of an update.
void DVR_RunningState_ACK(DvrFrame frame);
void DVR_RunningState_IND(DvrFrame frame);
void DVR_Mode_ACK(DvrFrame frame);
void DVR_Mode_IND(DvrFrame frame);
void Time_ACK(DvrFrame frame);
void Time_IND(DvrFrame frame);
void Video_Record_IND(DvrFrame frame);
void StorageCardStatus_ACK(DvrFrame frame);
void StorageCardStatus_IND(DvrFrame frame);
void FW_Upgrade_Version_ACK(DvrFrame frame);
void FW_Upgrade_Version_IND(DvrFrame frame);

// The rest only log.
inline constexpr Handler& Video_Resolution_ACK = PlainAcknowledgement<"Video_Resolution_ACK">;
inline constexpr Handler& Video_Resolution_IND = PlainIndication<"Video_Resolution_IND">;
inline constexpr Handler& Video_TimeStamp_ACK = PlainAcknowledgement<"Video_TimeStamp_ACK">;
inline constexpr Handler& Video_TimeStamp_IND = PlainIndication<"Video_TimeStamp_IND">;
inline constexpr Handler& Video_CycleTime_ACK = PlainAcknowledgement<"Video_CycleTime_ACK">;
inline constexpr Handler& Video_CycleTime_IND = PlainIndication<"Video_CycleTime_IND">;
inline constexpr Handler& Video_SoundRecording_ACK =
    PlainAcknowledgement<"Video_SoundRecording_ACK">;
inline constexpr Handler& Video_SoundRecording_IND = PlainIndication<"Video_SoundRecording_IND">;
inline constexpr Handler& Photo_Resolution_ACK = PlainAcknowledgement<"Photo_Resolution_ACK">;
inline constexpr Handler& Photo_Resolution_IND = PlainIndication<"Photo_Resolution_IND">;
inline constexpr Handler& Play_DeleteFile_ACK = PlainAcknowledgement<"Play_DeleteFile_ACK">;
inline constexpr Handler& Play_DeleteFile_IND = PlainIndication<"Play_DeleteFile_IND">;
inline constexpr Handler& Play_Thumbnail_ACK = PlainAcknowledgement<"Play_Thumbnail_ACK">;
inline constexpr Handler& Play_Thumbnail_IND = PlainIndication<"Play_Thumbnail_IND">;
inline constexpr Handler& Play_Volume_ACK = PlainAcknowledgement<"Play_Volume_ACK">;
inline constexpr Handler& Play_Volume_IND = PlainIndication<"Play_Volume_IND">;
inline constexpr Handler& Language_ACK = PlainAcknowledgement<"Language_ACK">;
inline constexpr Handler& Language_IND = PlainIndication<"Language_IND">;
inline constexpr Handler& Automatic_ShutDown_ACK = PlainAcknowledgement<"Automatic_ShutDown_ACK">;
inline constexpr Handler& Automatic_ShutDown_IND = PlainIndication<"Automatic_ShutDown_IND">;
inline constexpr Handler& System_Reboot_ACK = PlainAcknowledgement<"System_Reboot_ACK">;
inline constexpr Handler& System_Reboot_IND = PlainIndication<"System_Reboot_IND">;
inline constexpr Handler& Factory_DefaultSetting_ACK =
    PlainAcknowledgement<"Factory_DefaultSetting_ACK">;
inline constexpr Handler& Factory_DefaultSetting_IND =
    PlainIndication<"Factory_DefaultSetting_IND">;
inline constexpr Handler& Frequency_ACK = PlainAcknowledgement<"Frequency_ACK">;
inline constexpr Handler& Frequency_IND = PlainIndication<"Frequency_IND">;
inline constexpr Handler& Key_ACK = PlainAcknowledgement<"Key_ACK">;
inline constexpr Handler& Key_IND = PlainIndication<"Key_IND">;
inline constexpr Handler& Play_File_ACK = PlainAcknowledgement<"Play_File_ACK">;
inline constexpr Handler& Play_File_IND = PlainIndication<"Play_File_IND">;
inline constexpr Handler& Video_Record_ACK = PlainAcknowledgement<"Video_Record_ACK">;
inline constexpr Handler& Photo_Capture_ACK = PlainAcknowledgement<"Photo_Capture_ACK">;
inline constexpr Handler& Photo_Capture_IND = PlainIndication<"Photo_Capture_IND">;
inline constexpr Handler& AC_LineStatus_ACK = PlainAcknowledgement<"AC_LineStatus_ACK">;
inline constexpr Handler& AC_LineStatus_IND = PlainIndication<"AC_LineStatus_IND">;
inline constexpr Handler& BatteryStatus_ACK = PlainAcknowledgement<"BatteryStatus_ACK">;
inline constexpr Handler& BatteryStatus_IND = PlainIndication<"BatteryStatus_IND">;
inline constexpr Handler& QueryInformation_ACK = PlainAcknowledgement<"QueryInformation_ACK">;
inline constexpr Handler& QueryInformation_IND = PlainIndication<"QueryInformation_IND">;
inline constexpr Handler& QueryFileName_ACK = PlainAcknowledgement<"QueryFileName_ACK">;
inline constexpr Handler& QueryFileName_IND = PlainIndication<"QueryFileName_IND">;
inline constexpr Handler& G_Sensor_ACK = PlainAcknowledgement<"G_Sensor_ACK">;
inline constexpr Handler& G_Sensor_IND = PlainIndication<"G_Sensor_IND">;
inline constexpr Handler& Normal_REC_Overwrite_ACK =
    PlainAcknowledgement<"Normal_REC_Overwrite_ACK">;
inline constexpr Handler& Normal_REC_Overwrite_IND = PlainIndication<"Normal_REC_Overwrite_IND">;
inline constexpr Handler& Event_REC_Overwrite_ACK = PlainAcknowledgement<"Event_REC_Overwrite_ACK">;
inline constexpr Handler& Event_REC_Overwrite_IND = PlainIndication<"Event_REC_Overwrite_IND">;
inline constexpr Handler& Lock_UnLock_File_ACK = PlainAcknowledgement<"Lock_UnLock_File_ACK">;
inline constexpr Handler& Lock_UnLock_File_IND = PlainIndication<"Lock_UnLock_File_IND">;
inline constexpr Handler& EventTrigger_ACK = PlainAcknowledgement<"EventTrigger_ACK">;
inline constexpr Handler& EventTrigger_IND = PlainIndication<"EventTrigger_IND">;
