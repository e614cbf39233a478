// FileManager: what the desktop does for us with files and addresses.
#pragma once

#include <QString>
#include <functional>
#include <string>
#include <vector>

namespace orrinvale {

/// Shows the entry in the desktop's file manager, selected where it knows how
/// (org.freedesktop.FileManager1), else the folder that it lies in. Returns at once. Exact bytes.
/// Main thread only.
void revealInFileManager(const std::string& path);

/// Opens the folder or the file itself. False for what is no absolute path; whether it can be
/// reached is left to the desktop, since a dead server would hold this thread up. Returns at once.
/// Exact bytes. Main thread only.
[[nodiscard]] bool openInFileManager(const std::string& path);

/// Runs this on the main thread, later, where nothing could be started to open a path.
void tellOfFailedOpening(std::function<void(const std::string& path)> handler);

/// Starts a program with these arguments, in the home folder, and lets go of it; a failure is
/// logged. Returns at once. Exact bytes. Main thread only.
void startCommand(const std::vector<std::string>& words);

/// The user guide, which lies beside the program (../share/orrinvale/guide). Empty where it is not
/// installed.
[[nodiscard]] QString userGuidePath();

/// Opens the user guide in the desktop's browser, and returns at once. Runs `failed` later when it
/// is not there or nothing shows it. Main thread only.
void openUserGuide(std::function<void()> failed);

/// Opens an https address in the desktop's browser; any other address does nothing. Returns at
/// once. Main thread only.
void openWebPage(const QString& address);

}  // namespace orrinvale
