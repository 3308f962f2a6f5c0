#include "platform/kernel/text.h"
#include "unit/commands/command_rows.h"
#include "unit/picture/screen_reader.h"

namespace unit {
namespace {

using control::Done;
using control::Outcome;
using control::Refused;
using control::Values;

Outcome Screenshot(Operator& op, const Values& values) {
    std::string problem;
    if (!WritePng(op.unit().TakePicture(), values.Text("FILE"), problem))
        return Refused(problem);
    return Done();
}

Outcome Texts(Operator& op, const Values&) {
    std::string lines;
    for (const std::wstring& text : ScreenReader(op.unit().Screen()).Texts())
        lines += (lines.empty() ? "" : "\n") + platform::kernel::ToUtf8(text);
    return Done(lines);
}

}  // namespace

UnitRows LookRows() {
    return {
        {"screenshot FILE", "Writes what the screen shows to a PNG file.", Screenshot},
        {"texts", "Lists the texts that stand on the screen.", Texts},
    };
}

}  // namespace unit
