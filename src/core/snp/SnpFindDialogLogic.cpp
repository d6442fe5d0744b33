#include "snp/SnpFindDialogLogic.h"

namespace ZDTAnalyzer::Find::SNP {

namespace {

// Sets the flag and stores the edit's text when the box is ticked; tells whether it was.
bool takeIfChecked(const FindDialogControls& controls, FindField field, bool& on, std::string& text) {
    if (!controls.isChecked(field))
        return false;
    on = true;
    text = controls.text(field);
    return true;
}

// A group of one box searches its field either way: with the edit's text when ticked,
// with the empty text (matching every such row) when not.
void takeSingle(const FindDialogControls& controls, FindField field, bool& on, std::string& text) {
    on = true;
    text = controls.isChecked(field) ? controls.text(field) : std::string();
}

} // namespace

int radioOf(FindField field) {
    switch (field) {
    case FindField::ShortName:
    case FindField::LongName:
    case FindField::Created:
        return RadioSnapShot;
    case FindField::LinkName:
        return RadioLogicalLink;
    case FindField::ServiceName:
        return RadioService;
    case FindField::ComPrimitiveName:
        return RadioComPrimitive;
    case FindField::DtcValue:
        return RadioDtc;
    case FindField::ValueName:
    case FindField::ValueUnit:
    case FindField::ValueText:
        return RadioProcessValue;
    }
    return -1;
}

FindDialogEnabling enablingOf(const FindDialogControls& controls) {
    FindDialogEnabling enabling;
    for (std::size_t index = 0; index < FindFieldCount; ++index) {
        const bool chosenGroup = radioOf(static_cast<FindField>(index)) == controls.radio;
        enabling.checkBoxEnabled[index] = chosenGroup;
        enabling.editEnabled[index] = chosenGroup && controls.checked[index];
    }
    return enabling;
}

void fillCriteria(const FindDialogControls& controls, SnpFindCriteria& criteria) {
    switch (controls.radio) {
    case RadioSnapShot: {
        criteria.searchSnapShot = true;
        bool any = takeIfChecked(controls, FindField::ShortName, criteria.shortNameOn, criteria.shortName);
        any = takeIfChecked(controls, FindField::LongName, criteria.longNameOn, criteria.longName) || any;
        any = takeIfChecked(controls, FindField::Created, criteria.createdOn, criteria.created) || any;
        if (!any) {
            criteria.created.clear();
            criteria.createdOn = true;
        }
        break;
    }
    case RadioLogicalLink:
        criteria.searchLogicalLink = true;
        criteria.linkNameOn = true;
        // The link row reads the (then disabled) "Created" edit; its own edit has no say.
        criteria.linkName = controls.isChecked(FindField::LinkName) ? controls.text(FindField::Created) : std::string();
        break;
    case RadioService:
        criteria.searchService = true;
        takeSingle(controls, FindField::ServiceName, criteria.serviceNameOn, criteria.serviceName);
        break;
    case RadioComPrimitive:
        criteria.searchComPrimitive = true;
        takeSingle(controls, FindField::ComPrimitiveName, criteria.comPrimitiveNameOn, criteria.comPrimitiveName);
        break;
    case RadioDtc:
        criteria.searchDtc = true;
        takeSingle(controls, FindField::DtcValue, criteria.dtcValueOn, criteria.dtcValue);
        break;
    case RadioProcessValue: {
        criteria.searchProcessValue = true;
        bool any = takeIfChecked(controls, FindField::ValueName, criteria.valueNameOn, criteria.valueName);
        any = takeIfChecked(controls, FindField::ValueUnit, criteria.valueUnitOn, criteria.valueUnit) || any;
        any = takeIfChecked(controls, FindField::ValueText, criteria.valueTextOn, criteria.valueText) || any;
        if (!any) {
            criteria.valueName.clear();
            criteria.valueNameOn = true;
        }
        break;
    }
    default:
        break;
    }
}

} // namespace ZDTAnalyzer::Find::SNP
