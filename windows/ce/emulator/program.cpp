#include "windows/ce/emulator/program.h"

#include <windows.h>

#include <sys/mman.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "res/program_resources.h"
#include "windows/ce/emulator/system_functions.h"

namespace ce {
namespace {

// The first address that is neither the program's memory nor an import.
constexpr Address kResources = 0x04000000;

Program* g_current = nullptr;

}  // namespace

std::unique_ptr<Program> Program::Open(const std::string& folder, std::string& problem) {
    std::unique_ptr<Program> program(new Program);
    if (!program->image_.Read(folder + "/bin/Tolvane.exe", folder + "/Tolvane.map", problem) ||
        !program->LinkImports(problem) || !program->memory_.Reserve(program->image_, problem) ||
        !program->PlaceResources(problem))
        return nullptr;
    g_current = program.get();
    return program;
}

Program::~Program() {
    if (!resources_.empty())
        munmap(const_cast<std::byte*>(resources_.data()), resources_.size());
    g_current = nullptr;
}

Program& Program::Current() {
    return *g_current;
}

bool Program::LinkImports(std::string& problem) {
    for (const ImageFile::Import& import : image_.imports) {
        const SystemFunction function = FindSystemFunction(import.name);
        if (function == nullptr) {
            problem =
                "the program imports " + import.name + ", which the virtual unit does not have";
            return false;
        }
        functions_.push_back(function);
    }
    return true;
}

// The program gets pointers to its resources, so they must be at addresses that it can have.
bool Program::PlaceResources(std::string& problem) {
    const std::span<const std::byte> host = res::ProgramResources();
    void* const place = mmap(At(kResources), host.size(), PROT_READ | PROT_WRITE,
                             MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0);
    if (place == MAP_FAILED) {
        problem = "the addresses of the program's resources cannot be reserved on this host";
        return false;
    }
    std::memcpy(place, host.data(), host.size());
    resources_ = {static_cast<const std::byte*>(place), host.size()};
    return true;
}

void Program::Load() {
    memory_.Load(image_);
    for (std::size_t index = 0; index < image_.imports.size(); ++index)
        *At<Address>(image_.imports[index].slot) = Processor::ImportAddress(index);
}

std::unique_ptr<Processor> Program::MakeProcessor() {
    return std::make_unique<Processor>(memory_, functions_, image_.stack_bytes);
}

int Program::Run() {
    Load();
    return static_cast<int>(RunThread(image_.entry, {image_.base, 0, 0, SW_SHOWNORMAL}));
}

std::uint32_t Program::RunThread(Address function, std::initializer_list<std::uint32_t> arguments) {
    const std::unique_ptr<Processor> processor = MakeProcessor();
    try {
        return processor->Call(function, arguments);
    } catch (const ThreadEnded& end) {
        return end.exit_code;
    }
}

Address Program::Symbol(const std::string& name) const {
    const auto symbol = image_.symbols.find(name);
    if (symbol != image_.symbols.end())
        return symbol->second;
    std::fprintf(stderr, "tolvane-arm: the program has no %s; tools/build-unit builds it anew\n",
                 name.c_str());
    std::_Exit(EXIT_FAILURE);
}

std::optional<unit::WizardState> Program::ReadWizard() {
    const Address frame = *At<const Address>(Symbol("g_pMainFrame"));
    if (frame == 0)
        return std::nullopt;
    const auto& layout = *At<const WizardLayout>(Symbol("kWizardLayout"));
    const auto byte_at = [frame](std::uint32_t place) {
        return *At<const std::uint8_t>(frame + place);
    };
    char version[8] = {};
    std::memcpy(version, At(frame + layout.dvr_version), sizeof version - 1);
    return unit::WizardState{*At<const std::int32_t>(frame + layout.step), byte_at(layout.percent),
                             byte_at(layout.bin_version), byte_at(layout.running_state), version};
}

}  // namespace ce
