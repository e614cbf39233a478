// LoginItemController: the page "Login Items": what starts at login, with a switch for each, and
// beside it what the system runs in the background. LoginItemViews has the controls.
#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "engine/base/NotificationCenter.h"
#include "ui/loginitems/LoginItemModel.h"
#include "ui/loginitems/LoginItemViews.h"
#include "ui/page/Page.h"
#include "ui/page/PageServices.h"

namespace orrinvale {

/// What the page asks for beside the list; each may be empty.
struct LoginItemSources {
    /// Who brought the files of these paths, by path. Asked on another thread.
    std::function<std::map<std::string, std::string>(const std::vector<std::string>& paths)>
        packages;
    /// On another thread likewise.
    std::function<std::vector<BackgroundService>()> services;
    /// Starts a command, whose words these are, and waits for nothing.
    std::function<void(const std::vector<std::string>& words)> start;
};

/// Works on LoginItemRegistry::parts(), aside; a change by anybody else is shown within a moment,
/// while the page is on the screen. Main thread only.
class LoginItemController final : public QObject, public Page {
    Q_OBJECT
public:
    LoginItemController(const PageServices& services, LoginItemSources sources);
    ~LoginItemController() override;

    [[nodiscard]] QWidget* view() const override { return m_views->view; }
    void setMainWindow(QWidget* window) override { m_mainWindow = window; }
    [[nodiscard]] const LoginItemViews& views() const { return *m_views; }
    [[nodiscard]] const LoginRows& allLoginItemsInfo() const { return m_model->rows(); }

    /// Reads the list anew; the rows come when it is read.
    void updateLoginItemsList();
    /// The folders of entries have changed.
    void loginItemsListDidChange();

    /// Lets the person choose what is to start, several at once.
    void addLoginItems();
    void showOpenPanel();
    /// Has the paths started at login. Their rows are there at once, until the list is read.
    void addPaths(const std::vector<std::string>& paths);
    /// Of several files the first one is added, and that is said.
    [[nodiscard]] bool acceptDrop(const QMimeData& data, int row);

    /// Of the chosen row: to the trash after a question; asked to start hidden or not; shown in the
    /// file manager; started now.
    void delLoginItem();
    void changeLoginVaule();
    void changeHideState();
    void viewButtonAction();
    void openButtonAction();

    /// Stores the number under "LoginCheck", and posts that menus are to be made anew.
    void writeFileOfLaunchAppWhenLogin(const std::string& state);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Read;
    void connectControls();
    void connectKeys();
    void watchFolders(const std::vector<std::string>& folders);
    void read(int number);
    void take(const Read& read);
    void choose(const std::string& fileName);
    void showServices(const std::vector<BackgroundService>& services);
    void askPackages();
    void toggle(const LoginRow& row);
    void showContent();
    void showChosen();
    void showMenu(const QModelIndex& index, QPoint position);
    void tell(const QString& words);
    [[nodiscard]] const LoginRow* chosen() const;
    [[nodiscard]] bool isOwn(const LoginItemRecord& item) const;
    /// What the work answers is why it failed, or empty, and then `done` runs. The list is read
    /// anew either way.
    void change(const char* name, std::function<std::string()> work,
                std::function<void()> done = {});

    const PageServices m_services;
    const LoginItemSources m_sources;
    const std::unique_ptr<LoginItemViews> m_views;
    LoginItemModel* m_model;
    QPointer<QWidget> m_mainWindow;
    QFileSystemWatcher m_watcher;
    QTimer m_changed;
    int m_readings = 0;        // begun so far; what the newest one brings is shown
    bool m_isReading = false;  // that one is under way
    bool m_wasRead = false;    // once at least
    bool m_isList = true;      // there was a list to read
    int m_part = LoginItemViews::Items;
    QString m_note;  // of a change that was asked for; said until the next one
};

[[nodiscard]] PageDescriptor loginItemsPage(const PageServices& services,
                                            const LoginItemSources& sources);

}  // namespace orrinvale
