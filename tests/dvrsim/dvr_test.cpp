#include "dvrsim/dvr.h"

#include <gtest/gtest.h>

#include <set>

namespace dvrsim {
namespace {

// A host whose time stands still: its actions wait for ever.
class StoppedHost final : public Host {
  public:
    std::chrono::microseconds Now() const override { return {}; }
    std::uint64_t After(std::chrono::microseconds, std::function<void()>) override {
        waiting.insert(++last_id_);
        return last_id_;
    }
    void Cancel(std::uint64_t id) override { waiting.erase(id); }
    void Transmit(std::span<const std::uint8_t>) override {}

    std::set<std::uint64_t> waiting;

  private:
    std::uint64_t last_id_ = 0;
};

TEST(Dvr, CancelsItsActionsAtItsEnd) {
    StoppedHost host;
    {
        Dvr dvr(host);
        dvr.PowerOn();
        dvr.InsertCard("/");
        EXPECT_EQ(host.waiting.size(), 2U);
    }
    EXPECT_TRUE(host.waiting.empty());
}

}  // namespace
}  // namespace dvrsim
