// The program's frame parser with all its handlers: in chunks of any size it handles exactly the
// frames that the reference model finds in the same bytes.
#include <windows.h>

#include <algorithm>
#include <string>

#include "dvrlink/LinkState.h"
#include "dvrlink/UART.h"
#include "fuzz/fuzz.h"
#include "tests/model/link_model.h"
#include "tests/support/platform_fixture.h"

namespace {

// More than any frame, so that a frame that the input begins ends.
constexpr std::size_t kEnd = 80;

// The platform, with the link's locks.
tests::Platform& ThePlatform() {
    static auto& platform = *new tests::Platform;
    static const bool locks = Memory_Init() != FALSE;
    fuzz::Check(locks, "the link has its locks");
    return platform;
}

}  // namespace

void fuzz::Try(Input input) {
    const std::size_t chunk = std::max<std::size_t>(input.Byte(), 1);
    std::vector<std::uint8_t> bytes = input.Rest();
    bytes.resize(bytes.size() + kEnd);

    tests::PlainBoard& board = ThePlatform().board;
    board.ClearOutput();
    for (std::size_t at = 0; at < bytes.size(); at += chunk)
        UART_ParseData(bytes.data() + at, static_cast<DWORD>(std::min(chunk, bytes.size() - at)));
    const std::wstring output = board.debug_output();
    const std::string log(output.begin(), output.end());
    const std::string expected = tests::model::HandlerLog(bytes);
    fuzz::Check(log == expected, "the frames in the bytes are handled, and no others",
                "program:\n" + log + "expected:\n" + expected);
}
