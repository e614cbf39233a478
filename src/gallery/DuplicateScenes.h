// DuplicateScenes: the duplicate page led through its states on a folder of real files, with a picture of each.
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

class QAbstractButton;
class QTreeView;
class QWidget;

namespace orrinvale {

class DuplicateMainWindowController;
class PictureFolder;
class SampleFolder;
class TCImageWindow;
class UserDefaults;

/// The page is driven as a person does it: through its controls. Main thread only.
class DuplicateScenes final {
public:
    /// All outlive the object. Of the scenes only those that are `wanted` become pictures; an empty set means all.
    DuplicateScenes(const SampleFolder& sample, UserDefaults& defaults, const PictureFolder& pictures,
                    QSet<QString> wanted);
    ~DuplicateScenes();

    /// False when a state did not come about or a picture could not be written; standard error says which.
    bool draw();

private:
    bool drawFirstView();
    bool drawSearch();
    bool drawResult();
    bool drawQuestion();
    bool drawKeyboard();
    bool drawLargeWindow();
    bool drawPreview();
    bool drawRemoval();
    bool drawFailures();
    bool drawEmptyResult();

    bool save(const char* scene, QWidget* shown = nullptr) const;
    bool startSearch(const std::string& folder);
    bool waitForResult();
    bool waitForSheet(bool isThere);
    bool pressInSheet(const QString& text);
    bool saveLines(const char* scene, const char* lineButton);
    void tickGroup(const char* name);
    [[nodiscard]] QTreeView* outline() const;
    [[nodiscard]] QModelIndex groupNamed(const char* name) const;
    bool click(const char* objectName) const;

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
