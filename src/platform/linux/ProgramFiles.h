// ProgramFiles: what on this machine is the program itself, and so is never removed by it.
#pragma once

#include <string>
#include <vector>

namespace orrinvale {

/// The path of the program that runs; empty where the system does not tell.
[[nodiscard]] std::string ownExecutable();

/// The program's own files: its executables, and where it is installed its folders of data and the
/// files by which the desktop knows it. Absolute paths, for ProtectedPlaces. Of other files beside
/// the executable none, since a person may have put it among files of her own.
[[nodiscard]] std::vector<std::string> programFiles();

/// The same for an executable at this path.
[[nodiscard]] std::vector<std::string> programFilesAround(const std::string& executable);

}  // namespace orrinvale
