#include <gtest/gtest.h>

#include "dvrsim/command_names.h"
#include "dvrsim/value_names.h"

namespace dvrsim {
namespace {

TEST(CommandNames, BothWays) {
    for (unsigned number = 0; number < 0x10000; ++number) {
        const auto code = static_cast<std::uint16_t>(number);
        const std::string_view name = CommandName(code);
        const unsigned plain = number % 0x8000;
        ASSERT_EQ(name.empty(), plain < 0x0010 || plain > 0x002E) << number;
        if (!name.empty()) {
            ASSERT_EQ(static_cast<unsigned>(*CommandNamed(name)), plain) << name;
        }
    }
    EXPECT_EQ(CommandName(0x8026), "StorageCardStatus");
    EXPECT_EQ(CommandName(0x0029), "G_Sensor");
    EXPECT_EQ(CommandNamed("fw_upgrade_version"), Command::kFirmwareUpgradeVersion);
    EXPECT_EQ(CommandNamed("FW_Upgrade"), std::nullopt);
    EXPECT_EQ(CommandNamed(""), std::nullopt);
}

TEST(ValueNames, BothWays) {
    EXPECT_EQ(NameOf(CardStatus::kSpaceFullEventFile), "full-event");
    EXPECT_EQ(NameOf(static_cast<CardStatus>(7)), "unknown");
    EXPECT_EQ(ValueNamed<CardStatus>("broken"), CardStatus::kBroken);
    EXPECT_EQ(ValueNamed<RunningState>("rebooting"), RunningState::kRebooting);
    EXPECT_EQ(ValueNamed<Dvr::State>("unknown"), std::nullopt);
}

}  // namespace
}  // namespace dvrsim
