#include "unit/commands/operator.h"

#include <set>

#include "platform/kernel/scheduler.h"
#include "platform/kernel/text.h"
#include "unit/picture/screen_reader.h"

namespace unit {

namespace kernel = platform::kernel;
using platform::window::Touch;

Operator::Operator(VirtualUnit& unit, std::string image_card)
    : unit_(unit), cards_(std::move(image_card)) {}

bool Operator::AskFor(Ending ending) {
    if (may_end_)
        ending_ = ending;
    return may_end_;
}

std::optional<POINT> Operator::FindButton(const std::string& caption) {
    const ScreenReader screen(unit_.Screen());
    return caption == "close" ? screen.CloseButton()
                              : screen.PlaceOfButton(kernel::FromUtf8(caption));
}

std::vector<std::string> Operator::ButtonsOnScreen() {
    const ScreenReader screen(unit_.Screen());
    std::vector<std::string> names;
    for (const std::wstring& caption : screen.Buttons())
        names.push_back(kernel::ToUtf8(caption));
    if (screen.CloseButton())
        names.emplace_back("close");
    return names;
}

std::string Operator::TextsOnScreen() {
    std::string list;
    std::set<std::wstring> listed;
    for (const std::wstring& text : ScreenReader(unit_.Screen()).Texts())
        if (listed.insert(text).second)
            list += (list.empty() ? "" : ", ") + control::QuoteWord(kernel::ToUtf8(text));
    return list.empty() ? "nothing" : list;
}

void Operator::Press(POINT position) {
    finger_ = position;
    unit_.Touch(Touch::kDown, position.x, position.y);
}

void Operator::MoveFinger(POINT position) {
    finger_ = position;
    unit_.Touch(Touch::kMove, position.x, position.y);
}

void Operator::Release() {
    if (finger_)
        unit_.Touch(Touch::kUp, finger_->x, finger_->y);
    finger_.reset();
}

void Operator::Tap(POINT position, std::chrono::microseconds time) {
    Press(position);
    tapping_ = true;
    kernel::After(time, [this] {
        Release();
        tapping_ = false;
    });
}

}  // namespace unit
