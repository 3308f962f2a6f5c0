#include <pkfuncs.h>
#include <windows.h>
#include <windowsx.h>

#include <gtest/gtest.h>

#include <cstring>

namespace {

// What the serial driver sees of a DCB's third word; offsetof cannot tell where a bit field lies.
DWORD FlagWord(const DCB& dcb) {
    DWORD word = 0;
    std::memcpy(&word, reinterpret_cast<const char*>(&dcb) + 8, sizeof word);
    return word;
}

TEST(Dcb, FlagsLieWhereTheSerialDriverLooksForThem) {
    struct Case {
        void (*set)(DCB& dcb);
        DWORD expected;
    };
    const Case cases[] = {
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
    for (const Case& row : cases) {
        DCB dcb{};
        row.set(dcb);
        EXPECT_EQ(FlagWord(dcb), row.expected);
    }
}

TEST(Macros, PackAndUnpackAsTheApiDoes) {
    EXPECT_EQ(CTL_CODE(FILE_DEVICE_HAL, 2056, METHOD_BUFFERED, FILE_ANY_ACCESS), 0x01012020U);
    EXPECT_EQ(CTL_CODE(0x8001, 0x82C, METHOD_BUFFERED, FILE_ANY_ACCESS), 0x800120B0U);
    EXPECT_EQ(CTL_CODE(0x1B, 6, METHOD_NEITHER, FILE_ANY_ACCESS), 0x001B001BU);
    EXPECT_EQ(MAKELONG(0x12345678, 0x9ABCDEF0), static_cast<LONG>(0xDEF05678U));
    EXPECT_EQ(MAKEWORD(0x1FF, 0x2EE), 0xEEFF);
    // A message parameter is wider than the two words in it, and its upper half stays clear.
    EXPECT_EQ(MAKELPARAM(1, -1), LPARAM{0xFFFF0001});
    EXPECT_EQ(HIWORD(LPARAM{0x1234ABCD5678EF01}), 0x5678);
    EXPECT_EQ(GET_X_LPARAM(MAKELPARAM(-3, 479)), -3);
    EXPECT_EQ(GET_Y_LPARAM(MAKELPARAM(-3, 479)), 479);
    EXPECT_EQ(RGB(0x11, 0x22, 0x33), 0x00332211U);
    EXPECT_EQ(RGB(-1, 0, 0), 0x000000FFU);
    EXPECT_EQ(GetBValue(0x00332211U), 0x33);
    EXPECT_TRUE(IS_INTRESOURCE(MAKEINTRESOURCEW(0x1FFFF)));
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_INVALID_PARAMETER), E_INVALIDARG);
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_SUCCESS), S_OK);
    EXPECT_EQ(HRESULT_FROM_WIN32(static_cast<DWORD>(E_FAIL)), E_FAIL);
}

}  // namespace
