#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>

namespace control {

// Gives the test a session's runtime folder of its own.
class RuntimeTest : public testing::Test {
  protected:
    RuntimeTest() {
        char name[] = "/tmp/tolvane-test-XXXXXX";
        session_ = mkdtemp(name);
        setenv("XDG_RUNTIME_DIR", session_.c_str(), 1);
    }
    ~RuntimeTest() override { std::filesystem::remove_all(session_); }

    std::string session_;
};

}  // namespace control
