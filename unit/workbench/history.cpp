#include "unit/workbench/history.h"

#include <utility>

#include "platform/kernel/text.h"
#include "unit/events/event_text.h"
#include "unit/workbench/readable.h"

namespace unit {
namespace {

using platform::kernel::ToUtf8;

// The limit for events between two calls of Update; later ones are dropped.
constexpr std::size_t kMostNotes = 50'000;

}  // namespace

History::History(EventHub& events)
    : subscription_(events.Subscribe([this](const TimedEvent& event) {
          if (!IsTraced(event.event))
              return;
          const std::scoped_lock lock(mutex_);
          if (notes_.size() < kMostNotes)
              notes_.push_back(event);
      })) {}

bool History::Update() {
    std::vector<TimedEvent> notes;
    {
        const std::scoped_lock lock(mutex_);
        notes.swap(notes_);
    }
    for (const TimedEvent& note : notes)
        File(note);
    return !notes.empty();
}

void History::File(const TimedEvent& event) {
    if (const auto* line = std::get_if<LineLogged>(&event.event)) {
        log_.Add({event.time, line->text});
    } else if (const auto* entry = std::get_if<LineEntry>(&event.event)) {
        FileFrame(*entry);
    } else if (std::holds_alternative<FaultApplied>(event.event)) {
        log_.Add({event.time, EventLine(event.event)});
        faults_.Add({event.time, EventLine(event.event)});
    } else if (const auto* message = std::get_if<OperatorMessage>(&event.event)) {
        message_ = message->line;
    } else if (const auto* card = std::get_if<CardMoved>(&event.event)) {
        card_folder_ = card->in ? card->folder : std::string();
    } else if (const auto* request = std::get_if<PowerRequested>(&event.event)) {
        power_messages_.Add({event.time, true, ReadablePowerName(ToUtf8(request->event_name))});
    } else if (const auto* broadcast = std::get_if<BroadcastPosted>(&event.event)) {
        power_messages_.Add({event.time, false, ReadableBroadcast(*broadcast)});
    }
}

void History::FileFrame(LineEntry entry) {
    if (const auto percent = entry.percent())
        percents_.Add({entry.time, *percent});
    traffic_.Add(std::move(entry));
}

}  // namespace unit
