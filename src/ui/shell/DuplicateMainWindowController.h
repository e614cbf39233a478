// DuplicateMainWindowController: the main window, its tabs, and which view of a page it shows.
#pragma once

#include <QObject>
#include <QPointer>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/StartRequest.h"
#include "ui/duplicates/SameFileDeleteViewController.h"
#include "ui/largefiles/ListFileViewController.h"
#include "ui/page/PageStack.h"

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
    /// Asked before it is closed; false leaves it open.
    virtual bool mayCloseMainWindow() { return true; }
    virtual void closeMainWindow() {}

protected:
    DuplicateMainWindowControllerDelegate() = default;
    DuplicateMainWindowControllerDelegate(const DuplicateMainWindowControllerDelegate&) = default;
    DuplicateMainWindowControllerDelegate& operator=(const DuplicateMainWindowControllerDelegate&) =
        default;
};

/// Makes the window and its first page at once, every other when its tab is first chosen; all live
/// as long as it does, the window being closed or not. What runs on one tab goes on while another
/// is shown. Main thread only.
class DuplicateMainWindowController final : public QObject,
                                            private SameFileDeleteViewControllerDelegate,
                                            private ListFileViewControllerDelagate {
    Q_OBJECT
public:
    /// `icons` outlives the controller.
    DuplicateMainWindowController(PageServices services, FileIcons& icons,
                                  QObject* parent = nullptr);
    ~DuplicateMainWindowController() override;

    [[nodiscard]] TCImageWindow* window() const { return m_aWindow.get(); }
    [[nodiscard]] SameFileDeleteViewController* sameFileDeleteVC() const {
        return m_sameFileDeleteVC;
    }
    /// Null until its tab has been chosen.
    [[nodiscard]] ListFileViewController* listFileVC() const { return m_listFileVC; }
    [[nodiscard]] QWidget* duplicateView() const { return m_duplicateView; }
    [[nodiscard]] QWidget* diskView() const { return m_diskView; }
    [[nodiscard]] const std::string& filePath() const { return m_filePath; }

    /// Those that have been made. None is null.
    [[nodiscard]] std::vector<Page*> pages() const;
    /// The page of the first tab: what a folder that is named outside of the window goes to.
    [[nodiscard]] Page& firstPage() const { return *m_tabs.front().page; }
    void selectFirstPage() { select(0); }
    /// Shows the page of that identifier, which is the name of an action of a start too. False when
    /// there is none.
    bool selectPage(std::string_view identifier);

    void setDelegate(DuplicateMainWindowControllerDelegate* delegate) {
        m_delegate = delegate;
    }  ///< not owned

    /// Opens at the right end of the title bar; its keys work in this window. It outlives the
    /// window.
    void setApplicationMenu(ApplicationMenu& menu);

    /// Brings the window to the front, or the dialog that stands over it. The first time it comes
    /// where it was when the settings last kept its place, and else to the middle of the screen.
    void showWindow();

    /// The same without coming to the front: it is found where the desktop keeps what is put away.
    void showMinimised();

    /// Keeps size and place in the settings, for the next run of the program.
    void keepFrame();

    /// A question, or a window that has to be closed first, stands over the window.
    [[nodiscard]] bool isAsking() const;
    /// Closes the sheets that only say something.
    void dismissMessages();

public Q_SLOTS:
    void closeWindow();
    void selectDuplicateButtonAction() { selectPage(startAction::duplicates); }
    void selectFileListButtonAction() { selectPage(startAction::largeFiles); }

    /// Opens the preview of the path, or closes it when it is open; the path shown stays then.
    void quickLookWithPath(const std::string& path);

private:
    /// A tab of the title bar and what it shows.
    struct Tab {
        std::string_view identifier;
        TitleTab* button;
        PageStack* stack;
        std::function<std::unique_ptr<Page>()> make;
        std::unique_ptr<Page> page;  // null until the tab has been chosen
    };

    void windowDidLoad();
    void placeWindow();
    void showBeside(int step);
    void addTitleBar();
    void addPages(QWidget& content);
    void addTab(std::string_view identifier, TitleTab* button, PageStack* stack,
                std::function<std::unique_ptr<Page>()> make);
    void addShortcuts();
    void select(std::size_t tab);
    [[nodiscard]] Page& shownPage() const { return *m_tabs[m_shownTab].page; }
    void changeToProgressView() override;
    void changeToDetailView() override;
    void backButtonAction() override;
    void showDetailPage() override;
    void listFileBackButtonAction() override;
    void pereviewFileWithFileNodePath(const std::string& path) override { quickLookWithPath(path); }

    FileIcons& m_icons;
    UserDefaults& m_defaults;
    std::unique_ptr<TCImageWindow> m_aWindow;
    QPointer<PageStack> m_duplicateView;
    QPointer<PageStack> m_diskView;
    QPointer<TitleTab> m_duplicateButton;
    QPointer<TitleTab> m_fileListButton;
    QPointer<QLabel> m_titleLabel;
    QPointer<HoverButton> m_menuButton;
    QPointer<PreviewWindow> m_previewPanel;
    const PageServices m_services;
    std::vector<Tab> m_tabs;  // their pages end before the window does
    std::size_t m_shownTab = 0;
    SameFileDeleteViewController* m_sameFileDeleteVC = nullptr;  // owned by its tab, as the next
    ListFileViewController* m_listFileVC = nullptr;
    DuplicateMainWindowControllerDelegate* m_delegate = nullptr;
    std::string m_filePath;
    bool m_isPlaced = false;
};

}  // namespace orrinvale
