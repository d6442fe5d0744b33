#pragma once

#include <string>
#include <string_view>

namespace zdt {

enum BrandEditionValue {
    BrandEditionStandard = 1,
    BrandEditionPartner = 2,
    BrandEditionCustomer = 4,
};

// The edition of this run, decided by the brand name in ZDT_BRAND on the first call
// and kept for the rest of the run: the brand must not change titles half-way.
int BrandEdition();

// The edition a brand name stands for. The partner mark is tested first, so a name
// carrying both marks is a partner edition.
int BrandEditionFromName(const std::string& brandName);

// Everything an edition changes: titles, resource ids and the about box. Logic never
// depends on the edition.
struct EditionInfo {
    int edition;
    std::string_view applicationTitle;
    int mainFrameId;       // menu, icon and title string of the main frame
    int classicTemplateId; // menu of a classic document
    bool partnerAboutBox;  // the partner's about box, which has an extra line
    std::string_view aboutTitle;
    std::string_view aboutName;
    std::string_view aboutExtraLine; // empty unless partnerAboutBox
    int aboutIconId;
};

// Unknown values give the standard edition.
const EditionInfo& EditionInfoFor(int edition);

} // namespace zdt
