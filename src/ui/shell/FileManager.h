// FileManager: what the desktop does for us with files and addresses.
#pragma once

#include <QString>
#include <string>

namespace orrinvale {

/// Shows the entry in the desktop's file manager, selected where it knows how (org.freedesktop.FileManager1), else the folder
/// that it lies in. Returns at once. Exact bytes. Main thread only.
void revealInFileManager(const std::string& path);

/// Opens an https address in the desktop's browser; any other address does nothing. Returns at once. Main thread only.
void openWebPage(const QString& address);

}  // namespace orrinvale
