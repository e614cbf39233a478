// DuplicateMainWindowController: the main window, its tabs, and which view of a page it shows.
#pragma once

#include <QObject>
#include <QPointer>
#include <memory>
#include <string>

#include "ui/duplicates/SameFileDeleteViewController.h"
#include "ui/largefiles/ListFileViewController.h"

class QLabel;

namespace orrinvale {

class ApplicationMenu;
class FileIcons;
class HoverButton;
class PreviewWindow;
class TCImageWindow;
class TitleTab;

class DuplicateMainWindowControllerDelegate {
public:
    virtual ~DuplicateMainWindowControllerDelegate() = default;
    virtual void closeMainWindow() {}

protected:
    DuplicateMainWindowControllerDelegate() = default;
    DuplicateMainWindowControllerDelegate(const DuplicateMainWindowControllerDelegate&) = default;
    DuplicateMainWindowControllerDelegate& operator=(const DuplicateMainWindowControllerDelegate&) =
        default;
};

/// Makes the window and the duplicate page at once, the large file page when its tab is first
/// chosen; all live as long as it does, the window being closed or not. What runs on one tab goes
/// on while the other is shown. Main thread only.
class DuplicateMainWindowController final : public QObject,
                                            private SameFileDeleteViewControllerDelegate,
                                            private ListFileViewControllerDelagate {
    Q_OBJECT
public:
    /// `icons` outlives the controller.
    DuplicateMainWindowController(SameFileDeleteParts parts, FileIcons& icons,
                                  QObject* parent = nullptr);
    ~DuplicateMainWindowController() override;

    [[nodiscard]] TCImageWindow* window() const { return m_aWindow.get(); }
    [[nodiscard]] SameFileDeleteViewController* sameFileDeleteVC() const {
        return m_sameFileDeleteVC.get();
    }
    /// Null until its tab has been chosen.
    [[nodiscard]] ListFileViewController* listFileVC() const { return m_listFileVC.get(); }
    [[nodiscard]] QWidget* duplicateView() const { return m_duplicateView; }
    [[nodiscard]] QWidget* diskView() const { return m_diskView; }
    [[nodiscard]] const std::string& filePath() const { return m_filePath; }

    void setDelegate(DuplicateMainWindowControllerDelegate* delegate) {
        m_delegate = delegate;
    }  ///< not owned

    /// Opens at the right end of the title bar; its keys work in this window. It outlives the
    /// window.
    void setApplicationMenu(ApplicationMenu& menu);

    /// Brings the window to the front, or the dialog that stands over it. The first time it comes
    /// where it was when the settings last kept its place, and else to the middle of the screen.
    void showWindow();

    /// Keeps size and place in the settings, for the next run of the program.
    void keepFrame();

    /// A question, or a window that has to be closed first, stands over the window.
    [[nodiscard]] bool isAsking() const;
    /// Closes the sheets that only say something.
    void dismissMessages();

public Q_SLOTS:
    void closeWindow();
    void selectDuplicateButtonAction();
    void selectFileListButtonAction();

    /// Opens the preview of the path, or closes it when it is open; the path shown stays then.
    void quickLookWithPath(const std::string& path);

private:
    void windowDidLoad();
    void placeWindow();
    void showBeside(int step);
    void addTabs();
    void addShortcuts();
    [[nodiscard]] TitleTab* makeTab(const QString& title, const char* name,
                                    void (DuplicateMainWindowController::*chosen)());
    void addListFileView();
    void showHolder(bool isDiskView);
    void chooseFolder();
    static void swapView(QWidget& holder, QWidget* removed, QWidget* added);
    void changeToProgressView() override;
    void changeToDetailView() override;
    void backButtonAction() override;
    void showDetailPage() override;
    void listFileBackButtonAction() override;
    void pereviewFileWithFileNodePath(const std::string& path) override { quickLookWithPath(path); }

    FileIcons& m_icons;
    UserDefaults& m_defaults;
    std::unique_ptr<TCImageWindow> m_aWindow;
    QPointer<QWidget> m_duplicateView;
    QPointer<QWidget> m_diskView;
    QPointer<TitleTab> m_duplicateButton;
    QPointer<TitleTab> m_fileListButton;
    QPointer<QLabel> m_titleLabel;
    QPointer<HoverButton> m_menuButton;
    QPointer<PreviewWindow> m_previewPanel;
    const ListFileParts m_listFileParts;
    std::unique_ptr<SameFileDeleteViewController> m_sameFileDeleteVC;
    std::unique_ptr<ListFileViewController> m_listFileVC;
    DuplicateMainWindowControllerDelegate* m_delegate = nullptr;
    std::string m_filePath;
    bool m_isPlaced = false;
};

}  // namespace orrinvale
