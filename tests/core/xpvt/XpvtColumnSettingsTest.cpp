#include "xpvt/XpvtColumnSettings.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

using ZDTAnalyzer::XpvtColumnSettings;

const std::vector<int> DefaultWidths{35, 30, 150, 160, 160, 40, 110, 200, 200, 40, 120, 50};

TEST(XpvtColumnSettings, PartsAreReadByTheirLeadingDigits) {
    EXPECT_EQ(XpvtColumnSettings::parse(XpvtColumnSettings::DefaultText), DefaultWidths);
    // Digits stop the number at the first other character; the rest of the part is skipped.
    EXPECT_EQ(XpvtColumnSettings::parse("12ab/7 /0/99x9"), (std::vector<int>{12, 7, 0, 99}));
    // A part that begins with anything but a digit adds nothing, also a sign or a blank.
    EXPECT_EQ(XpvtColumnSettings::parse("a12/-5/ 6/8"), (std::vector<int>{8}));
    // Empty parts, a leading or a trailing slash add nothing either.
    EXPECT_EQ(XpvtColumnSettings::parse("/4//5/"), (std::vector<int>{4, 5}));
    EXPECT_TRUE(XpvtColumnSettings::parse("").empty());
    EXPECT_TRUE(XpvtColumnSettings::parse("///").empty());
    // A number too large for an int stays at the largest one instead of wrapping.
    EXPECT_EQ(XpvtColumnSettings::parse("99999999999999999999/1"), (std::vector<int>{INT_MAX, 1}));
}

TEST(XpvtColumnSettings, OnlyExactlyTwelveNumbersAreTaken) {
    const std::vector<int> own{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    EXPECT_EQ(XpvtColumnSettings::widths("1/2/3/4/5/6/7/8/9/10/11/12"), own);
    // Eleven or thirteen numbers fall back to the whole default.
    EXPECT_EQ(XpvtColumnSettings::widths("1/2/3/4/5/6/7/8/9/10/11"), DefaultWidths);
    EXPECT_EQ(XpvtColumnSettings::widths("1/2/3/4/5/6/7/8/9/10/11/12/13"), DefaultWidths);
    EXPECT_EQ(XpvtColumnSettings::widths(""), DefaultWidths);
    // A letter inside a part keeps that part's leading digits and the count stays twelve.
    EXPECT_EQ(XpvtColumnSettings::widths("1/2/3/4/5/6/7/8/9/10/1q1/12"),
              (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 1, 12}));
    // A part not beginning with a digit leaves eleven numbers: the default again.
    EXPECT_EQ(XpvtColumnSettings::widths("1/2/3/4/5/6/7/8/9/10/x11/12"), DefaultWidths);
}

} // namespace
