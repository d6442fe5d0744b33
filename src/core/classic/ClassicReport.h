#pragma once

#include "classic/ClassicTime.h"
#include "common/UserMessage.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

class CAnalyzerDoc;

// The head of the ".sbt" report for a brand edition (1 Standard, 2 Partner, 4 Customer).
std::string ReportHead(const CAnalyzerDoc& doc, int edition);

// The padded formatter of the report and of printing: every column padded so the
// text lines up. Each line ends with a line feed.
class ClassicReportFormatter {
public:
    explicit ClassicReportFormatter(CAnalyzerDoc& doc) : m_doc(doc), m_reader(doc) {}
    // Empty when the record cannot be read.
    std::string FormatLine(zdt::RowIndex row);

private:
    CAnalyzerDoc& m_doc;
    DocumentRecordReader m_reader;
    PreviousTimedRecordFinder m_previousTimed;
};

// Writes the whole report of the visible rows. False when the file cannot be opened
// (no message, as the export is silent about it) or when `progress` stops it.
bool WriteSbtReport(CAnalyzerDoc& doc, const std::string& path, int edition, zdt::ProgressSink* progress = nullptr);

// The session information as the dialog shows it: label and value, in dialog order.
std::vector<std::pair<std::string, std::string>> SessionInfoFields(const CAnalyzerDoc& doc, int edition);
