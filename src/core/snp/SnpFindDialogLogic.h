#pragma once

#include "snp/SnpFindCriteria.h"

#include <array>
#include <cstddef>
#include <string>

namespace ZDTAnalyzer::Find::SNP {

// The kinds of row the find dialog offers, by their radio value.
enum RadioValue : int {
    RadioSnapShot = 0,
    RadioLogicalLink = 1,
    RadioService = 2,
    RadioComPrimitive = 3,
    RadioDtc = 4,
    RadioProcessValue = 5,
};

// Every check box with its edit, group by group in the dialog's order.
enum class FindField : std::size_t {
    ShortName,
    LongName,
    Created,
    LinkName,
    ServiceName,
    ComPrimitiveName,
    DtcValue,
    ValueName,
    ValueUnit,
    ValueText,
};
inline constexpr std::size_t FindFieldCount = 10;

// What the dialog's controls hold; it starts blank with the first radio chosen.
struct FindDialogControls {
    int radio = RadioSnapShot;
    std::array<bool, FindFieldCount> checked{};
    std::array<std::string, FindFieldCount> texts;

    bool isChecked(FindField field) const { return checked[static_cast<std::size_t>(field)]; }
    const std::string& text(FindField field) const { return texts[static_cast<std::size_t>(field)]; }
};

struct FindDialogEnabling {
    std::array<bool, FindFieldCount> checkBoxEnabled{};
    std::array<bool, FindFieldCount> editEnabled{};
};

// The radio value of the group a field belongs to.
int radioOf(FindField field);

// Only the chosen group's check boxes are enabled, and of its edits those whose box is
// ticked. Boxes of other groups keep their marks but are disabled.
FindDialogEnabling enablingOf(const FindDialogControls& controls);

// "Find": sets the chosen kind of row and its fields and leaves the other groups as
// they are. A kind with no ticked box still searches, through one field with an empty
// text. The link's name is taken from the snapshot's "Created" edit, not its own.
void fillCriteria(const FindDialogControls& controls, SnpFindCriteria& criteria);

} // namespace ZDTAnalyzer::Find::SNP
