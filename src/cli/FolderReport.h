// What a duplicate search has found of whole folders, in the three forms of its result.
#pragma once

#include <string>
#include <string_view>

#include "cli/DuplicatesReport.h"
#include "cli/Output.h"

namespace orrinvale::cli {

/// What turns a terminal's colours on and off; empty for plain text.
struct ReportColours {
    std::string_view strong;
    std::string_view faint;
    std::string_view plain;
};

/// The report has folders.
void appendFolders(std::string& json, const DuplicatesReport& report);
/// Of all folders in groups, or with rules of those that would go.
void printFolderPaths(Output& out, const DuplicatesReport& report);
void printFolders(Output& out, const DuplicatesReport& report, const ReportColours& colours);

}  // namespace orrinvale::cli
