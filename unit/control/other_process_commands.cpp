// The control commands for another process of the unit.

#include <optional>

#include "platform/kernel/kernel.h"
#include "platform/kernel/text.h"
#include "platform/window/screen.h"
#include "unit/control/control_server.h"

namespace unit {

namespace kernel = platform::kernel;
namespace window = platform::window;
using control::Done;
using platform::NamedKind;
using platform::OtherProcessWindow;

namespace {

const char* KindName(NamedKind kind) {
    switch (kind) {
        case NamedKind::kEvent:
            return "event";
        case NamedKind::kMutex:
            return "mutex";
        case NamedKind::kMessageQueue:
            return "queue";
        case NamedKind::kNone:
            break;
    }
    return "none";
}

std::optional<std::wstring> Given(const control::Values& values, const char* name) {
    if (!values.Has(name))
        return std::nullopt;
    return kernel::FromUtf8(values.Text(name));
}

OtherProcessWindow WindowIn(const control::Values& values) {
    return static_cast<OtherProcessWindow>(values.Number("CODE"));
}

}  // namespace

// Questions are answered at once, also while the hardware is busy.

void ControlServer::StartFindObject(const Job& job) {
    const std::wstring name = kernel::FromUtf8(job.values.Text("NAME"));
    NamedKind kind = kernel::FindNamedKind(name);
    // Of two copies that start together the one with the socket is the first, even if its program
    // has yet to say so.
    if (kind == NamedKind::kNone && operator_.unit().program().Starts(name))
        kind = NamedKind::kMutex;
    job.answer->End(Done(KindName(kind)));
}

void ControlServer::StartFindWindow(const Job& job) {
    const auto class_name = Given(job.values, "NAME");
    const auto title = Given(job.values, "TEXT");
    job.answer->End(Done(std::to_string(window::FindOwnWindow(class_name, title))));
}

void ControlServer::StartBringForward(const Job& job) {
    Post([this, job] {
        const bool came = window::BringOwnForward(WindowIn(job.values), job.values.Chose("owned"));
        if (came && abilities_.raise)
            abilities_.raise();
        job.answer->End(Done(came ? "yes" : "no"));
    });
}

}  // namespace unit
