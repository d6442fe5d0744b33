#pragma once

#include <string>

namespace ZDTAnalyzer {

// Where the tools write an export until it is complete: a hidden name in the folder of
// the chosen one, so that the last step is a rename. Removed unless committed.
class PartialOutput {
public:
    explicit PartialOutput(std::string finalPath);
    ~PartialOutput();
    PartialOutput(const PartialOutput&) = delete;
    PartialOutput& operator=(const PartialOutput&) = delete;

    const std::string& path() const { return m_path; }
    // Makes the file, so that a folder that takes no file is known before any tool runs.
    // Returns the reason when that failed.
    bool create(std::string& error);
    // Puts the complete output in place. Returns the reason when that failed.
    bool commit(std::string& error);

private:
    std::string m_finalPath;
    std::string m_path;
    bool m_committed = false;
};

} // namespace ZDTAnalyzer
