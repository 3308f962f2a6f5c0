#include "dvrsim/commands/dvr_rows.h"

#include "dvrsim/command_names.h"
#include "dvrsim/frame_codec.h"
#include "dvrsim/value_names.h"

namespace dvrsim {
namespace {

using control::Done;
using control::Outcome;
using control::Refused;
using control::Values;

constexpr std::int64_t kMostCode = 0xFFFF;

Outcome Power(Dvr& dvr, const Values& values) {
    values.Chose("on") ? dvr.PowerOn() : dvr.PowerOff();
    return Done();
}

Outcome Reboot(Dvr& dvr, const Values&) {
    if (dvr.GetState() == Dvr::State::kOff)
        return Refused("the DVR is off; power it on");
    dvr.RebootItself();
    return Done();
}

Outcome Firmware(Dvr& dvr, const Values& values) {
    dvr.SetFirmwareVersion(values.Text("VERSION"));
    return Done();
}

std::string CheckFirmware(const Values& values) {
    return values.Text("VERSION").size() <= kMostPayloadBytes
               ? ""
               : "the version is too long for a frame; at most 64 bytes are allowed";
}

Outcome UpdateTime(Dvr& dvr, const Values& values) {
    // As much chance as the usual time has, 1/15 to each side.
    const auto time = values.Duration("DURATION");
    Timings timings = dvr.GetTimings();
    timings.update = {time - time / 15, time + time / 15};
    dvr.SetTimings(timings);
    return Done();
}

Outcome ReportCard(Dvr& dvr, const Values& values) {
    for (const std::string_view name : kCardStatusNames)
        if (values.Chose(name))
            dvr.ReportCard(*ValueNamed<CardStatus>(name));
    return Done();
}

Outcome IndicateCode(Dvr& dvr, const Values& values) {
    dvr.Indicate(static_cast<std::uint16_t>(values.Number("CODE")), values.Bytes("BYTES"));
    return Done();
}

Outcome IndicateName(Dvr& dvr, const Values& values) {
    dvr.Indicate(static_cast<std::uint16_t>(*CommandNamed(values.Text("NAME"))),
                 values.Bytes("BYTES"));
    return Done();
}

std::string CheckIndication(const Values& values) {
    if (values.Bytes("BYTES").size() > kMostPayloadBytes)
        return "the payload is too long for a frame; at most 64 bytes are allowed";
    if (values.Has("CODE") && (values.Number("CODE") < 0 || values.Number("CODE") > kMostCode))
        return "'" + values.Text("CODE") + "' is no code; allowed is 0 to 0xFFFF";
    if (!values.Has("NAME") || CommandNamed(values.Text("NAME")))
        return {};
    std::string names;
    for (std::uint16_t code = kFirstCommand; code <= kLastCommand; ++code)
        names += (names.empty() ? "" : ", ") + std::string(CommandName(code));
    return "'" + values.Text("NAME") + "' is no code and no command's name; allowed is one of " +
           names;
}

}  // namespace

std::vector<DvrTable::Row> DvrRows() {
    return {
        {"dvr power on|off", "Switches the DVR's own power.", Power},
        {"dvr reboot", "The DVR reports that it reboots and does so.", Reboot},
        {"dvr firmware VERSION", "The version of the firmware that is installed and runs.",
         Firmware, CheckFirmware},
        {"dvr update-time DURATION", "How long an update takes, give or take 1/15 of it.",
         UpdateTime},
        {"dvr indicate CODE [BYTES]", "The DVR reports an item by itself, with that payload.",
         IndicateCode, CheckIndication},
        {"dvr indicate NAME [BYTES]", "The same by the command's name, such as FW_Upgrade_Version.",
         IndicateName, CheckIndication},
        {"card report plug-out|plug-in|broken|formatting|full-normal|full-event|full-both",
         "The DVR reports that state of its card, true or not; from broken on it is also what the "
         "card that is in has.",
         ReportCard},
    };
}

}  // namespace dvrsim
