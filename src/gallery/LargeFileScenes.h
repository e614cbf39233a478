// LargeFileScenes: the large file page led through its states on a folder of real files, with a picture of each.
#pragma once

#include <QSet>
#include <QString>
#include <memory>

#include "engine/base/NotificationCenter.h"
#include "gallery/StagedFiles.h"
#include "platform/linux/LinuxFiles.h"
#include "services/foundation/QtMainQueue.h"
#include "ui/kit/dialogs/WindowDialogs.h"
#include "ui/shell/FileIcons.h"

class QModelIndex;
class QTreeView;
class QWidget;

namespace orrinvale {

class DuplicateMainWindowController;
class PictureFolder;
class SampleFolder;
class TCImageWindow;
class UserDefaults;

/// The page is driven as a person does it: through its controls. Main thread only.
class LargeFileScenes final {
public:
    /// All outlive the object. Of the scenes only those that are `wanted` become pictures; an empty set means all.
    LargeFileScenes(const SampleFolder& sample, UserDefaults& defaults, const PictureFolder& pictures,
                    QSet<QString> wanted);
    ~LargeFileScenes();

    /// False when a state did not come about or a picture could not be written; standard error says which.
    bool draw();

private:
    bool drawScan();
    bool drawResult();
    bool drawRemoval();

    bool save(const char* scene, QWidget* shown = nullptr) const;
    bool waitForEnd() const;
    [[nodiscard]] QTreeView& outline() const;
    [[nodiscard]] QModelIndex rowNamed(const char* name) const;
    void tick(const char* name) const;

    const SampleFolder& m_sample;
    const PictureFolder& m_pictures;
    const QSet<QString> m_wanted;
    const LinuxFileSystem m_realFiles;
    StagedFiles m_files{m_realFiles};
    NotificationCenter m_notifications;
    QtMainQueue m_mainQueue;
    WindowDialogs m_dialogs;
    FileIcons m_icons;
    std::unique_ptr<DuplicateMainWindowController> m_controller;
    TCImageWindow* m_window;
};

}  // namespace orrinvale
