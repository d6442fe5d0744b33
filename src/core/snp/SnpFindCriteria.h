#pragma once

#include <string>

namespace ZDTAnalyzer {

// What the snapshot find dialog asks for. Each "On" flag enables the text beside it;
// the search* flags enable a kind of row. Everything starts off and empty.
struct SnpFindCriteria {
    bool searchSnapShot = false;
    bool createdOn = false;
    std::string created;
    bool longNameOn = false;
    std::string longName;
    bool shortNameOn = false;
    std::string shortName;
    bool searchLogicalLink = false;
    bool linkNameOn = false;
    std::string linkName;
    bool searchService = false;
    bool serviceNameOn = false;
    std::string serviceName;
    bool searchComPrimitive = false;
    bool comPrimitiveNameOn = false;
    std::string comPrimitiveName;
    bool searchDtc = false;
    bool dtcValueOn = false;
    std::string dtcValue;
    bool searchProcessValue = false;
    bool valueNameOn = false;
    std::string valueName;
    bool valueUnitOn = false;
    std::string valueUnit;
    bool valueTextOn = false;
    std::string valueText;
};

} // namespace ZDTAnalyzer
