#include "unit/state/unit_state.h"

#include <nlohmann/json.hpp>

#include "control/build_info.h"
#include "dvrsim/commands/dvr_state.h"
#include "platform/gdi/drawing_object.h"
#include "platform/gdi/gdi.h"
#include "platform/kernel/call_faults.h"
#include "platform/kernel/kernel.h"
#include "platform/kernel/scheduler.h"
#include "platform/kernel/text.h"
#include "platform/window/screen.h"
#include "unit/board/virtual_unit.h"
#include "unit/line/fault_text.h"
#include "unit/picture/screen_reader.h"
#include "unit/probe/wizard_probe.h"

namespace unit {

// Keeps the order of the members.
using Json = nlohmann::ordered_json;

namespace {

namespace kernel = platform::kernel;

double Seconds(std::chrono::microseconds time) {
    return static_cast<double>(time.count()) / 1e6;
}

Json UnitState(const VirtualUnit& unit) {
    const kernel::Options& options = unit.kernel_options();
    return {
        {"name", unit.name()},
        {"version", control::BuildInfo()},
        {"seed", options.seed},
        {"clock", options.mode == kernel::Mode::kSimulated ? "simulated" : "free-running"},
        {"speed", options.mode == kernel::Mode::kSimulated ? options.speed : kernel::ClockSpeed()},
        {"paused", kernel::ClockPaused()}};
}

Json ProgramState(VirtualUnit& unit) {
    return {{"running", unit.program().running()},
            {"threads", kernel::ThreadCount()},
            {"handles", kernel::HandleCount()},
            {"windows", platform::window::TopLevelWindows().size()},
            {"device_contexts", platform::gdi::DeviceContextCount()},
            {"drawing_objects", platform::gdi::DrawingObjectCount()}};
}

Json WizardStateNow() {
    const std::optional<WizardState> wizard = ReadWizard();
    if (!wizard)
        return nullptr;
    return {{"step", wizard->step},
            {"step_name", WizardStepName(wizard->step)},
            {"percent", wizard->percent},
            {"bin_version", wizard->bin_version},
            {"running_state", wizard->running_state},
            {"running_state_name", RunningStateName(wizard->running_state)},
            {"dvr_version", wizard->dvr_version}};
}

Json ScreenState(VirtualUnit& unit) {
    const ScreenReader screen(unit.Screen());
    Json texts = Json::array();
    for (const platform::gdi::PlacedText& text : screen.surface().texts()) {
        const RECT& box = text.box;
        texts.push_back({{"text", kernel::ToUtf8(text.text)},
                         {"x", box.left},
                         {"y", box.top},
                         {"width", box.right - box.left},
                         {"height", box.bottom - box.top}});
    }
    const std::optional<POINT> close = screen.CloseButton();
    return {{"texts", std::move(texts)},
            {"close_button", close ? Json{{"x", close->x}, {"y", close->y}} : Json(nullptr)}};
}

Json DvrState(DvrPort& port) {
    const dvrsim::Dvr* const dvr = port.dvr();
    if (!dvr)
        return {{"simulated", false}};
    Json state = {{"simulated", true}, {"plugged", port.plugged()}};
    state.update(dvrsim::StateOf(*dvr));
    return state;
}

Json ScalerNow(const Scaler& scaler) {
    const ScalerState state = scaler.state();
    const ScalerWindow& window = state.window;
    return {
        {"open_handles", state.open_handles},
        {"scaler_path", state.scaler_path},
        {"alpha", state.alpha},
        {"key_enabled", state.key_enabled},
        {"key_color", state.key_color},
        {"selector", state.selector},
        {"video_shows", state.VideoShows()},
        {"window",
         {{"source", {window.source_x, window.source_y, window.source_width, window.source_height}},
          {"frame", {window.frame_width, window.frame_height}},
          {"place", {window.x, window.y, window.width, window.height}}}}};
}

Json PowerState(VirtualUnit& unit) {
    const platform::PowerSupply supply = unit.supply();
    return {{"external", supply.ac_line_status == 1},
            {"battery_flag", supply.battery_flag},
            {"battery_percent", supply.battery_life_percent},
            {"suspended", unit.suspended()}};
}

Json LineFaultsNow(LineFaults& faults) {
    Json list = Json::array();
    for (const LineFaults::Entry& entry : faults.List())
        list.push_back({{"number", entry.number},
                        {"rule", ToText(entry.rule)},
                        {"applied", entry.applied},
                        {"matches", entry.matches}});
    return list;
}

Json CallFaultsNow() {
    Json list = Json::array();
    for (const kernel::CallFault& fault : Faults::calls())
        list.push_back({{"call", fault.call}, {"skip", fault.skip}, {"times", fault.times}});
    return list;
}

}  // namespace

std::string StateJson(VirtualUnit& unit) {
    const Json state = {{"unit", UnitState(unit)},
                        {"time", Seconds(kernel::Now())},
                        {"program", ProgramState(unit)},
                        {"wizard", WizardStateNow()},
                        {"screen", ScreenState(unit)},
                        {"dvr", DvrState(unit.dvr())},
                        {"scaler", ScalerNow(unit.scaler())},
                        {"power", PowerState(unit)},
                        {"faults",
                         {{"list", unit.faults().List()},
                          {"line", LineFaultsNow(unit.faults().line())},
                          {"calls", CallFaultsNow()}}}};
    // Texts may come from the DVR: bytes that are not UTF-8 are replaced.
    return state.dump(2, ' ', false, Json::error_handler_t::replace);
}

}  // namespace unit
