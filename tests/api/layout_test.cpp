#include <windows.h>

#include <gtest/gtest.h>

#include <array>
#include <bit>

namespace {

// offsetof does not apply to bit fields.
TEST(Dcb, FlagsLieWhereTheSerialDriverLooksForThem) {
    const std::pair<void (*)(DCB&), DWORD> cases[] = {
        {[](DCB& dcb) { dcb.fBinary = 1; }, 0x0001},
        {[](DCB& dcb) { dcb.fParity = 1; }, 0x0002},
        {[](DCB& dcb) { dcb.fOutxCtsFlow = 1; }, 0x0004},
        {[](DCB& dcb) { dcb.fOutxDsrFlow = 1; }, 0x0008},
        {[](DCB& dcb) { dcb.fDtrControl = DTR_CONTROL_HANDSHAKE; }, 0x0020},
        {[](DCB& dcb) { dcb.fDsrSensitivity = 1; }, 0x0040},
        {[](DCB& dcb) { dcb.fTXContinueOnXoff = 1; }, 0x0080},
        {[](DCB& dcb) { dcb.fOutX = 1; }, 0x0100},
        {[](DCB& dcb) { dcb.fInX = 1; }, 0x0200},
        {[](DCB& dcb) { dcb.fErrorChar = 1; }, 0x0400},
        {[](DCB& dcb) { dcb.fNull = 1; }, 0x0800},
        {[](DCB& dcb) { dcb.fRtsControl = RTS_CONTROL_TOGGLE; }, 0x3000},
        {[](DCB& dcb) { dcb.fAbortOnError = 1; }, 0x4000},
    };
    for (const auto& [set, flags] : cases) {
        DCB dcb{};
        set(dcb);
        EXPECT_EQ((std::bit_cast<std::array<DWORD, sizeof dcb / sizeof flags>>(dcb)[2]), flags);
    }
}

}  // namespace
