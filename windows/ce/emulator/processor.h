#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <vector>

#include "windows/ce/emulator/memory.h"

struct uc_struct;

namespace ce {

class Processor;

// A call of the program to a function of the system: its arguments as the calling convention passes
// them.
class SystemCall {
  public:
    SystemCall(Processor& processor, const std::uint32_t (&registers)[4], Address stack)
        : processor_(processor), registers_(registers), stack_(stack) {}

    // The first four arguments are in registers, the others on the stack.
    std::uint32_t Argument(unsigned index) const {
        return index < 4 ? registers_[index] : At<std::uint32_t>(stack_)[index - 4];
    }
    // `high` is for functions that return two values.
    void Return(std::uint32_t value) { result_ = value; }
    void Return(std::uint32_t value, std::uint32_t high) {
        result_ = value;
        high_ = high;
    }

    Processor& processor() const { return processor_; }
    std::uint32_t result() const { return result_; }
    std::uint32_t high() const { return high_; }

  private:
    Processor& processor_;
    const std::uint32_t (&registers_)[4];
    Address stack_;
    std::uint32_t result_ = 0;
    std::uint32_t high_ = 0;
};

using SystemFunction = void (*)(SystemCall&);

// The end of a thread by its own call.
struct ThreadEnded {
    std::uint32_t exit_code;
};

// The processor for one thread of the program: a Cortex-A8, which has no instruction for division,
// with the floating-point unit switched off. One processor at a time executes instructions; while a
// thread is in a function of the system, others may. Created and used on its thread.
class Processor {
  public:
    // An import's function has the import's index in `functions`. Both must outlive the processor.
    Processor(Memory& memory, const std::vector<SystemFunction>& functions,
              std::uint32_t stack_bytes);
    ~Processor();
    Processor(const Processor&) = delete;
    Processor& operator=(const Processor&) = delete;

    // Runs a function of the program, Thumb code if the lowest bit of its address is set, and
    // returns its result. May be called within a SystemFunction.
    std::uint32_t Call(Address function, std::initializer_list<std::uint32_t> arguments);

    Memory& memory() { return memory_; }
    std::vector<std::uint32_t>& thread_locals() { return thread_locals_; }

    // The calling thread's.
    static Processor& Current();

    // The address that stands for an import.
    static Address ImportAddress(std::size_t index);

  private:
    void Run();
    void Emulate();
    [[noreturn]] void Fail(const char* what);

    std::uint32_t Read(int register_id) const;
    void Write(int register_id, std::uint32_t value);

    Memory& memory_;
    const std::vector<SystemFunction>& functions_;
    Address stack_;
    uc_struct* engine_ = nullptr;
    std::uint32_t interrupt_ = 0;  // that ended the emulation
    std::vector<std::uint32_t> thread_locals_;
    Processor* const outer_;
};

}  // namespace ce
