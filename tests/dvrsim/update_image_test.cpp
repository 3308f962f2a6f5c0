#include "dvrsim/update_image.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "bench.h"

namespace dvrsim {
namespace {

TEST(UpdateImage, ReadsOnlyAWellFormedHeader) {
    const std::string longest(63, 'v');
    const struct {
        const char* name;
        std::string content;
        std::optional<std::string> version;
    } cases[] = {
        {"whole", "TOLVANE DVR IMAGE 14.09.01.V1.02.03\nrest", "14.09.01.V1.02.03"},
        {"longest version", "TOLVANE DVR IMAGE " + longest + "\n", longest},
        {"version too long for a frame", "TOLVANE DVR IMAGE " + longest + "v\n", std::nullopt},
        {"version too short", "TOLVANE DVR IMAGE 14.09.01.V1.02.0\n", std::nullopt},
        {"blank in the version", "TOLVANE DVR IMAGE 14.09.01 V1.02.03\n", std::nullopt},
        {"carriage return", "TOLVANE DVR IMAGE 14.09.01.V1.02.03\r\n", std::nullopt},
        {"no line end", "TOLVANE DVR IMAGE 14.09.01.V1.02.03", std::nullopt},
        {"other magic", "TOLVANE DVR image 14.09.01.V1.02.03\n", std::nullopt},
        {"empty", "", std::nullopt},
        {"binary", std::string(100000, '\0'), std::nullopt},
        {"huge line", std::string(5000000, 'T'), std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        TemporaryFolder folder;
        std::ofstream(folder.path / "gp_cardvr_upgrade.bin") << c.content;
        EXPECT_EQ(ReadImageVersion(folder.path), c.version);
    }
}

TEST(UpdateImage, PassesOverWhatIsNoFile) {
    TemporaryFolder folder;
    EXPECT_EQ(ReadImageVersion(folder.path / "missing"), std::nullopt);
    EXPECT_FALSE(WriteImage(folder.path / "missing", "14.09.01.V1.02.03"));
    EXPECT_FALSE(WriteImage(folder.path, "1.02.03"));
    EXPECT_EQ(ReadImageVersion(folder.path), std::nullopt);
    // A pipe nobody writes to would block a plain open for ever.
    ASSERT_EQ(mkfifo((folder.path / "gp_cardvr_upgrade.bin").c_str(), 0600), 0);
    EXPECT_EQ(ReadImageVersion(folder.path), std::nullopt);
    EXPECT_TRUE(WriteImage(folder.path, "14.09.01.V1.02.03", "gp_card_upgrade.bin"));
    EXPECT_EQ(ReadImageVersion(folder.path), "14.09.01.V1.02.03");
}

}  // namespace
}  // namespace dvrsim
