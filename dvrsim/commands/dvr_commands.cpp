#include "dvrsim/commands/dvr_commands.h"

#include "control/words.h"
#include "dvrsim/frame_codec.h"
#include "dvrsim/protocol.h"

namespace dvrsim {
namespace {

using control::Done;
using control::Outcome;
using control::Refused;
using control::Values;

constexpr std::int64_t kMaxCode = 0xFFFF;

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
    // The same variation as the default time has.
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
    if (values.Has("CODE") && (values.Number("CODE") < 0 || values.Number("CODE") > kMaxCode))
        return "'" + values.Text("CODE") + "' is not a code; allowed is 0 to 0xFFFF";
    if (!values.Has("NAME") || CommandNamed(values.Text("NAME")))
        return {};
    std::string names;
    for (std::uint16_t code = kFirstCommand; code <= kLastCommand; ++code)
        names += (names.empty() ? "" : ", ") + std::string(CommandName(code));
    return "'" + values.Text("NAME") + "' is not a command; allowed is a code or one of " + names;
}

// A command that changes the faults.
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

template <std::size_t kMaxBytes>
std::string CheckText(const Values& values) {
    return values.Text("TEXT").size() <= kMaxBytes
               ? std::string()
               : "the text is too long for a frame; at most " + std::to_string(kMaxBytes) +
                     " bytes are allowed";
}

template <std::size_t kMaxBytes>
DvrTable::Row Version(std::string_view pattern, std::string_view help,
                      std::optional<std::string> Faults::*fault) {
    DvrTable::Row row = Row(pattern, help, [fault](Faults& faults, const Values& values) {
        faults.*fault = values.Text("TEXT");
    });
    row.check = CheckText<kMaxBytes>;
    return row;
}

template <class Fault>
DvrTable::Row Off(std::string_view pattern, std::string_view help, Fault Faults::*fault) {
    return Row(pattern, help,
               [fault](Faults& faults, const Values&) { faults.*fault = Faults().*fault; });
}

constexpr char kClears[] = "Clears that fault.";

}  // namespace

std::vector<DvrTable::Row> DvrRows() {
    return {
        {"dvr power on|off", "Switches the DVR's own power.", Power},
        {"dvr reboot", "The DVR reports that it reboots, and reboots.", Reboot},
        {"dvr firmware VERSION", "Sets the version of the firmware that is installed and runs.",
         Firmware, CheckFirmware},
        {"dvr update-time DURATION", "Sets how long an update takes, give or take 1/15 of it.",
         UpdateTime},
        {"dvr indicate CODE [BYTES]", "The DVR sends an indication with that code and payload.",
         IndicateCode, CheckIndication},
        {"dvr indicate NAME [BYTES]", "The same with a command's name, such as FW_Upgrade_Version.",
         IndicateName, CheckIndication},
        {"card report plug-out|plug-in|broken|formatting|full-normal|full-event|full-both",
         "The DVR reports that state of its card, true or not. The states from broken on also "
         "become the condition of the card that is in.",
         ReportCard},
    };
}

std::vector<DvrTable::Row> DvrFaultRows() {
    return {
        Switch("fault dvr silent on|off", "The DVR sends nothing.", &Faults::silent),
        Switch("fault dvr silent-card on|off",
               "The DVR neither indicates its card nor acknowledges queries for it.",
               &Faults::silent_card),
        Switch("fault dvr silent-version on|off",
               "The DVR does not acknowledge queries for its firmware version.",
               &Faults::silent_version),
        Factor("fault dvr slow FACTOR",
               "The DVR boots, acknowledges requests and notices its card that many times slower.",
               &Faults::slow_factor),
        Factor("fault dvr copies FACTOR", "The DVR sends each indication that many times.",
               &Faults::indication_copies),
        Row("fault dvr repeat-card DURATION", "The DVR indicates its card at that interval.",
            [](Faults& faults, const Values& values) {
                faults.card_report_interval = values.Duration("DURATION");
            }),
        Off("fault dvr repeat-card off", kClears, &Faults::card_report_interval),
        Version<kMaxPayloadBytes>(
            "fault dvr version TEXT",
            "The DVR acknowledges with that text as its firmware version; \"\" is empty.",
            &Faults::reported_version),
        Off("fault dvr no-version", "The DVR acknowledges with its true version again.",
            &Faults::reported_version),
        Version<kMaxPayloadBytes - 1>(
            "fault dvr image-version TEXT",
            "The DVR's percent reports contain that text as the image's version.",
            &Faults::reported_image_version),
        Off("fault dvr no-image-version", "The reports contain the image's true version again.",
            &Faults::reported_image_version),
        AtPercent("fault dvr stop-at PERCENT", "Every update hangs after that percent.",
                  &Faults::stop_at_percent),
        Off("fault dvr stop-at off", "Clears that fault; an update that hangs continues.",
            &Faults::stop_at_percent),
        AtPercent("fault dvr stuck-at PERCENT", "Every update reports that percent for ever.",
                  &Faults::stuck_at_percent),
        Off("fault dvr stuck-at off", kClears, &Faults::stuck_at_percent),
        AtPercent("fault dvr fail-at PERCENT",
                  "Every update fails after that percent; at 100 it only looks successful.",
                  &Faults::fail_at_percent),
        Off("fault dvr fail-at off", kClears, &Faults::fail_at_percent),
        AtPercent("fault dvr reboot-at PERCENT",
                  "Every update ends in a reboot after that percent.", &Faults::reboot_at_percent),
        Off("fault dvr reboot-at off", kClears, &Faults::reboot_at_percent),
        Row("fault dvr jump-back PERCENT TO-PERCENT",
            "Every update jumps once from the first percent to the second.",
            [](Faults& faults, const Values& values) {
                faults.jump_back =
                    PercentJump{static_cast<std::uint8_t>(values.Number("PERCENT")),
                                static_cast<std::uint8_t>(values.Number("TO-PERCENT"))};
            }),
        Off("fault dvr jump-back off", kClears, &Faults::jump_back),
        Row("fault dvr none", "Clears all faults of the DVR.",
            [](Faults& faults, const Values&) { faults = {}; }),
    };
}

std::vector<std::string> FaultCommands(const Faults& faults) {
    std::vector<std::string> commands;
    const auto add = [&](bool set, const std::string& command) {
        if (set)
            commands.push_back("fault dvr " + command);
    };
    const auto add_percent = [&](const char* name, const std::optional<std::uint8_t>& percent) {
        if (percent)
            add(true, name + (" " + std::to_string(*percent)));
    };
    add(faults.silent, "silent on");
    add(faults.silent_card, "silent-card on");
    add(faults.silent_version, "silent-version on");
    add(faults.slow_factor != 1, "slow " + std::to_string(faults.slow_factor));
    add(faults.indication_copies != 1, "copies " + std::to_string(faults.indication_copies));
    if (faults.card_report_interval)
        add(true, "repeat-card " + control::DurationWord(*faults.card_report_interval));
    if (faults.reported_version)
        add(true, "version " + control::QuoteWord(*faults.reported_version));
    if (faults.reported_image_version)
        add(true, "image-version " + control::QuoteWord(*faults.reported_image_version));
    add_percent("stop-at", faults.stop_at_percent);
    add_percent("stuck-at", faults.stuck_at_percent);
    add_percent("fail-at", faults.fail_at_percent);
    add_percent("reboot-at", faults.reboot_at_percent);
    if (faults.jump_back)
        add(true, "jump-back " + std::to_string(faults.jump_back->from) + " " +
                      std::to_string(faults.jump_back->to));
    return commands;
}

}  // namespace dvrsim
