#include <windows.h>

#include "platform/resource/module.h"
#include "res/program_resources.h"
#include "unit/tolvane/run_command.h"

namespace {

int RunProgram() {
    wchar_t command_line[] = L"";
    return WinMain(platform::resource::ModuleInstance(), nullptr, command_line, SW_SHOWNORMAL);
}

}  // namespace

int main(int count, char** arguments) {
    return unit::RunCommand(count, arguments, {RunProgram, res::ProgramResources()});
}
