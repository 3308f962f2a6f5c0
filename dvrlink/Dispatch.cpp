#include "dvrlink/Dispatch.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <type_traits>
#include <utility>

#include "app/log/DebugLog.h"
#include "dvrlink/Handlers.h"

namespace {

struct CommandRow {
    DWORD code;
    Handler* acknowledgement;
    Handler* indication;
};

constexpr CommandRow kCommands[] = {
    {0x0010, DVR_RunningState_ACK, DVR_RunningState_IND},
    {0x0011, DVR_Mode_ACK, DVR_Mode_IND},
    {0x0012, Video_Resolution_ACK, Video_Resolution_IND},
    {0x0013, Video_TimeStamp_ACK, Video_TimeStamp_IND},
    {0x0014, Video_CycleTime_ACK, Video_CycleTime_IND},
    {0x0015, Video_SoundRecording_ACK, Video_SoundRecording_IND},
    {0x0016, Photo_Resolution_ACK, Photo_Resolution_IND},
    {0x0017, Play_DeleteFile_ACK, Play_DeleteFile_IND},
    {0x0018, Play_Thumbnail_ACK, Play_Thumbnail_IND},
    {0x0019, Play_Volume_ACK, Play_Volume_IND},
    {0x001A, Language_ACK, Language_IND},
    {0x001B, Automatic_ShutDown_ACK, Automatic_ShutDown_IND},
    {0x001C, System_Reboot_ACK, System_Reboot_IND},
    {0x001D, Factory_DefaultSetting_ACK, Factory_DefaultSetting_IND},
    {0x001E, Frequency_ACK, Frequency_IND},
    {0x001F, Time_ACK, Time_IND},
    {0x0020, Key_ACK, Key_IND},
    {0x0021, Play_File_ACK, Play_File_IND},
    {0x0022, Video_Record_ACK, Video_Record_IND},
    {0x0023, Photo_Capture_ACK, Photo_Capture_IND},
    {0x0024, AC_LineStatus_ACK, AC_LineStatus_IND},
    {0x0025, BatteryStatus_ACK, BatteryStatus_IND},
    {0x0026, StorageCardStatus_ACK, StorageCardStatus_IND},
    {0x0027, QueryInformation_ACK, QueryInformation_IND},
    {0x0028, QueryFileName_ACK, QueryFileName_IND},
    {0x0029, G_Sensor_ACK, G_Sensor_IND},
    {0x002A, Normal_REC_Overwrite_ACK, Normal_REC_Overwrite_IND},
    {0x002B, Event_REC_Overwrite_ACK, Event_REC_Overwrite_IND},
    {0x002C, Lock_UnLock_File_ACK, Lock_UnLock_File_IND},
    {0x002D, EventTrigger_ACK, EventTrigger_IND},
    {0x002E, FW_Upgrade_Version_ACK, FW_Upgrade_Version_IND},
};
constexpr std::size_t kCommandCount = std::size(kCommands);

struct DispatchRow {
    DWORD code;
    Handler* handler;
};
using DispatchTable = std::array<DispatchRow, 2 * kCommandCount>;

// Every command in its plain form, then every command in its query form.
constexpr DispatchTable MakeTable(Handler* CommandRow::*handler) {
    DispatchTable table{};
    for (std::size_t index = 0; index < kCommandCount; ++index) {
        const CommandRow& row = kCommands[index];
        table[index] = {row.code, row.*handler};
        table[kCommandCount + index] = {row.code | kQueryBit, row.*handler};
    }
    return table;
}

constexpr DispatchTable kAcknowledgements = MakeTable(&CommandRow::acknowledgement);
constexpr DispatchTable kIndications = MakeTable(&CommandRow::indication);

constexpr bool CodesAscendWithTwins(const DispatchTable& table) {
    for (std::size_t index = 0; index < kCommandCount; ++index) {
        const DispatchRow& plain = table[index];
        const DispatchRow& query = table[kCommandCount + index];
        if (plain.code != 0x0010 + index || query.code != 0x8010 + index ||
            plain.handler != query.handler)
            return false;
    }
    return true;
}

// A handler that stands in two rows would be one base twice, which does not compile.
template <Handler*>
struct Once {};
template <typename Rows>
struct EveryHandlerOnce;
template <std::size_t... kRow>
struct EveryHandlerOnce<std::index_sequence<kRow...>> : Once<kCommands[kRow].acknowledgement>...,
                                                        Once<kCommands[kRow].indication>... {};

static_assert(kAcknowledgements.size() == 62 && kIndications.size() == 62);
static_assert(kCommands[kCommandCount - 1].code == 0x002E);
static_assert(CodesAscendWithTwins(kAcknowledgements) && CodesAscendWithTwins(kIndications));
static_assert(std::is_empty_v<EveryHandlerOnce<std::make_index_sequence<kCommandCount>>>);

}  // namespace

void Dispatch_Command(const DvrFrame* frame) {
    if (frame == nullptr) {
        LogFailure(L"%s\t%S, Invalid Arguments!!!, ErrorCode(%d), %S(%d)\r\n", "Dispatch_Command",
                   GetLastError());
        return;
    }
    if (frame->type != kFrameAcknowledgement && frame->type != kFrameIndication)
        return;
    const DispatchTable& table = frame->type == kFrameIndication ? kIndications : kAcknowledgements;
    const DWORD code = frame->command;
    const auto row = std::find_if(table.begin(), table.end(),
                                  [code](const DispatchRow& entry) { return entry.code == code; });
    if (row != table.end())
        row->handler(*frame);
}
