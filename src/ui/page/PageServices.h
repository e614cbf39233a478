// PageServices: what every page works with, put together once where the program is.
#pragma once

#include <QIcon>
#include <QString>
#include <functional>
#include <string>

namespace orrinvale {

class Dialogs;
class FileSystem;
class MainQueue;
class NotificationCenter;
class UserDefaults;
struct IconRequest;

/// Nothing of it is owned; all of it outlives the pages.
struct PageServices {
    const FileSystem* files = nullptr;
    NotificationCenter* notifications = nullptr;
    UserDefaults* defaults = nullptr;
    Dialogs* dialogs = nullptr;
    MainQueue* mainQueue = nullptr;
    std::string stateFolder;  ///< where removals keep their journal; empty: nothing is set aside
    std::function<QIcon(const IconRequest&)> icons;
    std::function<void(const std::string& path)>
        reveal;  ///< shows the entry in the desktop's file manager
    std::function<void(const QString& address)> openAddress;  ///< opens a web page
};

}  // namespace orrinvale
