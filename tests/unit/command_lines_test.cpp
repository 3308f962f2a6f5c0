#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "tests/support/process.h"

// The options of all three commands.

namespace {

std::set<std::string> Options(std::string text) {
    static const std::regex option("(^|[^a-z-])(--[a-z][a-z0-9-]+)");
    std::set<std::string> options;
    for (std::sregex_iterator found(text.begin(), text.end(), option), end; found != end; ++found)
        options.insert((*found)[2]);
    return options;
}

// The page's section OPTIONS as it is displayed: \\- is a dash.
std::string OptionsSection(const std::string& page) {
    std::ifstream file(MANUALS "/" + page);
    std::ostringstream text;
    text << file.rdbuf();
    std::string section = text.str();
    const std::size_t from = section.find(".SH OPTIONS");
    section = section.substr(from, section.find(".SH", from + 1) - from);
    for (std::size_t at = 0; (at = section.find("\\-", at)) != std::string::npos;)
        section.erase(at, 1);
    return section;
}

class CommandLines : public tests::Process {};

TEST_F(CommandLines, ManualsListExactlyTheOptions) {
    for (const auto& [binary, page] : {std::pair(TOLVANE_BINARY, "tolvane.1"),
                                       {UNITCTL_BINARY, "unitctl.1"},
                                       {DVRSIM_BINARY, "dvrsim.1"}}) {
        ASSERT_EQ(Run(binary, {"--help"}), 0);
        std::string help = Read("out");
        // Behind "Options:" options are at the start of a line; elsewhere they are prose.
        std::istringstream lines(help.substr(help.find("Options:")));
        std::set<std::string> options;
        for (std::string line; std::getline(lines, line);)
            if (line.starts_with("  -"))
                options.merge(Options(line.substr(0, line.find_first_of(" ", 4))));
        EXPECT_GE(options.size(), 2U) << help;
        EXPECT_EQ(Options(OptionsSection(page)), options) << page;
    }
}

TEST_F(CommandLines, ErrorsAreOneLineAndStatusTwo) {
    const std::pair<const char*, std::vector<const char*>> cases[] = {
        {TOLVANE_BINARY,
         {"--nope", "extra", "--com9 foo", "--speed 0", "--speed 1e9", "--speed fast", "--seed -1",
          "--card /no", "--log", "--reset-command true", "--unit a/b"}},
        {DVRSIM_BINARY,
         {"--nope", "/dev/a /dev/b", "--speed 0", "--seed -1", "--name a/b", "--firmware ''",
          "--send", "--card /no", "/dev/a --link /tmp/b"}},
        {UNITCTL_BINARY, {"", "--nope", "--unit ../x state", "tap \xFF", "run /no/file"}},
    };
    for (const auto& [binary, lines] : cases)
        for (const std::string arguments : lines) {
            SCOPED_TRACE(binary + (" " + arguments));
            EXPECT_EQ(Run("/bin/sh", {"-c", "exec " + (binary + (" " + arguments))}), 2);
            const std::string name = std::filesystem::path(binary).filename();
            const std::string said = Read("err");
            EXPECT_TRUE(said.starts_with(name + ": ")) << said;
            EXPECT_EQ(said.find('\n'), said.size() - 1) << said;
            EXPECT_EQ(Read("out"), "");
        }
}

}  // namespace
