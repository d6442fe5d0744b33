#include "classic/KLineByteTime.h"

#include <gtest/gtest.h>

namespace {

TEST(KLineByteTime, CountsStartDataAndStopBitsButNotParity) {
    KLineByteSettings settings; // 10,400 Bit/s, 8 data bits, 1 stop bit
    EXPECT_EQ(KLineByteTime(settings), 961u);
    settings.parity = KLineByteSettings::Even;
    EXPECT_EQ(KLineByteTime(settings), 961u);
    settings.stopBits = 2;
    EXPECT_EQ(KLineByteTime(settings), 1057u); // 11 bits: 1057.69 cut
    settings.dataBits = 7;
    settings.baudrate = 1;
    EXPECT_EQ(KLineByteTime(settings), 10000000u);
    settings.baudrate = KLineByteSettings::MaxBaudrate;
    EXPECT_EQ(KLineByteTime(settings), 0u);
}

TEST(KLineByteTime, ABaudRateOfZeroIsRefusedNotDivided) {
    KLineByteSettings settings;
    settings.baudrate = 0;
    EXPECT_EQ(KLineByteTime(settings), std::nullopt);
    EXPECT_FALSE(BaudrateZeroMessage().text.empty());
}

TEST(KLineByteTime, NineBitsLeaveTheDataBitsAsTheyWere) {
    KLineByteSettings settings;
    ChooseByteLength(settings, 7);
    EXPECT_EQ(settings.dataBits, 7u);
    ChooseByteLength(settings, 9);
    EXPECT_EQ(settings.dataBits, 7u);
    ChooseByteLength(settings, 8);
    EXPECT_EQ(settings.dataBits, 8u);
}

TEST(KLineByteTime, BaudRateTextMustBeAWholeNumberInRange) {
    EXPECT_EQ(ParseBaudrate("10400"), 10400u);
    EXPECT_EQ(ParseBaudrate(" 0 "), 0u);
    EXPECT_EQ(ParseBaudrate("16777215"), 16777215u);
    EXPECT_EQ(ParseBaudrate("16777216"), std::nullopt);
    EXPECT_EQ(ParseBaudrate("99999999999999999999"), std::nullopt);
    EXPECT_EQ(ParseBaudrate(""), std::nullopt);
    EXPECT_EQ(ParseBaudrate("-1"), std::nullopt);
    EXPECT_EQ(ParseBaudrate("96 00"), std::nullopt);
}

} // namespace
