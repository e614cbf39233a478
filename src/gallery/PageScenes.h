// PageScenes: the main window on the sample folder, for the pictures of a page. DuplicateScenes and
// LargeFileScenes lead a page.
#pragma once

#include <QSet>
#include <QString>
#include <memory>

#include "gallery/PageWorkings.h"
#include "gallery/StagedFiles.h"
#include "platform/linux/LinuxFiles.h"
#include "ui/shell/ApplicationMenu.h"

class QWidget;

namespace orrinvale {

class DuplicateMainWindowController;
class PictureFolder;
class SampleFolder;
class TCImageWindow;
class UserDefaults;

/// Main thread only.
class PageScenes {
public:
    PageScenes(const PageScenes&) = delete;
    PageScenes& operator=(const PageScenes&) = delete;

protected:
    /// All outlive the object. Of the scenes only those that are `wanted` become pictures; an empty
    /// set means all. The name of each picture begins with the page's.
    PageScenes(const SampleFolder& sample, UserDefaults& defaults, const PictureFolder& pictures,
               QSet<QString> wanted, QString page);
    ~PageScenes();

    /// A picture of the window, or of what is `shown` of it.
    bool save(const char* scene, QWidget* shown = nullptr) const;

    const SampleFolder& m_sample;
    const PictureFolder& m_pictures;
    const QSet<QString> m_wanted;
    const QString m_page;
    const LinuxFileSystem m_realFiles;
    StagedFiles m_files{m_realFiles};
    PageWorkings m_workings;
    ApplicationMenu m_menu;
    std::unique_ptr<DuplicateMainWindowController> m_controller;
    TCImageWindow* m_window;
};

}  // namespace orrinvale
