#include "windows/ce/emulator/processor.h"

#include <unicorn/unicorn.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <utility>

namespace ce {
namespace {

// A page of addresses outside the program's memory. Each stands for an import, the first for the
// return to the caller outside the program, and has an instruction that ends the emulation.
constexpr Address kGates = 0x00F00000;
constexpr Address kGateBytes = 4;
constexpr std::uint16_t kSupervisorCall = 0xDF00;
constexpr std::uint32_t kSupervisorInterrupt = 2;
constexpr Address kThumb = 1;  // in an address of Thumb code
constexpr std::uint32_t kThumbState = 0x20;

constexpr std::array kSaved = {UC_ARM_REG_R0,  UC_ARM_REG_R1, UC_ARM_REG_R2,  UC_ARM_REG_R3,
                               UC_ARM_REG_R4,  UC_ARM_REG_R5, UC_ARM_REG_R6,  UC_ARM_REG_R7,
                               UC_ARM_REG_R8,  UC_ARM_REG_R9, UC_ARM_REG_R10, UC_ARM_REG_R11,
                               UC_ARM_REG_R12, UC_ARM_REG_SP, UC_ARM_REG_LR,  UC_ARM_REG_CPSR};

thread_local Processor* t_current = nullptr;

// Held while instructions are executed, so that the program's atomic instructions are atomic.
std::mutex g_executing;

// The gates' instructions, for all processors.
std::array<std::uint16_t, kPageBytes / 2>& Gates() {
    alignas(kPageBytes) static std::array<std::uint16_t, kPageBytes / 2> gates = [] {
        std::array<std::uint16_t, kPageBytes / 2> filled{};
        filled.fill(kSupervisorCall);
        return filled;
    }();
    return gates;
}

void OnInterrupt(uc_engine* engine, std::uint32_t number, void* interrupt) {
    *static_cast<std::uint32_t*>(interrupt) = number;
    uc_emu_stop(engine);
}

}  // namespace

Processor::Processor(Memory& memory, const std::vector<SystemFunction>& functions,
                     std::uint32_t stack_bytes)
    : memory_(memory),
      functions_(functions),
      stack_(memory.Allocate(stack_bytes)),
      outer_(std::exchange(t_current, this)) {
    if (stack_ == 0)
        Fail("no memory for a stack");
    if (uc_open(UC_ARCH_ARM, UC_MODE_THUMB, &engine_) != UC_ERR_OK)
        Fail("the emulator cannot be started");
    uc_ctl_set_cpu_model(engine_, UC_CPU_ARM_CORTEX_A8);
    for (const Memory::Region& region : memory.regions())
        uc_mem_map_ptr(engine_, region.address, region.bytes,
                       UC_PROT_READ | (region.writable ? UC_PROT_WRITE : UC_PROT_NONE) |
                           (region.executable ? UC_PROT_EXEC : UC_PROT_NONE),
                       At(region.address));
    uc_mem_map_ptr(engine_, kGates, kPageBytes, UC_PROT_READ | UC_PROT_EXEC, Gates().data());
    uc_hook hook = 0;
    uc_hook_add(engine_, &hook, UC_HOOK_INTR, reinterpret_cast<void*>(OnInterrupt), &interrupt_, 1,
                0);
    Write(UC_ARM_REG_SP, stack_ + stack_bytes);
}

Processor::~Processor() {
    uc_close(engine_);
    memory_.Free(stack_);
    t_current = outer_;
}

Processor& Processor::Current() {
    return *t_current;
}

Address Processor::ImportAddress(std::size_t index) {
    return kGates + static_cast<Address>(index + 1) * kGateBytes + kThumb;
}

std::uint32_t Processor::Read(int register_id) const {
    std::uint32_t value = 0;
    uc_reg_read(engine_, register_id, &value);
    return value;
}

void Processor::Write(int register_id, std::uint32_t value) {
    uc_reg_write(engine_, register_id, &value);
}

std::uint32_t Processor::Call(Address function, std::initializer_list<std::uint32_t> arguments) {
    std::array<std::uint32_t, kSaved.size()> saved{};
    for (std::size_t index = 0; index < kSaved.size(); ++index)
        saved[index] = Read(kSaved[index]);

    // Windows CE aligns a stack to four bytes, not to eight.
    Address stack = (Read(UC_ARM_REG_SP) & ~Address{7}) - 4;
    if (arguments.size() > 4)
        stack -= static_cast<Address>(arguments.size() - 4 + arguments.size() % 2) * 4;
    Write(UC_ARM_REG_SP, stack);
    unsigned index = 0;
    for (const std::uint32_t argument : arguments) {
        if (index < 4)
            Write(kSaved[index], argument);
        else
            At<std::uint32_t>(stack)[index - 4] = argument;
        ++index;
    }
    Write(UC_ARM_REG_LR, kGates + kThumb);
    Write(UC_ARM_REG_CPSR, saved.back());
    Write(UC_ARM_REG_PC, function);
    Run();

    const std::uint32_t result = Read(UC_ARM_REG_R0);
    for (std::size_t register_index = 0; register_index < kSaved.size(); ++register_index)
        Write(kSaved[register_index], saved[register_index]);
    return result;
}

void Processor::Run() {
    for (;;) {
        Emulate();
        const Address gate = (Read(UC_ARM_REG_PC) - kGates) / kGateBytes;
        if (gate == 0)
            return;
        if (gate > functions_.size())
            Fail("interrupt outside the imports");
        const std::uint32_t registers[] = {Read(UC_ARM_REG_R0), Read(UC_ARM_REG_R1),
                                           Read(UC_ARM_REG_R2), Read(UC_ARM_REG_R3)};
        const Address caller = Read(UC_ARM_REG_LR);
        SystemCall call(*this, registers, Read(UC_ARM_REG_SP));
        functions_[gate - 1](call);
        Write(UC_ARM_REG_R0, call.result());
        Write(UC_ARM_REG_R1, call.high());
        Write(UC_ARM_REG_PC, caller);
    }
}

void Processor::Emulate() {
    const std::scoped_lock lock(g_executing);
    interrupt_ = 0;
    const Address state = (Read(UC_ARM_REG_CPSR) & kThumbState) != 0 ? kThumb : 0;
    const uc_err error = uc_emu_start(engine_, Read(UC_ARM_REG_PC) | state, 0, 0, 0);
    if (error != UC_ERR_OK)
        Fail(uc_strerror(error));
    if (interrupt_ != kSupervisorInterrupt)
        Fail("an instruction that the processor does not have");
}

void Processor::Fail(const char* what) {
    std::fprintf(stderr, "tolvane-arm: the program stopped: %s", what);
    if (engine_ != nullptr) {
        std::fprintf(stderr, "; pc %08x lr %08x sp %08x", Read(UC_ARM_REG_PC), Read(UC_ARM_REG_LR),
                     Read(UC_ARM_REG_SP));
        for (int index = 0; index < 13; ++index)
            std::fprintf(stderr, " r%d %08x", index, Read(kSaved[static_cast<std::size_t>(index)]));
    }
    std::fputc('\n', stderr);
    std::_Exit(EXIT_FAILURE);
}

}  // namespace ce
