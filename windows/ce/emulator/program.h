#pragma once

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "unit/probe/wizard_probe.h"
#include "windows/ce/emulator/image_file.h"
#include "windows/ce/emulator/memory.h"
#include "windows/ce/emulator/processor.h"

namespace ce {

// The unit's own image of the program as a process of the virtual unit: its instructions run in an
// emulated processor, its calls to the system in the platform. One at a time.
class Program {
  public:
    // What tools/build-unit makes: bin/Tolvane.exe and Tolvane.map. Null with one line in
    // `problem`.
    static std::unique_ptr<Program> Open(const std::string& folder, std::string& problem);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    // Runs the process on the calling thread, from its entry point, and returns its exit code.
    int Run();

    // Runs a function of the program on a processor for the calling thread, and returns its result
    // or the exit code that it ends the thread with. While the process runs.
    std::uint32_t RunThread(Address function, std::initializer_list<std::uint32_t> arguments);

    // For checks that call single functions: puts the executable into the memory anew, and gives
    // the calling thread a processor.
    void Load();
    std::unique_ptr<Processor> MakeProcessor();
    // Where a function or a variable is, by its name in the linker's map. Ends this process when
    // the program does not have it: the image was built from other sources.
    Address Symbol(const std::string& name) const;

    // The state of the program's wizard; empty while it has no main frame. Under the kernel lock.
    std::optional<unit::WizardState> ReadWizard();

    // The compiled resources, at addresses of the program.
    std::span<const std::byte> resources() const { return resources_; }

    static Program& Current();

  private:
    // The places of the wizard's fields, as windows/ce/runtime/wizard_layout.cpp writes them.
    struct WizardLayout {
        std::uint32_t step, percent, bin_version, running_state, dvr_version;
    };

    Program() = default;

    bool LinkImports(std::string& problem);
    bool PlaceResources(std::string& problem);

    ImageFile image_;
    Memory memory_;
    std::vector<SystemFunction> functions_;
    std::span<const std::byte> resources_;
};

}  // namespace ce
