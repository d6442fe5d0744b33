#include "snp/SnpFindDialogLogic.h"

#include <gtest/gtest.h>

namespace {

using namespace ZDTAnalyzer;
using namespace ZDTAnalyzer::Find::SNP;

void tick(FindDialogControls& controls, FindField field, std::string text) {
    controls.checked[static_cast<std::size_t>(field)] = true;
    controls.texts[static_cast<std::size_t>(field)] = std::move(text);
}

void type(FindDialogControls& controls, FindField field, std::string text) {
    controls.texts[static_cast<std::size_t>(field)] = std::move(text);
}

SnpFindCriteria fill(const FindDialogControls& controls) {
    SnpFindCriteria criteria;
    fillCriteria(controls, criteria);
    return criteria;
}

// Only the named kind of row is searched; every other kind keeps its flags off.
void expectOnlyKind(const SnpFindCriteria& c, int radio) {
    EXPECT_EQ(c.searchSnapShot, radio == RadioSnapShot);
    EXPECT_EQ(c.searchLogicalLink, radio == RadioLogicalLink);
    EXPECT_EQ(c.searchService, radio == RadioService);
    EXPECT_EQ(c.searchComPrimitive, radio == RadioComPrimitive);
    EXPECT_EQ(c.searchDtc, radio == RadioDtc);
    EXPECT_EQ(c.searchProcessValue, radio == RadioProcessValue);
}

TEST(SnpFindDialogLogic, EnablingFollowsTheRadioAndTheTicks) {
    FindDialogControls controls;
    tick(controls, FindField::LongName, "x");
    tick(controls, FindField::ValueUnit, "V");

    FindDialogEnabling start = enablingOf(controls);
    for (std::size_t i = 0; i < FindFieldCount; ++i) {
        const bool snapshotField = i <= static_cast<std::size_t>(FindField::Created);
        EXPECT_EQ(start.checkBoxEnabled[i], snapshotField) << i;
    }
    EXPECT_FALSE(start.editEnabled[static_cast<std::size_t>(FindField::ShortName)]);
    EXPECT_TRUE(start.editEnabled[static_cast<std::size_t>(FindField::LongName)]);
    EXPECT_FALSE(start.editEnabled[static_cast<std::size_t>(FindField::ValueUnit)]); // ticked, other group

    controls.radio = RadioProcessValue;
    FindDialogEnabling values = enablingOf(controls);
    EXPECT_FALSE(values.checkBoxEnabled[static_cast<std::size_t>(FindField::LongName)]);
    EXPECT_FALSE(values.editEnabled[static_cast<std::size_t>(FindField::LongName)]); // keeps its tick, disabled
    EXPECT_TRUE(values.checkBoxEnabled[static_cast<std::size_t>(FindField::ValueName)]);
    EXPECT_TRUE(values.checkBoxEnabled[static_cast<std::size_t>(FindField::ValueText)]);
    EXPECT_TRUE(values.editEnabled[static_cast<std::size_t>(FindField::ValueUnit)]);
    EXPECT_FALSE(values.editEnabled[static_cast<std::size_t>(FindField::ValueName)]);

    // Every single-box group enables its own box and nothing else.
    const std::pair<int, FindField> singles[] = {{RadioLogicalLink, FindField::LinkName},
                                                 {RadioService, FindField::ServiceName},
                                                 {RadioComPrimitive, FindField::ComPrimitiveName},
                                                 {RadioDtc, FindField::DtcValue}};
    for (const auto& [radio, field] : singles) {
        controls.radio = radio;
        FindDialogEnabling single = enablingOf(controls);
        for (std::size_t i = 0; i < FindFieldCount; ++i)
            EXPECT_EQ(single.checkBoxEnabled[i], i == static_cast<std::size_t>(field)) << radio << " " << i;
    }
}

TEST(SnpFindDialogLogic, SnapshotTakesTheTickedFieldsOrEverySnapshot) {
    FindDialogControls none;
    type(none, FindField::Created, "typed but not ticked");
    SnpFindCriteria all = fill(none);
    expectOnlyKind(all, RadioSnapShot);
    EXPECT_TRUE(all.createdOn);
    EXPECT_EQ(all.created, "");
    EXPECT_FALSE(all.shortNameOn);
    EXPECT_FALSE(all.longNameOn);

    FindDialogControls two;
    tick(two, FindField::ShortName, "SN");
    tick(two, FindField::Created, "2024");
    type(two, FindField::LongName, "ignored");
    SnpFindCriteria c = fill(two);
    EXPECT_TRUE(c.shortNameOn);
    EXPECT_EQ(c.shortName, "SN");
    EXPECT_FALSE(c.longNameOn);
    EXPECT_EQ(c.longName, "");
    EXPECT_TRUE(c.createdOn);
    EXPECT_EQ(c.created, "2024");

    // A tick in another group does not count as a tick here.
    FindDialogControls elsewhere;
    tick(elsewhere, FindField::ValueName, "v");
    SnpFindCriteria e = fill(elsewhere);
    EXPECT_TRUE(e.createdOn);
    EXPECT_FALSE(e.valueNameOn);
    EXPECT_EQ(e.valueName, "");
}

TEST(SnpFindDialogLogic, LinkNameComesFromTheCreatedEdit) {
    FindDialogControls controls;
    controls.radio = RadioLogicalLink;
    tick(controls, FindField::LinkName, "LL_Engine");
    type(controls, FindField::Created, "from created");
    SnpFindCriteria c = fill(controls);
    expectOnlyKind(c, RadioLogicalLink);
    EXPECT_TRUE(c.linkNameOn);
    EXPECT_EQ(c.linkName, "from created");
    EXPECT_FALSE(c.createdOn); // the snapshot group is left alone

    controls.checked[static_cast<std::size_t>(FindField::LinkName)] = false;
    SnpFindCriteria unticked = fill(controls);
    EXPECT_TRUE(unticked.linkNameOn);
    EXPECT_EQ(unticked.linkName, "");
}

TEST(SnpFindDialogLogic, SingleFieldKindsSearchTheirOwnEditOrEverything) {
    struct Case {
        int radio;
        FindField field;
        bool SnpFindCriteria::*on;
        std::string SnpFindCriteria::*text;
    };
    const Case cases[] = {
        {RadioService, FindField::ServiceName, &SnpFindCriteria::serviceNameOn, &SnpFindCriteria::serviceName},
        {RadioComPrimitive, FindField::ComPrimitiveName, &SnpFindCriteria::comPrimitiveNameOn,
         &SnpFindCriteria::comPrimitiveName},
        {RadioDtc, FindField::DtcValue, &SnpFindCriteria::dtcValueOn, &SnpFindCriteria::dtcValue},
    };
    for (const Case& test : cases) {
        FindDialogControls controls;
        controls.radio = test.radio;
        type(controls, FindField::Created, "not this");
        type(controls, test.field, "own text");
        SnpFindCriteria unticked = fill(controls);
        expectOnlyKind(unticked, test.radio);
        EXPECT_TRUE(unticked.*test.on) << test.radio;
        EXPECT_EQ(unticked.*test.text, "") << test.radio;

        controls.checked[static_cast<std::size_t>(test.field)] = true;
        SnpFindCriteria ticked = fill(controls);
        EXPECT_TRUE(ticked.*test.on) << test.radio;
        EXPECT_EQ(ticked.*test.text, "own text") << test.radio;
    }
}

TEST(SnpFindDialogLogic, ProcessValueTakesEveryTickedFieldOrTheNameEmpty) {
    FindDialogControls controls;
    controls.radio = RadioProcessValue;
    SnpFindCriteria none = fill(controls);
    expectOnlyKind(none, RadioProcessValue);
    EXPECT_TRUE(none.valueNameOn);
    EXPECT_EQ(none.valueName, "");
    EXPECT_FALSE(none.valueUnitOn);
    EXPECT_FALSE(none.valueTextOn);

    tick(controls, FindField::ValueUnit, "km/h");
    tick(controls, FindField::ValueText, "42");
    SnpFindCriteria two = fill(controls);
    EXPECT_FALSE(two.valueNameOn);
    EXPECT_TRUE(two.valueUnitOn);
    EXPECT_EQ(two.valueUnit, "km/h");
    EXPECT_TRUE(two.valueTextOn);
    EXPECT_EQ(two.valueText, "42");

    tick(controls, FindField::ValueName, "Speed");
    SnpFindCriteria three = fill(controls);
    EXPECT_TRUE(three.valueNameOn && three.valueUnitOn && three.valueTextOn);
    EXPECT_EQ(three.valueName, "Speed");
}

TEST(SnpFindDialogLogic, AnUnknownRadioValueSearchesNothing) {
    FindDialogControls controls;
    controls.radio = 6;
    tick(controls, FindField::ShortName, "x");
    SnpFindCriteria c = fill(controls);
    expectOnlyKind(c, -1);
    EXPECT_FALSE(c.shortNameOn || c.createdOn || c.valueNameOn);
}

} // namespace
