#include "tests/campaign/case.h"

namespace tests::campaign {

namespace {

// One kind a line, whatever its length.
// clang-format off
constexpr FaultKind kKinds[] = {
    {kFails, kCall, "fault any-call", true},
    {"drops", kByte, "fault line drop bytes to-unit", true},
    {"corrupts", kByte, "fault line corrupt bytes to-unit", true},
    {"splits", kByte, "fault line split 300ms bytes to-unit", true},
    {"loses-request", kFrame, "fault line drop bytes to-dvr", true},
    {"dvr-resets", kFrame, "dvr reset"},
    {"dvr-silent", kFrame, "fault dvr silent on"},
    {"dvr-off", kFrame, "dvr power off"},
    {"unplugged", kFrame, "line unplug"},
    {"card-leaves", kFrame, "card out"},
    {"power-goes", kFrame, "power off"},
    {"suspend-asked", kFrame, "request suspend"},
    {"resume-asked", kFrame, "request resume"},
    {"off-asked", kFrame, "request off"},
    {kCloses, kFrame, {}},
    {"scaler-vanishes", kFrame, "fault driver SCA0: missing"},
    {"reset-vanishes", kFrame, "fault driver DVR1: missing"},
};
// clang-format on

}  // namespace

std::span<const FaultKind> FaultKinds() {
    return kKinds;
}

}  // namespace tests::campaign
