#include "xpvt/FindSheet701Logic.h"

namespace ZDTAnalyzer::Find::XPVT_7_01 {

namespace {

// "All" disables "PDU" and "Parameter", and with them everything that hangs on them.
RequestEnabling requestSideEnabling(const RequestPage& page) {
    RequestEnabling enabling;
    enabling.pdu = !page.all;
    enabling.pduEdit = enabling.pdu && page.pduOn;
    enabling.parameter = !page.all;
    enabling.byName = enabling.parameter && page.parameterOn;
    enabling.byValue = enabling.byName;
    enabling.parameterNameEdit = enabling.byName && page.byName;
    enabling.parameterValueEdit = enabling.byValue && page.byValue;
    return enabling;
}

void settleNameOrValue(RequestPage& page) {
    if (!page.byName && !page.byValue)
        page.byName = true;
}

// The side a Request or Response page writes: a PDU, else a parameter by name or value.
void writeRequestSide(const RequestPage& page, bool& searchSide, XpvtFindCriteria701& criteria) {
    searchSide = true;
    if (page.all) {
        criteria.matchAll = true;
    } else if (page.pduOn) {
        criteria.pduEnabled = true;
        criteria.pduText = page.pdu;
    } else {
        criteria.parameterEnabled = true;
        if (page.byName) {
            criteria.matchByName = true;
            criteria.nameText = page.parameterName;
        } else {
            criteria.parameterValueEnabled = true;
            criteria.parameterText = page.parameterValue;
        }
    }
}

void writeComPrimitive(const ComPrimitivePage& page, XpvtFindCriteria701& criteria) {
    criteria.searchPrimitives = true;
    if (page.all) {
        criteria.matchAll = true;
    } else if (page.nameOn) {
        criteria.matchByName = true;
        criteria.nameText = page.name;
    }
}

// The parameter branch stores the "Name" edit's text as the value text too; the "Value"
// edit of this page is never read.
void writeResult(const ResultPage& page, XpvtFindCriteria701& criteria) {
    criteria.searchBothSides = true;
    if (page.all) {
        criteria.matchAll = true;
    } else if (page.pduOn) {
        criteria.pduEnabled = true;
        criteria.pduText = page.pdu;
    } else if (page.parameterOn) {
        criteria.parameterEnabled = true;
        if (page.byName) {
            criteria.matchByName = true;
            criteria.nameText = page.parameterName;
        }
        criteria.parameterValueEnabled = true;
        criteria.parameterText = page.parameterName;
    } else {
        criteria.errorEnabled = true;
        if (page.byCode) {
            criteria.errorByCode = true;
            criteria.errorCodeText = page.code;
        } else {
            criteria.errorBySeverity = true;
            criteria.errorSeverityText = page.severity;
        }
    }
}

} // namespace

ComPrimitiveEnabling enablingOf(const ComPrimitivePage& page) {
    return ComPrimitiveEnabling{!page.all};
}

RequestEnabling enablingOf(const RequestPage& page) {
    return requestSideEnabling(page);
}

ResultEnabling enablingOf(const ResultPage& page) {
    ResultEnabling enabling;
    static_cast<RequestEnabling&>(enabling) = requestSideEnabling(page);
    enabling.error = !page.all;
    enabling.byCode = enabling.error && page.errorOn;
    enabling.bySeverity = enabling.byCode;
    enabling.codeEdit = enabling.byCode && page.byCode;
    enabling.severityEdit = enabling.bySeverity && page.bySeverity;
    return enabling;
}

void settlePairs(RequestPage& page) {
    if (!page.pduOn && !page.parameterOn)
        page.pduOn = true;
    settleNameOrValue(page);
}

void settlePairs(ResultPage& page) {
    if (!page.pduOn && !page.parameterOn && !page.errorOn)
        page.pduOn = true;
    settleNameOrValue(page);
    if (!page.byCode && !page.bySeverity)
        page.byCode = true;
}

void activate(ResponsePage& page) {
    if (!page.firstActivation)
        return;
    page.pduOn = true;
    page.byName = true;
    page.all = false;
    page.parameterOn = false;
    page.byValue = false;
    page.firstActivation = false;
}

void clickGroupBox(ResultPage& page, ResultGroupBox box) {
    if (box == ResultGroupBox::Error) {
        page.pduOn = false;
        page.parameterOn = false;
    } else {
        page.errorOn = false;
    }
    settlePairs(page);
}

void collect(ComPrimitivePage& page) {
    page.nameOn = !page.all;
    page.findPressed = true;
}

bool writeCriteria(const FindSheetPages& pages, XpvtFindCriteria701& criteria) {
    if (pages.comPrimitive.findPressed)
        writeComPrimitive(pages.comPrimitive, criteria);
    else if (pages.request.findPressed)
        writeRequestSide(pages.request, criteria.searchRequests, criteria);
    else if (pages.response.findPressed)
        writeRequestSide(pages.response, criteria.searchResponses, criteria);
    else if (pages.result.findPressed)
        writeResult(pages.result, criteria);
    else
        return false;
    return true;
}

} // namespace ZDTAnalyzer::Find::XPVT_7_01
