// What a person does with the list: each change is made aside and then read back.
#include <QLocale>
#include <QMenu>
#include <QMimeData>
#include <QUrl>
#include <utility>

#include "engine/base/Log.h"
#include "engine/base/notices.h"
#include "engine/loginitems/AutostartEntry.h"
#include "engine/loginitems/LoginItemRegistry.h"
#include "engine/loginitems/launchAtLogin.h"
#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "platform/FileUrl.h"
#include "services/foundation/runAside.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/kit/lists/TickOutline.h"
#include "ui/loginitems/AppInformation.h"
#include "ui/loginitems/LoginItemController.h"
#include "ui/page/rowMenu.h"

namespace orrinvale {
namespace {

LoginItems& items() { return LoginItemRegistry::parts().list(); }

std::string reasonOf(const Result<void>& done) {
    return done ? std::string() : done.error().reason();
}

}  // namespace

void LoginItemController::tell(const QString& words) {
    m_note = words;
    showContent();
}

void LoginItemController::change(const char* name, std::function<std::string()> work,
                                 std::function<void()> done) {
    runAside(this, name, std::move(work), [this, done = std::move(done)](const std::string& why) {
        if (!why.empty()) tell(tr("This could not be changed: %1").arg(inWords(why)));
        else if (done) done();
        updateLoginItemsList();
    });
}

void LoginItemController::toggle(const LoginRow& row) {
    tell({});
    const bool starts = !row.item.starts;
    change(
        "toggle",
        [fileName = row.item.fileName, starts] {
            return reasonOf(items().setStarts(fileName, starts));
        },
        [this, starts, isOwn = isOwn(row.item)] {
            if (isOwn) writeFileOfLaunchAppWhenLogin(starts ? "1" : "0");
        });
}

void LoginItemController::writeFileOfLaunchAppWhenLogin(const std::string& state) {
    // A failure is logged there, and the value holds until the end.
    static_cast<void>(orrinvale::writeFileOfLaunchAppWhenLogin(state));
    notice::refMenuItemWhenDeleteAndAdd.post(*m_services.notifications);
}

// --- Adding

void LoginItemController::addLoginItems() { showOpenPanel(); }

void LoginItemController::showOpenPanel() {
    PathChoice choice;
    choice.title = tr("Choose a login item");
    choice.directory = "/usr/share/applications";
    choice.withFiles = true;
    choice.withSeveral = true;
    m_services.dialogs->choosePaths(m_mainWindow, choice,
                                    [self = QPointer(this)](const std::vector<std::string>& paths) {
                                        if (self == nullptr) return;
                                        self->tell({});
                                        self->addPaths(paths);
                                    });
}

// One after another, so that none waits for the name of another. Of several the rest is added where
// one fails.
void LoginItemController::addPaths(const std::vector<std::string>& paths) {
    if (paths.empty()) return;
    for (const std::string& each : paths)
        m_model->append(AppInformation::constructAppItem(each, false));
    showContent();
    struct Added {
        std::string why;  // not; empty where all were
        bool isOwn = false;
    };
    runAside(
        this, "addPaths",
        [paths] {
            Added added;
            for (const std::string& each : paths) {
                const std::string path = items().pathToAdd(each);
                const bool isOwn = path == items().folders().ownProgram;
                const bool hides =
                    isOwn && UserDefaults::standardUserDefaults().boolForKey(ZvLoginItemIsHide);
                if (!LoginItemRegistry::addLoginItemWithPath(path, hides))
                    added.why = "nothing can start this at login";
                else added.isOwn = added.isOwn || isOwn;
            }
            return added;
        },
        [this](const Added& added) {
            if (added.isOwn) writeFileOfLaunchAppWhenLogin("1");
            if (!added.why.empty())
                tell(tr("This could not be changed: %1").arg(inWords(added.why)));
            updateLoginItemsList();
        });
}

bool LoginItemController::acceptDrop(const QMimeData& data, int row) {
    if (data.hasFormat(LoginItemModel::rowsType)) {
        Log::line("zStrAvailableType=MyPrivateTableViewDataType");
        m_model->reorder(LoginItemModel::draggedRows(data), row);
        return true;
    }
    if (data.hasUrls()) {
        Log::line("zStrAvailableType=NSFilenamesPboardType");
        const auto urls = data.urls();
        const auto path =
            urls.empty() ? std::nullopt : pathOfFileUrl(urls.front().toEncoded().toStdString());
        if (!path) return false;
        tell(urls.size() > 1 ? tr("Of several files the first one was added.") : QString());
        addPaths({*path});
        return true;
    }
    if (!data.hasText()) return false;
    Log::line("zStrAvailableType=public.utf8-plain-text");
    m_model->insertText(MyData::newWithString(data.text().toStdString()), row);
    showContent();
    return true;
}

// --- The chosen row

void LoginItemController::delLoginItem() { changeLoginVaule(); }

void LoginItemController::changeLoginVaule() {
    const LoginRow* const row = chosen();
    if (row == nullptr || !mayRemove(*row)) return;
    Alert question;
    question.title = tr("Move \"%1\" to the trash?").arg(QString::fromStdString(row->item.name));
    question.text = row->item.isSystems
                        ? tr("The system's own entry of that name starts again then.")
                        : tr("It does not start any more when you log in.");
    question.buttons = QStringList{tr("Move to Trash"), tr("Cancel")};
    question.cancelButton = 1;
    const auto remove = [this, item = row->item] {
        tell({});
        change(
            "changeLoginVaule:", [item] { return LoginItemRegistry::parts().remove(item); },
            [this, isOwn = isOwn(item)] {
                if (isOwn) writeFileOfLaunchAppWhenLogin("0");
            });
    };
    m_services.dialogs->alert(m_mainWindow, question, [self = QPointer(this), remove](int button) {
        if (self != nullptr && button == 0) remove();
    });
}

void LoginItemController::changeHideState() {
    const LoginRow* const row = chosen();
    if (row == nullptr || !isOwn(row->item)) return;
    tell({});
    const bool hides = !row->item.startsHidden;
    change(
        "changeHideState:",
        [fileName = row->item.fileName, hides] {
            return reasonOf(items().setHidden(fileName, hides));
        },
        [hides] {
            static_cast<void>(PreferenceViewController::storeSetting(hides, ZvLoginItemIsHide));
        });
}

void LoginItemController::viewButtonAction() {
    if (const LoginRow* const row = chosen(); row != nullptr && row->isListed())
        m_services.reveal(row->item.path.empty() ? row->item.file : row->item.path);
}

// Our own program is told by its plain path: its entry says that a login has started it.
void LoginItemController::openButtonAction() {
    const LoginRow* const row = chosen();
    if (row == nullptr || !mayOpen(*row) || !m_sources.start) return;
    m_sources.start(isOwn(row->item) ? std::vector{row->item.path}
                                     : commandWords(row->item.command));
}

void LoginItemController::showMenu(const QModelIndex& index, QPoint position) {
    const LoginRow* const row = m_model->node(index);
    if (row == nullptr || !row->isListed()) return;
    m_views->tableView->setCurrentIndex(index);
    QMenu* const menu = makeRowMenu(m_views->tableView, *this,
                                    {.preview = {},
                                     .reveal = [this] { viewButtonAction(); },
                                     .path = [file = row->item.file] { return file; }});
    const auto add = [&](const QString& text, bool isOffered, auto action) {
        QAction* const made = menu->addAction(text, this, action);
        made->setEnabled(isOffered);
        return made;
    };
    add(tr("Open"), mayOpen(*row), [this] { openButtonAction(); });
    QAction* const hide = add(tr("Start hidden"), isOwn(row->item), [this] { changeHideState(); });
    hide->setCheckable(true);
    hide->setChecked(row->item.startsHidden);
    add(tr("Remove"), mayRemove(*row), [this] { delLoginItem(); });
    menu->popup(position);
}

}  // namespace orrinvale
