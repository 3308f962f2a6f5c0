#include "unit/commands/operator.h"

#include "platform/kernel/scheduler.h"
#include "platform/kernel/text.h"
#include "unit/picture/screen_reader.h"

namespace unit {

namespace kernel = platform::kernel;
using platform::window::Touch;

Operator::Operator(VirtualUnit& unit, std::string image_card)
    : unit_(unit), cards_(std::move(image_card)) {}

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
