#pragma once

#include "xpvt/XpvtFindCriteria.h"

#include <string>

// What the four pages of the 7.01 find sheet hold and decide. The sheet and its pages
// are made anew for every search, so every page starts blank.
namespace ZDTAnalyzer::Find::XPVT_7_01 {

struct ComPrimitivePage {
    bool findPressed = false;
    bool all = false;
    bool nameOn = false;
    std::string name;
};

struct RequestPage {
    bool findPressed = false;
    bool all = false;
    bool pduOn = false;
    std::string pdu;
    bool parameterOn = false;
    bool byName = false;
    std::string parameterName;
    bool byValue = false;
    std::string parameterValue;
};

struct ResponsePage : RequestPage {
    bool firstActivation = true;
};

struct ResultPage : RequestPage {
    bool errorOn = false;
    bool byCode = false;
    std::string code;
    bool bySeverity = false;
    std::string severity;
    bool firstActivation = true;
};

struct FindSheetPages {
    ComPrimitivePage comPrimitive;
    RequestPage request;
    ResponsePage response;
    ResultPage result;
};

// Which controls of a page can be used; the "All" box always can.
struct ComPrimitiveEnabling {
    bool nameEdit = true;
};

struct RequestEnabling {
    bool pdu = true;
    bool pduEdit = true;
    bool parameter = true;
    bool byName = false;
    bool parameterNameEdit = false;
    bool byValue = false;
    bool parameterValueEdit = false;
};

struct ResultEnabling : RequestEnabling {
    bool error = true;
    bool byCode = false;
    bool codeEdit = false;
    bool bySeverity = false;
    bool severityEdit = false;
};

// The check boxes of the Result page's group of three.
enum class ResultGroupBox { Pdu, Parameter, Error };

ComPrimitiveEnabling enablingOf(const ComPrimitivePage& page);
RequestEnabling enablingOf(const RequestPage& page);
ResultEnabling enablingOf(const ResultPage& page);

// Keeps one box of each pair set: "PDU" when neither "PDU" nor "Parameter" is, "Name"
// when neither "Name" nor "Value" is.
void settlePairs(RequestPage& page);
// The Result page: one of "PDU", "Parameter" and "Error" stays set ("PDU" by default),
// as do one of "Name"/"Value" and one of "Code"/"Severity".
void settlePairs(ResultPage& page);

// The Response page's first activation starts it on a PDU search by name.
void activate(ResponsePage& page);

// A click on one of the group of three, after the box toggled: "PDU" and "Parameter"
// clear "Error", "Error" clears the other two. The pairs are settled afterwards.
void clickGroupBox(ResultPage& page, ResultGroupBox box);

// "Find" on the ComPrimitive page: the name takes part exactly when "All" is not set.
void collect(ComPrimitivePage& page);

// The first page with findPressed, in page order, writes `criteria`; false (and the
// record untouched) when none has it. A write only sets flags and stores texts, so the
// conditions of earlier searches stay in the record.
bool writeCriteria(const FindSheetPages& pages, XpvtFindCriteria701& criteria);

} // namespace ZDTAnalyzer::Find::XPVT_7_01
