#pragma once

#include <string>

namespace zdt {

// The directory that holds the CAN filter (.flt) files of a classic trace, with a
// trailing "/". The settings file "Config/zdt7.ini" two levels above `programDir`
// names the project path and the trace path. A trace that lies in a folder named like
// a project, which has its "<name>.prj" file, uses "<ProjectPath>/<name>/flt/";
// every other trace shares "<TracePath>/CommonCANFilters/", created when missing.
// Without a usable trace path (none set, relative, or a missing folder that cannot be
// made) the common folder is the program's own, resolved like its temporary root:
// ResolveAnalyzerDataDir(ResolveAnalyzerBinaryDir(programDir), "CommonCANFilters"), also created.
std::string FindFilterDirectory(const std::string& programDir, const std::string& tracePath);

// A path as the settings file writes it: no double quotes or semicolons, doubled
// backslashes made single, backslashes turned into "/".
std::string CleanSettingsPath(const std::string& raw);

} // namespace zdt
