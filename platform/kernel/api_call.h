#pragma once

#include <cstddef>

#include "platform/kernel/call_table.h"

namespace platform::kernel {

// The row of a call that can fail, from its name; a name without a row does not compile.
class CallId {
  public:
    consteval CallId(const char* name) : row_(FindFailableCall(name).value()) {}

    std::size_t row() const { return row_; }

  private:
    std::size_t row_;
};

// Every function of the API that uses more than the caller's own memory begins with one. Another
// thread may run first here; the program's calls are counted; and Fails() reports whether a fault
// applies to this call, with the last error already set. Calls that the platform makes inside the
// function, also of the API, are not the program's calls and do not count.
class ApiCall {
  public:
    // A call that cannot fail.
    ApiCall();
    explicit ApiCall(CallId id);
    ~ApiCall() { --t_depth; }
    ApiCall(const ApiCall&) = delete;
    ApiCall& operator=(const ApiCall&) = delete;

    // True: the function must do nothing and return its failing value.
    bool Fails() const { return fails_; }

  private:
    friend class ProgramCode;

    // How many nested functions of the API the calling thread executes.
    static inline thread_local unsigned t_depth = 0;

    bool fails_ = false;
};

// Surrounds every call of a procedure of the program: the calls that the procedure makes are calls
// of the program again.
class ProgramCode {
  public:
    ProgramCode() : depth_(ApiCall::t_depth) { ApiCall::t_depth = 0; }
    ~ProgramCode() { ApiCall::t_depth = depth_; }
    ProgramCode(const ProgramCode&) = delete;
    ProgramCode& operator=(const ProgramCode&) = delete;

  private:
    const unsigned depth_;
};

}  // namespace platform::kernel
