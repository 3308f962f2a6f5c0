// The command `tolvane` with the unit's own image as the program.
//
// Usage: tolvane-arm FOLDER [OPTION...], with the folder of tools/build-unit and tolvane's options.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "unit/probe/wizard_probe.h"
#include "unit/tolvane/run_command.h"
#include "windows/ce/emulator/program.h"

int main(int count, char** arguments) {
    if (count < 2) {
        std::fputs("tolvane-arm: the first argument must be the folder of tools/build-unit\n",
                   stderr);
        return EXIT_FAILURE;
    }
    std::string problem;
    const std::unique_ptr<ce::Program> program = ce::Program::Open(arguments[1], problem);
    if (program == nullptr) {
        std::fprintf(stderr, "tolvane-arm: %s\n", problem.c_str());
        return EXIT_FAILURE;
    }
    unit::SetWizardReader([&program] { return program->ReadWizard(); });
    arguments[1] = arguments[0];
    return unit::RunCommand(count - 1, arguments + 1,
                            {[&program] { return program->Run(); }, program->resources()});
}
