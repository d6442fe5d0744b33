#pragma once

#include <string>

namespace ZDTAnalyzer {

// The 7.01 search conditions. The document keeps one record for its life and the find
// sheet only ever sets flags, so conditions of earlier searches add up.
struct XpvtFindCriteria701 {
    bool searchPrimitives = false;
    bool searchRequests = false;
    bool searchResponses = false;
    bool searchBothSides = false;
    bool matchAll = false;
    bool matchByName = false;
    std::string nameText;
    bool pduEnabled = false;
    std::string pduText;
    bool parameterEnabled = false;
    bool parameterValueEnabled = false;
    std::string parameterText;
    bool errorEnabled = false;
    bool errorByCode = false;
    std::string errorCodeText;
    bool errorBySeverity = false;
    std::string errorSeverityText;
};

// The 7.02 search conditions: one section per page of the find sheet. A text takes part
// when its "On" flag is set; an empty text is found in every slot.
struct XpvtFindCriteria702 {
    struct LogicalLinkSection {
        bool minTimeOn = true;
        std::string minTime;
        bool maxTimeOn = true;
        std::string maxTime;
        bool linkOn = true;
        std::string link;
        bool locationOn = true;
        std::string location;
        bool open = false;
        bool close = false;
        bool openAndClose = true;
        bool all = false;
        bool findPressed = false;
    };
    struct RequestSection {
        bool nameOn = true;
        std::string name;
        bool messageOn = true;
        std::string message;
        bool minTimeOn = true;
        std::string minTime;
        bool maxTimeOn = true;
        std::string maxTime;
        bool parameterEnabled = false;
        bool paramNameOn = true;
        std::string paramName;
        bool dataTypeOn = true;
        std::string dataType;
        bool valueOn = true;
        std::string value;
        bool rangeOn = true;
        std::string range;
        bool all = false;
        bool findPressed = false;
    };
    struct ResponseSection {
        bool nameOn = true;
        std::string name;
        bool addressOn = true;
        std::string address;
        bool locationOn = true;
        std::string location;
        bool messageOn = true;
        std::string message;
        bool minTimeOn = true;
        std::string minTime;
        bool maxTimeOn = true;
        std::string maxTime;
        bool parameterEnabled = false;
        bool paramNameOn = true;
        std::string paramName;
        bool dataTypeOn = true;
        std::string dataType;
        bool valueOn = true;
        std::string value;
        bool rangeOn = true;
        std::string range;
        bool all = false;
        bool findPressed = false;
    };
    struct PrimitiveSection {
        bool linkOn = true;
        std::string link;
        bool locationOn = true;
        std::string location;
        bool parentOn = true;
        std::string parent;
        bool nameOn = true;
        std::string name;
        bool primitiveTypeOn = true;
        std::string primitiveType;
        bool idOn = true;
        std::string id;
        bool minTimeOn = true;
        std::string minTime;
        bool maxTimeOn = true;
        std::string maxTime;
        bool start = false;
        bool finish = false;
        bool startOrFinish = true;
        bool all = false;
        bool findPressed = false;
    };
    struct ResultSection {
        bool primitiveTypeOn = true;
        std::string primitiveType;
        bool primitiveIdOn = true;
        std::string primitiveId;
        bool linkOn = true;
        std::string link;
        bool parentOn = true;
        std::string parent;
        bool all = false;
        bool findPressed = false;
    };
    struct ParameterSection {
        bool nameOn = true;
        std::string name;
        bool dataTypeOn = true;
        std::string dataType;
        bool valueOn = true;
        std::string value;
        bool rangeOn = true;
        std::string range;
        bool request = false;
        bool response = false;
        bool requestOrResponse = true;
        bool all = false;
        bool findPressed = false;
    };

    // Page order of the find sheet.
    enum Page : int {
        LogicalLinkPage = 0,
        RequestPage,
        ResponsePage,
        PrimitivePage,
        ResultPage,
        ParameterPage,
    };

    LogicalLinkSection logicalLinkSection;
    RequestSection requestSection;
    ResponseSection responseSection;
    PrimitiveSection primitiveSection;
    ResultSection resultSection;
    ParameterSection parameterSection;
    // The page the next run of the sheet opens on.
    int activePage = 0;
    bool reserved = false;
};

} // namespace ZDTAnalyzer
