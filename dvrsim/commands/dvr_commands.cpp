#include "dvrsim/commands/dvr_commands.h"

#include "dvrsim/frame_codec.h"
#include "dvrsim/protocol.h"

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
    return values.Text("VERSION").size() <= kMaxPayloadBytes
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
    if (values.Bytes("BYTES").size() > kMaxPayloadBytes)
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

// A row that changes one thing of the faults.
template <class Change>
DvrTable::Row Row(std::string_view pattern, std::string_view help, Change change) {
    return {pattern, help, [change](Dvr& dvr, const Values& values) {
                Faults faults = dvr.GetFaults();
                change(faults, values);
                dvr.SetFaults(faults);
                return Done();
            }};
}

DvrTable::Row Switch(std::string_view pattern, std::string_view help, bool Faults::*fault) {
    return Row(pattern, help, [fault](Faults& faults, const Values& values) {
        faults.*fault = values.Chose("on");
    });
}

DvrTable::Row Factor(std::string_view pattern, std::string_view help, unsigned Faults::*fault) {
    return Row(pattern, help, [fault](Faults& faults, const Values& values) {
        faults.*fault = static_cast<unsigned>(values.Number("FACTOR"));
    });
}

DvrTable::Row AtPercent(std::string_view pattern, std::string_view help,
                        std::optional<std::uint8_t> Faults::*fault) {
    return Row(pattern, help, [fault](Faults& faults, const Values& values) {
        faults.*fault = static_cast<std::uint8_t>(values.Number("PERCENT"));
    });
}

template <std::size_t kLongest>
std::string CheckText(const Values& values) {
    return values.Text("TEXT").size() <= kLongest
               ? std::string()
               : "the text is too long for a frame; at most " + std::to_string(kLongest) +
                     " bytes are allowed";
}

template <std::size_t kLongest>
DvrTable::Row Version(std::string_view pattern, std::string_view help,
                      std::optional<std::string> Faults::*fault) {
    DvrTable::Row row = Row(pattern, help, [fault](Faults& faults, const Values& values) {
        faults.*fault = values.Text("TEXT");
    });
    row.check = CheckText<kLongest>;
    return row;
}

template <class Fault>
DvrTable::Row Off(std::string_view pattern, std::string_view help, Fault Faults::*fault) {
    return Row(pattern, help,
               [fault](Faults& faults, const Values&) { faults.*fault = Faults().*fault; });
}

constexpr char kAsOthers[] = "Ends that fault.";

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

std::vector<DvrTable::Row> DvrFaultRows() {
    return {
        Switch("fault dvr silent on|off", "The DVR sends nothing at all.", &Faults::silent),
        Switch("fault dvr silent-card on|off",
               "The DVR neither reports its card nor answers for it.", &Faults::silent_card),
        Switch("fault dvr silent-version on|off",
               "The DVR does not answer for its firmware version.", &Faults::silent_version),
        Factor("fault dvr slow FACTOR",
               "The DVR boots, answers and notices its card so many times slower; 1 is as usual.",
               &Faults::slow_factor),
        Factor("fault dvr copies FACTOR", "The DVR sends each of its reports so often.",
               &Faults::indication_copies),
        Row("fault dvr repeat-card DURATION", "The DVR reports its card again and again.",
            [](Faults& faults, const Values& values) {
                faults.card_report_interval = values.Duration("DURATION");
            }),
        Off("fault dvr repeat-card off", kAsOthers, &Faults::card_report_interval),
        Version<kMaxPayloadBytes>(
            "fault dvr version TEXT",
            "The DVR answers with that text for its firmware version; \"\" is an empty answer.",
            &Faults::reported_version),
        Off("fault dvr no-version", "The DVR answers with its true version again.",
            &Faults::reported_version),
        Version<kMaxPayloadBytes - 1>(
            "fault dvr image-version TEXT",
            "The DVR's percent reports carry that text for the image's version.",
            &Faults::reported_image_version),
        Off("fault dvr no-image-version", "The reports carry the image's true version again.",
            &Faults::reported_image_version),
        AtPercent("fault dvr stop-at PERCENT", "Every update hangs after that percent.",
                  &Faults::stop_at_percent),
        Off("fault dvr stop-at off", kAsOthers, &Faults::stop_at_percent),
        AtPercent("fault dvr stuck-at PERCENT", "Every update reports that percent for ever.",
                  &Faults::stuck_at_percent),
        Off("fault dvr stuck-at off", kAsOthers, &Faults::stuck_at_percent),
        AtPercent("fault dvr fail-at PERCENT",
                  "Every update is given up after that percent; at 100 it only looks done.",
                  &Faults::fail_at_percent),
        Off("fault dvr fail-at off", kAsOthers, &Faults::fail_at_percent),
        AtPercent("fault dvr reboot-at PERCENT",
                  "Every update ends in a reboot after that percent.", &Faults::reboot_at_percent),
        Off("fault dvr reboot-at off", kAsOthers, &Faults::reboot_at_percent),
        Row("fault dvr jump-back PERCENT TO-PERCENT",
            "Every update jumps once, from the first percent to the second.",
            [](Faults& faults, const Values& values) {
                faults.jump_back =
                    PercentJump{static_cast<std::uint8_t>(values.Number("PERCENT")),
                                static_cast<std::uint8_t>(values.Number("TO-PERCENT"))};
            }),
        Off("fault dvr jump-back off", kAsOthers, &Faults::jump_back),
        Row("fault dvr none", "Ends every fault of the DVR.",
            [](Faults& faults, const Values&) { faults = {}; }),
    };
}

}  // namespace dvrsim
