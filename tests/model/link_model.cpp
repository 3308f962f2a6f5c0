#include "tests/model/link_model.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <utility>

namespace tests::model {
namespace {

constexpr std::size_t kHeader = 7;
constexpr std::size_t kSum = 2;
constexpr std::size_t kLongestPayload = 64;

// In the order of their codes, from 0x0010 on.
// clang-format off
constexpr const char* kCommands[] = {
    "DVR_RunningState", "DVR_Mode", "Video_Resolution", "Video_TimeStamp", "Video_CycleTime",
    "Video_SoundRecording", "Photo_Resolution", "Play_DeleteFile", "Play_Thumbnail", "Play_Volume",
    "Language", "Automatic_ShutDown", "System_Reboot", "Factory_DefaultSetting", "Frequency",
    "Time", "Key", "Play_File", "Video_Record", "Photo_Capture", "AC_LineStatus", "BatteryStatus",
    "StorageCardStatus", "QueryInformation", "QueryFileName", "G_Sensor", "Normal_REC_Overwrite",
    "Event_REC_Overwrite", "Lock_UnLock_File", "EventTrigger", "FW_Upgrade_Version",
};
// clang-format on
static_assert(std::size(kCommands) == 31);

constexpr unsigned kFirstCommand = 0x10;
constexpr unsigned kQuery = 0x8000;

unsigned SumOf(std::span<const std::uint8_t> bytes) {
    return std::accumulate(bytes.begin(), bytes.end(), 0U) & 0xFFFF;
}

std::string PayloadText(const Report& report, std::size_t from) {
    const auto begin = report.payload.begin() + static_cast<std::ptrdiff_t>(from);
    return {begin, std::find(begin, report.payload.end(), 0)};
}

// The number in two characters; the first that is not a digit ends it.
int Decimal(const Report& report, std::size_t at) {
    int number = 0;
    for (const std::size_t end = at + 2; at < end; ++at) {
        const int digit = report.byte(at) - '0';
        if (digit < 0 || digit > 9)
            break;
        number = number * 10 + digit;
    }
    return number;
}

constexpr char kBadLength[] = "wLen invalid!!!";

std::string ModeLine(const Report& report) {
    constexpr const char* kModes[] = {"DVR_MODE_VIDEO", "DVR_MODE_PHOTO", "DVR_MODE_PLAY"};
    if (report.payload.empty())
        return kBadLength;
    const unsigned mode = report.byte(0);
    return Text("DVR_Mode:%u, %s", mode, mode < 3 ? kModes[mode] : "enDVR_Mode!!!");
}

std::string HexDump(const Report& report) {
    std::string dump = "[";
    for (const unsigned byte : report.payload)
        dump += Text("%02X ", byte);
    return dump;
}

// The lines of a decoding handler after its command line.
std::vector<std::string> DecodedLines(unsigned number, bool ack, const Report& report,
                                      bool has_frame) {
    const bool empty = report.payload.empty();
    switch (number) {
        case 0x10:
            if (ack ? report.query() && has_frame && empty : empty || !has_frame)
                return {kBadLength};
            return {};
        case 0x11:
            return {ModeLine(report)};
        case 0x1F:
            if (report.payload.size() < 13)
                return {kBadLength};
            if (ack)
                return {PayloadText(report, 0)};
            return {PayloadText(report, 0), HexDump(report)};
        case 0x22:
            if (ack)
                return {};
            return {Text("VideoRecord: 0x%X, Recording Time: %02d:%02d:%02d",
                         report.byte(0) == 0x01 || report.byte(0) == 0x31 ? 1U : 0U,
                         Decimal(report, 2), Decimal(report, 4), Decimal(report, 6))};
        case 0x2E:
            if (ack)
                return {
                    "DVR Firmware : [" +
                    (report.payload.size() < 17 ? "14.04.25.V0.01.00" : PayloadText(report, 0)) +
                    "]"};
            if (report.payload.size() < 2)
                return {Text("Percent:%u%%", report.byte(0))};
            return {Text("Percent:%u%%", report.byte(0)), "Bin Version:" + PayloadText(report, 1)};
        default:
            return {};
    }
}

// Some handlers log only what they decode.
bool HasCommandLine(unsigned number, bool ack) {
    return number != 0x1F && !(number == 0x11 && ack) && !(number == 0x22 && !ack);
}

}  // namespace

Bytes Frame(std::uint8_t type, unsigned command, std::span<const std::uint8_t> payload) {
    const auto low = [](std::size_t number) { return static_cast<std::uint8_t>(number & 0xFF); };
    Bytes frame = {0xA5, 0x5A, type, low(command >> 8), low(command), 0, low(payload.size())};
    std::ranges::copy(payload, std::back_inserter(frame));
    const unsigned sum = SumOf(frame);
    frame.push_back(low(sum >> 8));
    frame.push_back(low(sum));
    return frame;
}

std::optional<Report> FrameFinder::Add(std::uint8_t byte) {
    pending_.push_back(byte);
    if (pending_.size() == 2 && pending_[1] != 0x5A)
        pending_.erase(pending_.begin());
    if (pending_[0] != 0xA5)
        pending_.clear();
    if (pending_.size() < kHeader)
        return std::nullopt;
    const std::size_t length = pending_[5] * 256U + pending_[6];
    if (length > kLongestPayload) {
        pending_.clear();
        return std::nullopt;
    }
    const std::size_t end = kHeader + length;
    if (pending_.size() < end + kSum)
        return std::nullopt;
    const Bytes whole = std::exchange(pending_, {});
    if (SumOf({whole.data(), end}) != whole[end] * 256U + whole[end + 1])
        return std::nullopt;
    return Report{whole[2], whole[3] * 256U + whole[4],
                  Bytes(whole.begin() + kHeader, whole.begin() + std::ptrdiff_t(end))};
}

std::vector<std::string> HandlerLines(const Report& report, bool has_frame) {
    const bool ack = report.type == 0x20;
    const unsigned number = report.command & ~kQuery;
    if ((!ack && report.type != 0x80) || number < kFirstCommand ||
        number >= kFirstCommand + std::size(kCommands))
        return {};
    std::vector<std::string> lines = DecodedLines(number, ack, report, has_frame);
    if (HasCommandLine(number, ack))
        lines.insert(lines.begin(),
                     Text("(0x%04X)%s", report.command, report.query() ? ", Query" : ""));
    for (std::string& line : lines)
        line = Text("\t%s_%s, ", kCommands[number - kFirstCommand], ack ? "ACK" : "IND") + line;
    return lines;
}

std::string HandlerLog(std::span<const std::uint8_t> bytes) {
    FrameFinder finder;
    std::string log;
    for (const std::uint8_t byte : bytes)
        if (const auto report = finder.Add(byte))
            for (const std::string& line : HandlerLines(*report, false))
                log += "[Tolvane.exe] " + line + "\r\n";
    return log;
}

}  // namespace tests::model
