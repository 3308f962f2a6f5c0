#include <fstream>
#include <sstream>

#include "link_fixture.h"

// docs/protocol.md against the program: its examples go in as bytes or come out as bytes.

namespace tests {
namespace {

// The cells of the document's table rows whose first cell is one of `first`.
std::vector<std::vector<std::string>> Rows(const std::vector<std::string>& first) {
    std::ifstream document(TOLVANE_PROTOCOL_DOCUMENT);
    EXPECT_TRUE(document.is_open()) << TOLVANE_PROTOCOL_DOCUMENT;
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(document, line);) {
        std::istringstream rest(line);
        std::vector<std::string> cells;
        for (std::string cell; std::getline(rest, cell, '|');) {
            std::erase(cell, '`');
            const std::size_t from = cell.find_first_not_of(' ');
            cells.push_back(from == std::string::npos
                                ? ""
                                : cell.substr(from, cell.find_last_not_of(' ') + 1 - from));
        }
        if (cells.size() > 2 && std::ranges::any_of(first, [&](const std::string& start) {
                return cells[1].starts_with(start);
            }))
            rows.push_back({cells.begin() + 1, cells.end()});
    }
    return rows;
}

std::string WithoutBreaks(std::string text) {
    for (std::size_t at = 0; (at = text.find("<br>", at)) != std::string::npos;)
        text.replace(at, 4, "\n\t");
    return "\t" + text;
}

TEST(ProtocolDocument, ExamplesToTheUnitAreLoggedAsItSays) {
    LinkFixture link;
    const auto rows = Rows({"to unit"});
    ASSERT_GE(rows.size(), 10U);
    link.Run([&] {
        for (const auto& row : rows) {
            LinkFixture::Parse(Hex(row[2]));
            std::string log = link.TakeLog();
            // A dump comes in pieces, each with a blank behind it, and an empty line at its end.
            while (log.ends_with(' ') || log.ends_with('\n'))
                log.pop_back();
            EXPECT_EQ(log, WithoutBreaks(row[3])) << row[1];
        }
    });
}

TEST(ProtocolDocument, ExamplesToTheDvrAreWhatTheProgramSends) {
    LinkFixture link;
    const auto rows = Rows({"to DVR"});
    ASSERT_EQ(rows.size(), 5U);
    Bytes expected;
    link.Run([&] {
        ASSERT_TRUE(COM_Init());
        for (const auto& row : rows) {
            const Bytes bytes = Hex(row[2]);
            expected.insert(expected.end(), bytes.begin(), bytes.end());
            UART_SendCommand(static_cast<WORD>(bytes[3] << 8 | bytes[4]), &bytes[7], 1);
        }
    });
    EXPECT_EQ(link.received_by_dvr, expected);
}

TEST(ProtocolDocument, NamesEveryCommandAsItsHandlersDo) {
    LinkFixture link;
    const auto rows = Rows({"0x00"});
    ASSERT_EQ(rows.size(), 31U);
    for (const auto& row : rows) {
        const DvrFrame frame = Record(Hex("20" + row[0].substr(2)));
        Dispatch_Command(&frame);
        const std::string log = link.TakeLog();
        EXPECT_TRUE(log.starts_with("\t" + row[1] + "_ACK, ")) << row[0] << ": " << log;
    }
}

}  // namespace
}  // namespace tests
