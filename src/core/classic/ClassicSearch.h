#pragma once

#include "common/RowTypes.h"
#include "common/UserMessage.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class CAnalyzerDoc;

// The criteria of the classic find dialog, as its controls hold them.
struct ClassicFindCriteria {
    bool useTime = false;
    std::string minTime;
    std::string maxTime;
    bool useData = false;
    std::string dataText;
    bool useIdentifier = false;
    std::string identifierText;
    bool errorPassive = false;
    bool warning96 = false;
    bool errorActive = false;
    bool receivedCorruptedBytes = false;
    bool busOff = false;
    bool bufferOverflow = false;
    bool errorFrame = false;
    bool timerOverflow = false;
};

constexpr std::size_t MaxTimeTextLength = 10;
constexpr std::size_t MaxDataTextLength = 23;
constexpr std::size_t MaxIdentifierTextLength = 8;

// Which controls the dialog enables for a trace.
struct FindDialogEnabling {
    bool time = true; // the time check and both bounds
    bool errorPassive = false;
    bool warning96 = false;
    bool errorActive = false;
    bool receivedCorruptedBytes = false;
    bool busOff = false;
    bool bufferOverflow = false;
    bool errorFrame = false;
    bool timerOverflow = false;
};
FindDialogEnabling FindEnabling(std::int32_t schemaNumber, bool class0, bool class4, bool class8);
// Clears what a disabled control cannot hold checked.
void ApplyEnabling(ClassicFindCriteria& criteria, const FindDialogEnabling& enabling);

// The refusal of the last character typed into the data or identifier edit: the
// message, or nothing when the character is accepted.
std::optional<std::string> HexInputRefusal(const std::string& text, bool identifierEdit);
// Types `text` into an edit character by character: refused characters and those past
// `limit` are dropped; refusal messages are collected.
std::string TypeIntoHexEdit(const std::string& text, bool identifierEdit, std::size_t limit,
                            std::vector<std::string>* refusals = nullptr);

// The OK step of the dialog.
struct FindOkResult {
    bool staysOpen = false;   // the time bounds are the wrong way round
    bool badDataForm = false; // ends in "Nothing Found!"
    bool hasCriteria = false;
    std::string message; // the box to show, if any
};
FindOkResult ValidateFindCriteria(const ClassicFindCriteria& criteria);
bool IsDataFormValid(const std::string& dataText);
// The search text as it is looked for: blanks removed, each "," a blank.
std::string DataPattern(const std::string& dataText);

// The scan over every visible row: the rows that match, in row order. It reads rows
// through the document's own reader and changes nothing, so it may run on another thread
// while the list formats rows through its own. False when `progress` stopped it.
bool FindClassicRows(CAnalyzerDoc& doc, const ClassicFindCriteria& criteria, std::vector<zdt::RowIndex>& hits,
                     zdt::ProgressSink* progress = nullptr);
// The hits become the document's find results; with `markAll` the bookmarks are cleared
// first and each hit toggles one.
void ApplyClassicFindResults(CAnalyzerDoc& doc, const std::vector<zdt::RowIndex>& hits, bool markAll);
// Both in a row; the rows found before a stop count. Returns false when `progress` stopped it.
bool ScanClassicTrace(CAnalyzerDoc& doc, const ClassicFindCriteria& criteria, bool markAll,
                      zdt::ProgressSink* progress = nullptr);

constexpr const char* NothingFoundText = "Nothing Found!";
constexpr const char* SearchTitle = "Search";
constexpr const char* WrapToBeginQuestion =
    "Analyzer has reached the end of the document.\n Do you want to continue searching at the begining?";
constexpr const char* WrapToEndQuestion =
    "ZDT has reached the top of the document.\n Do you want to continue searching at the end?";

// Find Next / Find Previous over the result list. The wrap question goes to `messages`
// (no sink: the answer is No). Returns the row to select, or -1.
zdt::RowIndex FindNext(const std::vector<zdt::RowIndex>& results, zdt::RowIndex selectedRow,
                       zdt::MessageSink* messages);
zdt::RowIndex FindPrevious(const std::vector<zdt::RowIndex>& results, zdt::RowIndex selectedRow,
                           zdt::MessageSink* messages);
