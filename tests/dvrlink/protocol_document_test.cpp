#include <fstream>
#include <sstream>

#include "link_fixture.h"
#include "tests/model/link_model.h"

// docs/protocol.md against the program: its examples are received or sent.

namespace tests {
namespace {

// The columns of the document's table rows whose first column begins so.
std::vector<std::vector<std::string>> Rows(const std::string& first) {
    std::ifstream document(TOLVANE_PROTOCOL_DOCUMENT);
    EXPECT_TRUE(document.is_open()) << TOLVANE_PROTOCOL_DOCUMENT;
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(document, line);) {
        if (!line.starts_with("| " + first) && !line.starts_with("| `" + first))
            continue;
        std::erase(line, '`');
        std::istringstream rest(line.substr(1));
        rows.emplace_back();
        for (std::string column; std::getline(rest, column, '|');)
            rows.back().push_back(column.substr(1, column.find_last_not_of(' ')));
    }
    return rows;
}

TEST(ProtocolDocument, HasExamplesAsTheProgramLogsAndSendsThem) {
    LinkFixture link;
    const auto to_unit = Rows("to unit");
    const auto to_dvr = Rows("to DVR");
    ASSERT_GE(to_unit.size(), 10U);
    ASSERT_EQ(to_dvr.size(), 5U);
    Bytes sent;
    link.Run([&] {
        for (const auto& row : to_unit) {
            LinkFixture::Parse(Hex(row[2]));
            std::string log = link.TakeLog();
            // A hex dump has a space after each byte, and an empty line at its end.
            log.erase(log.find_last_not_of(" \n") + 1);
            for (std::size_t at = 0; (at = log.find("\n\t")) != std::string::npos;)
                log.replace(at, 2, "<br>");
            EXPECT_EQ(log, "\t" + row[3]) << row[1];
        }
        ASSERT_TRUE(COM_Init());
        for (const auto& row : to_dvr) {
            const Bytes bytes = Hex(row[2]);
            sent.insert(sent.end(), bytes.begin(), bytes.end());
            UART_SendCommand(static_cast<WORD>(bytes[3] << 8 | bytes[4]), &bytes[7], 1);
        }
    });
    EXPECT_EQ(link.received_by_dvr, sent);
}

TEST(ProtocolDocument, NamesEveryCommandAsItsHandlersDo) {
    const auto rows = Rows("0x00");
    ASSERT_EQ(rows.size(), 31U);
    LinkFixture link;
    link.Run([&] {
        for (const auto& row : rows) {
            const auto number = static_cast<unsigned>(std::stoi(row[0], nullptr, 16));
            LinkFixture::Parse(model::Frame(0x20, number, Bytes{}));
            const std::string log = link.TakeLog();
            EXPECT_TRUE(log.starts_with("\t" + row[1] + "_ACK, ")) << row[0] << ": " << log;
        }
    });
}

}  // namespace
}  // namespace tests
