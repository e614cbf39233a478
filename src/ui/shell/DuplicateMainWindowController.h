// DuplicateMainWindowController: the main window, its tabs, and which view of a page it shows.
#pragma once

#include <QObject>
#include <QPointer>
#include <memory>
#include <string>

#include "ui/duplicates/SameFileDeleteViewController.h"

class QLabel;

namespace orrinvale {

class FileIcons;
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
    DuplicateMainWindowControllerDelegate& operator=(const DuplicateMainWindowControllerDelegate&) = default;
};

/// Makes the window and the duplicate page at once; both live as long as it does, the window being closed or not. Main thread only.
class DuplicateMainWindowController final : public QObject, private SameFileDeleteViewControllerDelegate {
    Q_OBJECT
public:
    /// `icons` outlives the controller.
    DuplicateMainWindowController(SameFileDeleteParts parts, FileIcons& icons, QObject* parent = nullptr);
    ~DuplicateMainWindowController() override;

    [[nodiscard]] TCImageWindow* window() const { return m_aWindow.get(); }
    [[nodiscard]] SameFileDeleteViewController* sameFileDeleteVC() const { return m_sameFileDeleteVC.get(); }
    [[nodiscard]] QWidget* duplicateView() const { return m_duplicateView; }
    [[nodiscard]] const std::string& filePath() const { return m_filePath; }

    void setDelegate(DuplicateMainWindowControllerDelegate* delegate) { m_delegate = delegate; }  ///< not owned

    /// Brings the window to the front.
    void showWindow();

public Q_SLOTS:
    void closeWindow();
    void selectDuplicateButtonAction();

    /// Opens the preview of the path, or closes it when it is open; the path shown stays then.
    void quickLookWithPath(const std::string& path);

private:
    void windowDidLoad();
    void addTabs();
    void addShortcuts();
    void swapView(QWidget* removed, QWidget* added);
    void changeToProgressView() override;
    void changeToDetailView() override;
    void backButtonAction() override;
    void pereviewFileWithFileNodePath(const std::string& path) override { quickLookWithPath(path); }

    FileIcons& m_icons;
    std::unique_ptr<TCImageWindow> m_aWindow;
    QPointer<QWidget> m_duplicateView;
    QPointer<TitleTab> m_duplicateButton;
    QPointer<QLabel> m_titleLabel;
    QPointer<PreviewWindow> m_previewPanel;
    std::unique_ptr<SameFileDeleteViewController> m_sameFileDeleteVC;
    DuplicateMainWindowControllerDelegate* m_delegate = nullptr;
    std::string m_filePath;
};

}  // namespace orrinvale
