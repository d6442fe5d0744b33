#pragma once

#include "common/UserMessage.h"
#include "xmldoc/BaseDoc.h"
#include "xpvt/ConsumerUserInterface.h"
#include "xpvt/XpvtFindCriteria.h"

#include <atomic>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace ZDTAnalyzer {

// The document of a process value trace (.xpvt). One parse at open turns the file into
// rows; the schema (7.01 or 7.02) is learnt from the header while the file is read.
// A search parses the file again by its path. Nothing is ever written into the file.
class XpvtDoc : public BaseDoc {
public:
    // The session header, filled at the end of the file's Description.
    class Description : public BaseDoc::Description {
    public:
        // Assigns to the first of the twelve fields whose name equals `name`; any other
        // name is ignored.
        void setField(std::string name, std::string value) override;

        std::string Title;
        std::string Schema;
        std::string ProductVersion;
        std::string Date;
        std::string Time;
        std::string Author;
        std::string Comment;
        std::string Project;
        std::string VehicleInformationTable;
        std::string DateTime;
        std::string LogicalLink;
        std::string DatabaseAccessKey;
    };

    static constexpr const char* Schema702 = "7,02";
    static constexpr const char* OpenFailedText = "Fatal unknown error occurred while opening document.";
    static constexpr const char* SearchFailedText = "Fatal unknown error occurred while searching the document.";
    static constexpr const char* FilterFailedText = "Filter did not succeed.";

    XpvtDoc();
    ~XpvtDoc() override;

    // Parses the whole file into rows kept in a swap file in `swapDirectory`. On any
    // failure the message goes to `messages` and the result is false: the caller drops
    // the document (and its swap file). A cancel through `progress` is a failed open
    // without a message.
    bool OnOpenDocument(const std::string& path, const std::string& swapDirectory, zdt::MessageSink* messages,
                        zdt::ProgressSink* progress = nullptr);

    Description* getDescription() override { return &m_description; }
    const Description& description() const { return m_description; }
    const std::string& pathName() const { return m_pathName; }

    // Schema 7.02 exactly when the header's Schema is "7,02". Published once the header
    // ended, so that the windows may ask while the read still writes the description.
    bool is702() const { return m_schemaIs702.load(std::memory_order_acquire); }

    // Switches the running open parse to the 7.02 tables when the header says 7.02.
    void installSchemaTables() override;

    // The criteria the find sheets edit; they live as long as the document.
    XpvtFindCriteria701& findCriteria701() { return m_findCriteria701; }
    XpvtFindCriteria702& findCriteria702() { return m_findCriteria702; }

    // One search over the file with the stored criteria of the document's schema; the
    // last search's marks go first. Returns false after a failure (its message went to
    // `messages`) or a cancel; marks made before either stay.
    bool find(zdt::MessageSink* messages, zdt::ProgressSink* progress = nullptr);

    // Called by the row pass for each complete row.
    void appendXpvtRow(std::string_view row);

private:
    Xpvt::UserInterfaceParser m_parser;
    Xpvt::UserInterfaceContext m_context;
    Xpvt::ConsumerUserInterface m_consumer;
    Description m_description;
    std::atomic<bool> m_schemaIs702{false};
    XpvtFindCriteria701 m_findCriteria701;
    XpvtFindCriteria702 m_findCriteria702;
    std::string m_pathName;
};

} // namespace ZDTAnalyzer
