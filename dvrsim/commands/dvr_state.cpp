#include "dvrsim/commands/dvr_state.h"

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "dvrsim/protocol.h"

namespace dvrsim {
namespace {

using nlohmann::ordered_json;

template <class Value>
ordered_json OrNull(const std::optional<Value>& value) {
    return value ? ordered_json(*value) : ordered_json();
}

ordered_json Jump(const std::optional<PercentJump>& jump) {
    return jump ? ordered_json{{"from", jump->from}, {"to", jump->to}} : ordered_json();
}

ordered_json Interval(const std::optional<std::chrono::microseconds>& interval) {
    return interval ? ordered_json(std::chrono::duration<double, std::milli>(*interval).count())
                    : ordered_json();
}

ordered_json FaultsOf(const Faults& faults) {
    return {
        {"silent", faults.silent},
        {"silent_card", faults.silent_card},
        {"silent_version", faults.silent_version},
        {"slow", faults.slow_factor},
        {"copies", faults.indication_copies},
        {"repeat_card_ms", Interval(faults.card_report_interval)},
        {"version", OrNull(faults.reported_version)},
        {"image_version", OrNull(faults.reported_image_version)},
        {"stop_at", OrNull(faults.stop_at_percent)},
        {"stuck_at", OrNull(faults.stuck_at_percent)},
        {"fail_at", OrNull(faults.fail_at_percent)},
        {"reboot_at", OrNull(faults.reboot_at_percent)},
        {"jump_back", Jump(faults.jump_back)},
    };
}

}  // namespace

ordered_json StateOf(const Dvr& dvr) {
    const StorageCard& card = dvr.Card();
    return {
        {"state", NameOf(dvr.GetState())},
        {"running_state", NameOf(dvr.GetRunningState())},
        {"mode", NameOf(dvr.GetMode())},
        {"firmware", dvr.FirmwareVersion()},
        {"installed", dvr.InstalledVersion()},
        {"percent", dvr.Percent()},
        {"recording", dvr.Recording()},
        {"picture", dvr.HasPicture()},
        {"card",
         {
             {"in", card.In()},
             {"status", NameOf(card.Status())},
             {"folder", card.Folder().string()},
             {"image", OrNull(card.ImageVersion())},
         }},
        {"damaged_frames", dvr.DamagedFrames()},
        {"faults", FaultsOf(dvr.GetFaults())},
    };
}

}  // namespace dvrsim
