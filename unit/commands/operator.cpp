#include "unit/commands/operator.h"

#include "platform/kernel/scheduler.h"
#include "platform/kernel/text.h"
#include "unit/picture/screen_reader.h"

namespace unit {

namespace kernel = platform::kernel;
using platform::window::Touch;

Operator::Operator(VirtualUnit& unit, std::string image_card)
    : unit_(unit), image_card_(std::move(image_card)) {}

const std::string& Operator::image_card() {
    if (image_card_.empty())
        image_card_ = MakeCard(dvrsim::kNewVersion);
    return image_card_;
}

const std::string& Operator::MakeCard(const std::optional<std::string>& image_version) {
    return made_cards_.try_emplace(image_version, image_version).first->second.path();
}

std::optional<POINT> Operator::FindButton(const std::string& caption) {
    const ScreenReader screen(unit_.Screen());
    return caption == "close" ? screen.CloseButton() : screen.PlaceOf(kernel::FromUtf8(caption));
}

std::string Operator::WhatStands() {
    std::string list;
    for (const std::wstring& text : ScreenReader(unit_.Screen()).Texts())
        list += (list.empty() ? "" : ", ") + control::QuoteWord(kernel::ToUtf8(text));
    return list.empty() ? "nothing" : list;
}

void Operator::Press(POINT place) {
    finger_ = place;
    unit_.Touch(Touch::kDown, place.x, place.y);
}

void Operator::MoveFinger(POINT place) {
    finger_ = place;
    unit_.Touch(Touch::kMove, place.x, place.y);
}

void Operator::Release() {
    if (finger_)
        unit_.Touch(Touch::kUp, finger_->x, finger_->y);
    finger_.reset();
}

void Operator::Tap(POINT place, std::chrono::microseconds time) {
    Press(place);
    tapping_ = true;
    kernel::After(time, [this] {
        Release();
        tapping_ = false;
    });
}

}  // namespace unit
