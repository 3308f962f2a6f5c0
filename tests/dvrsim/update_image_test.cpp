#include "dvrsim/storage_card.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "dvrsim/card_folders.h"

namespace dvrsim {
namespace {

TEST(UpdateImage, ReadsOnlyAWellFormedHeader) {
    const std::string longest(63, 'v');
    const std::optional<std::string> none;
    const std::pair<std::string, std::optional<std::string>> cases[] = {
        {"TOLVANE DVR IMAGE 14.09.01.V1.02.03\nrest", "14.09.01.V1.02.03"},
        {"TOLVANE DVR IMAGE " + longest + "\n", longest},
        {"TOLVANE DVR IMAGE " + longest + "v\n", none},
        {"TOLVANE DVR IMAGE 14.09.01.V1.02.0\n", none},
        {"TOLVANE DVR IMAGE 14.09.01 V1.02.03\n", none},
        {"TOLVANE DVR IMAGE 14.09.01.V1.02.03\r\n", none},
        {"TOLVANE DVR IMAGE 14.09.01.V1.02.03", none},
        {"TOLVANE DVR image 14.09.01.V1.02.03\n", none},
        {"", none},
        {std::string(5000000, 'T'), none},
    };
    for (const auto& [content, version] : cases) {
        const TemporaryCard card(std::nullopt);
        std::ofstream(card.path() + "/gp_cardvr_upgrade.bin") << content;
        EXPECT_EQ(ReadImageVersion(card.path()), version) << content.substr(0, 100);
    }
}

TEST(UpdateImage, IgnoresWhatIsNotAFile) {
    const TemporaryCard card(std::nullopt);
    EXPECT_FALSE(WriteImage(card.path() + "/missing", kNewVersion));
    EXPECT_FALSE(WriteImage(card.path(), "1.02.03"));
    EXPECT_EQ(ReadImageVersion(card.path()), std::nullopt);
    // Opening a pipe without a writer would block for ever.
    ASSERT_EQ(mkfifo((card.path() + "/gp_cardvr_upgrade.bin").c_str(), 0600), 0);
    EXPECT_TRUE(WriteImage(card.path(), kNewVersion, "gp_card_upgrade.bin"));
    EXPECT_EQ(ReadImageVersion(card.path()), kNewVersion);
}

TEST(CardFolders, KeepsOnlyValidCardsUpToTheLimit) {
    CardFolders cards;
    EXPECT_EQ(cards.Make("1.2"), "");
    for (std::size_t made = 0; made < CardFolders::kMaxMade; ++made)
        EXPECT_NE(cards.Make("14.09.01.V1.02.03." + std::to_string(made)), "");
    EXPECT_EQ(cards.Make(kNewVersion), "");
    EXPECT_EQ(ReadImageVersion(cards.Make("14.09.01.V1.02.03.7")), "14.09.01.V1.02.03.7");
}

}  // namespace
}  // namespace dvrsim
