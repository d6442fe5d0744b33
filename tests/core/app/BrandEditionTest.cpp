#include "app/BrandEdition.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string_view>
#include <tuple>

using namespace zdt;

TEST(BrandEdition, NameDecidesWithPartnerMarkFirst) {
    EXPECT_EQ(BrandEditionFromName(""), BrandEditionStandard);
    EXPECT_EQ(BrandEditionFromName("Standard"), BrandEditionStandard);
    EXPECT_EQ(BrandEditionFromName("ELAS"), BrandEditionPartner);
    EXPECT_EQ(BrandEditionFromName("xxNWAGyy"), BrandEditionCustomer);
    EXPECT_EQ(BrandEditionFromName("NWAG-ELAS"), BrandEditionPartner);
    EXPECT_EQ(BrandEditionFromName("ELAS-NWAG"), BrandEditionPartner);
    // A plain substring test: case matters and a split mark does not count.
    EXPECT_EQ(BrandEditionFromName("elas"), BrandEditionStandard);
    EXPECT_EQ(BrandEditionFromName("NWA G"), BrandEditionStandard);
}

TEST(BrandEdition, EachEditionSelectsItsTitlesAndResources) {
    using Summary =
        std::tuple<std::string_view, int, int, bool, std::string_view, std::string_view, std::string_view, int>;
    const auto summary = [](int edition) {
        const EditionInfo& i = EditionInfoFor(edition);
        return Summary(i.applicationTitle, i.mainFrameId, i.classicTemplateId, i.partnerAboutBox, i.aboutTitle,
                       i.aboutName, i.aboutExtraLine, i.aboutIconId);
    };
    EXPECT_EQ(summary(BrandEditionStandard),
              Summary("ZDT-Analyzer", 128, 142, false, "About ZDT-Analyzer", "ZDT-Analyzer", "", 128));
    EXPECT_EQ(summary(BrandEditionPartner), Summary("OVX-ANALYZER", 130, 143, true, "About OVX-ANALYZER",
                                                    "OVX-ANALYZER", "Vehicle Analyzer V7", 130));
    EXPECT_EQ(summary(BrandEditionCustomer),
              Summary("ZDT-Analyzer NORDWAGEN AG", 131, 142, false, "About ZDT-Analyzer NORDWAGEN AG",
                      "ZDT-Analyzer NORDWAGEN AG", "", 128));
    EXPECT_EQ(EditionInfoFor(0).edition, BrandEditionStandard);
    EXPECT_EQ(EditionInfoFor(3).edition, BrandEditionStandard);
}

// Runs in a fresh process, since the edition is cached for the whole run.
TEST(BrandEditionDeathTest, ReadsTheEnvironmentOnceAndKeepsTheEdition) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            setenv("ZDT_BRAND", "Vendor NWAG", 1);
            const int first = BrandEdition();
            setenv("ZDT_BRAND", "ELAS", 1);
            const int second = BrandEdition();
            std::exit(first * 10 + second);
        },
        testing::ExitedWithCode(44), "");
    EXPECT_EXIT(
        {
            unsetenv("ZDT_BRAND");
            std::exit(BrandEdition());
        },
        testing::ExitedWithCode(1), "");
}
