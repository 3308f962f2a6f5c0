#include "tests/model/wizard_model.h"

#include <iterator>

#include "tests/model/text.h"

namespace tests::model {
namespace {

// clang-format off
constexpr const char* kStates[] = {
    "INITIALIZING", "INIT_OK", "NORMAL", "REBOOTTING", "SHUTDOWNING"};
constexpr const char* kCards[] = {
    "PLUG_OUT", "PLUG_IN", "BROKEN", "FORMATING", "SPACE_FULL_NORMAL_FILE",
    "SPACE_FULL_EVENT_FILE", "SPACE_FULL_BOTH_FILE"};
// clang-format on

}  // namespace

void WizardModel::Send(int command) {
    if (world.has_link)
        output[kFrames] += Text("%04X; ", command);
    else
        Failure("UART_SendCommand", "WriteFile() fail!!!", 6);
}

void WizardModel::Receive(std::span<const std::uint8_t> bytes) {
    if (!world.has_link || closed_)
        return;
    receiving_ = true;
    for (const std::uint8_t byte : bytes)
        if (const auto report = finder_.Add(byte))
            OnReport(*report);
    receiving_ = false;
    reading_since_ = now_;
}

void WizardModel::OnReport(const Report& report) {
    output[kLog] += HandlerLog(report, true);
    const bool ack = report.type == 0x20;
    if (!ack && report.type != 0x80)
        return;
    const std::size_t length = report.payload.size();
    switch (report.command & 0x7FFF) {
        case 0x10:
            if ((report.query() || !ack) && length != 0)
                OnRunningState(report.byte(0));
            break;
        case 0x26:
            if (report.query() || !ack)
                OnCard(report.byte(0), report.byte(length == 2 ? 1 : 2));
            break;
        case 0x2E:
            if (ack) {
                const char* const usual = "0.01.00";
                for (std::size_t at = 0; at < 7; ++at)
                    version_[at] =
                        length < 17 ? usual[at] : static_cast<char>(report.byte(10 + at));
            } else {
                percent_ = report.byte(0);
                if (length >= 2)
                    image_version_ = report.byte(1);
            }
            main_.invalid = true;
            break;
        default:
            break;
    }
}

void WizardModel::OnRunningState(unsigned state) {
    Send(0x802E);
    Send(0x8026);
    const std::string begin = Text("\tCMainFrame::DVR_RunningState, %u, ", state);
    if (state >= std::size(kStates)) {
        Line(begin + "default!!!");
        return;
    }
    SetRunningState(static_cast<int>(state));
    const std::string step = state == 2 ? Text("%d, ", step_) : "";
    Line(begin + step + "DVR_RUNNING_STATE_" + kStates[state]);
    Take(Trigger::kRunningState, state);
}

void WizardModel::OnCard(unsigned status, unsigned percent) {
    Send(0x802E);
    if (ac_line_ == 0)
        return;
    card_report_ = true;
    const std::string begin = Text("\tCMainFrame::StorageCardStatus, Percent:%u, ", percent);
    if (status >= std::size(kCards)) {
        Line(begin + "default!!!");
        return;
    }
    if (status <= 1)
        card_ = static_cast<std::uint8_t>(status);
    Line(begin + "DVR_STORAGE_CARD_" + kCards[status]);
    Take(Trigger::kCard, status);
}

}  // namespace tests::model
