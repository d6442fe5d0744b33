#pragma once

#include "common/UserMessage.h"
#include "snp/ConsumerUserInterface.h"
#include "snp/SnpFindCriteria.h"
#include "xmldoc/BaseDoc.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace ZDTAnalyzer {

// The document of a snapshot file: one parse at open turns the file into rows; a
// search parses the file again by its path. Nothing is ever written into the file.
class SnpDoc : public BaseDoc {
public:
    // Keeps the one session fact of a snapshot list, "DateTime".
    class Description : public BaseDoc::Description {
    public:
        void setField(std::string name, std::string value) override;
        const std::string& dateTime() const { return m_dateTime; }

    private:
        std::string m_dateTime;
    };

    // What the session information dialog shows.
    struct SessionInformationDialog {
        static constexpr const char* FileNameLabel = "File name:";
        static constexpr const char* DateLabel = "Date:";
        static constexpr const char* TimeLabel = "Time:";
        static constexpr const char* AuthorLabel = "Author:";
        static constexpr const char* Author = "ZDT V7";

        std::string fileName;
        std::string time;
        std::string date;
    };

    static constexpr const char* OpenFailedText = "Fatal unknown error occurred while opening document.";
    static constexpr const char* SearchFailedText = "Fatal unknown error occurred while searching the document.";
    static constexpr const char* SessionInformationFailedText = "Fatal unknown error occured.";

    SnpDoc();
    ~SnpDoc() override;

    // Parses the whole file into rows kept in a swap file in `swapDirectory`. On any
    // failure the message goes to `messages` and the result is false: the caller drops
    // the document. A cancel through `progress` is a failed open without a message.
    bool OnOpenDocument(const std::string& path, const std::string& swapDirectory, zdt::MessageSink* messages,
                        zdt::ProgressSink* progress = nullptr);

    Description* getDescription() override { return &m_description; }
    const std::string& pathName() const { return m_pathName; }

    // The session information: the description split at its first comma into time and
    // date. Calls `show` with it; a failure shows the fixed sentence instead.
    SessionInformationDialog sessionInformation() const;
    void showSessionInformation(zdt::MessageSink* messages,
                                const std::function<void(const SessionInformationDialog&)>& show) const;

    // One search over the file with `criteria`; the last search's marks go first.
    // Returns false after a failure, whose message went to `messages`; marks made before
    // it stay. Views are told only after a search that ran to its end.
    bool find(const SnpFindCriteria& criteria, zdt::MessageSink* messages, zdt::ProgressSink* progress = nullptr);

    // Called by the row pass for each complete row.
    void appendSnapshotRow(std::string_view row);

private:
    Snp::UserInterfaceParser m_parser;
    ConsumerContext<Snp::ConsumerUserInterface> m_context;
    Snp::ConsumerUserInterface m_consumer;
    Description m_description;
    std::string m_pathName;
};

} // namespace ZDTAnalyzer
