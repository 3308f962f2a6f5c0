#pragma once

#include <cstddef>

#include "platform/kernel/call_table.h"

namespace platform::kernel {

// Names a call that can fail by its row in the table; a name that has none does not compile. The
// conversion is implicit: it stands where the name is written.
class CallId {
  public:
    consteval CallId(const char* name) : row_(FindFailableCall(name).value()) {}

    std::size_t row() const { return row_; }

  private:
    std::size_t row_;
};

// Stands at the head of every function of the API that does more than look at the caller's own
// memory. It is a place where another thread may run first; it counts the program's calls; and it
// says whether this one is to fail, with the last error set already. What other functions the
// platform calls on the way, the API's own among them, is not the program's call and does not
// count.
class ApiCall {
  public:
    // A call that cannot fail.
    ApiCall();
    explicit ApiCall(CallId id);
    ~ApiCall() { --t_depth; }
    ApiCall(const ApiCall&) = delete;
    ApiCall& operator=(const ApiCall&) = delete;

    // True when the function is to do nothing and return its failing value.
    bool Fails() const { return fails_; }

  private:
    friend class ProgramCode;

    // How many functions of the API the calling thread is inside of.
    static inline thread_local unsigned t_depth = 0;

    bool fails_ = false;
};

// Around every call of a procedure that was handed to the platform: what that procedure calls is
// its owner's call again.
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
