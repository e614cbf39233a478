// ComputerReport: the lines about the machine and its volumes, for the head of the log and for
// whoever reports a fault.
#pragma once

#include <string>
#include <vector>

#include "platform/systemValues.h"
#include "platform/volumes.h"

namespace orrinvale {

/// Whose names a report keeps to itself.
struct ReportNames {
    std::string home;  ///< absolute path
    std::string user;
    std::string host;
};

/// The lines of the log, with all names. Asks all volumes, and so waits as long as `volumes` does;
/// one that does not answer is left out. Any thread.
[[nodiscard]] std::vector<std::string> computerReport(const SystemValues& system, Volumes& volumes);

/// The same for strangers: instead of home, user, host, volumes and servers there are words that
/// mean nothing: HOME, USER, HOST, "VOLUME 1". Of the places of volumes only folders stay whose
/// names every system has. `further` lines stand in front, and are gone through too.
[[nodiscard]] std::vector<std::string> computerReportWithoutNames(const SystemValues& system,
                                                                  Volumes& volumes,
                                                                  const ReportNames& names,
                                                                  std::vector<std::string> further);

/// The line with each of the names replaced, where it stands as a word of its own.
[[nodiscard]] std::string withoutNames(std::string line, const ReportNames& names);

}  // namespace orrinvale
