#include "app/BrandEdition.h"

#include <cstdlib>

namespace zdt {
namespace {

constexpr EditionInfo StandardInfo{
    BrandEditionStandard, "ZDT-Analyzer", 128, 142, false, "About ZDT-Analyzer", "ZDT-Analyzer", "", 128,
};

constexpr EditionInfo PartnerInfo{
    BrandEditionPartner, "OVX-ANALYZER",        130, 143, true, "About OVX-ANALYZER",
    "OVX-ANALYZER",      "Vehicle Analyzer V7", 130,
};

constexpr EditionInfo CustomerInfo{
    BrandEditionCustomer,
    "ZDT-Analyzer NORDWAGEN AG",
    131,
    142,
    false,
    "About ZDT-Analyzer NORDWAGEN AG",
    "ZDT-Analyzer NORDWAGEN AG",
    "",
    128,
};

std::string BrandNameFromEnvironment() {
    const char* brand = std::getenv("ZDT_BRAND");
    return brand != nullptr ? brand : std::string();
}

} // namespace

int BrandEditionFromName(const std::string& brandName) {
    if (brandName.find("ELAS") != std::string::npos)
        return BrandEditionPartner;
    if (brandName.find("NWAG") != std::string::npos)
        return BrandEditionCustomer;
    return BrandEditionStandard;
}

int BrandEdition() {
    static const int edition = BrandEditionFromName(BrandNameFromEnvironment());
    return edition;
}

const EditionInfo& EditionInfoFor(int edition) {
    switch (edition) {
    case BrandEditionPartner:
        return PartnerInfo;
    case BrandEditionCustomer:
        return CustomerInfo;
    default:
        return StandardInfo;
    }
}

} // namespace zdt
