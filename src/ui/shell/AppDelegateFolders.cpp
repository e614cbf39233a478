// Folders that come to AppDelegate from outside: a start of the program, the bus, the file manager.
// They may lie on a server that is gone, so that they are looked up aside. See AppDelegate.h.
#include <QApplication>
#include <QFileDialog>
#include <utility>

#include "platform/error.h"
#include "platform/files.h"
#include "services/foundation/runAside.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/preferences/AppPrefsWindowController.h"
#include "ui/shell/AppDelegate.h"

namespace orrinvale {
namespace {

// The folder by its real path, if it can be opened: what is relative or climbs is never removed.
SysResult<std::string> openedFolder(const FileSystem& files, const std::string& path) {
    auto folder = files.resolved(path);
    if (!folder) return folder;
    const auto opened = files.openFolder(FileSystem::noParent, folder->c_str(), Links::Follow);
    if (!opened) return tl::unexpected(opened.error());
    return folder;
}

}  // namespace

// The newest request counts. The thread of a look that is never answered stays behind.
void AppDelegate::lookUpFolder(const std::string& path,
                               std::function<void(const std::string& folder)> then) {
    const std::uint64_t number = ++m_folderLook;
    QTimer::singleShot(m_parts.folderPatience, this, [this, number, path] {
        if (m_folderLook != number) return;
        ++m_folderLook;  // an answer is nobody's any more
        tellOfFolder(path, tr("it does not answer"));
    });
    runAside(
        this, "lookUpFolder",
        [files = m_parts.pages.files, path] { return openedFolder(*files, path); },
        [this, number, path, then = std::move(then)](const SysResult<std::string>& folder) {
            if (m_folderLook != number) return;
            ++m_folderLook;
            if (m_isLeaving) return;
            if (folder) then(*folder);
            else tellOfFolder(path, inWords(systemError("open", path, folder.error()).reason()));
        });
}

void AppDelegate::tellOfFolder(const std::string& path, const QString& reason) {
    // Who has closed all windows meanwhile wants nothing any more.
    if (m_isLeaving || !hasWindowBeside(nullptr)) return;
    if (m_duplicateMWC) m_duplicateMWC->dismissMessages();
    Alert alert;
    alert.title = tr("This folder can not be searched.");
    alert.text = onOneLine(QString::fromStdString(path)) + QStringLiteral(": ") + reason;
    tell(alert);
}

void AppDelegate::tellToWait(const std::string& path) {
    Alert alert;
    alert.title = tr("Something else is under way.");
    alert.text = tr("Stop it or wait for its end, and then choose %1 again.")
                     .arg(onOneLine(QString::fromStdString(path)));
    tell(alert);
}

void AppDelegate::searchFolder(const std::string& path) {
    // Who names a folder has no use any more for the dialog that chooses one.
    if (auto* const chooser = qobject_cast<QFileDialog*>(QApplication::activeModalWidget()))
        chooser->reject();
    lookUpFolder(path, [this, path](const std::string& folder) { beginSearch(path, folder); });
}

void AppDelegate::beginSearch(const std::string& path, const std::string& folder) {
    if (!window()->isVisible()) return;  // closed meanwhile, and with it what was wanted
    m_duplicateMWC->dismissMessages();
    if (m_duplicateMWC->isAsking()) {
        Alert alert;
        alert.title = tr("A question is still open.");
        alert.text =
            tr("Answer it, and then choose %1 again.").arg(onOneLine(QString::fromStdString(path)));
        tell(alert);
        return;
    }
    m_duplicateMWC->selectFirstPage();
    Page& page = m_duplicateMWC->firstPage();
    if (page.isBusy()) tellToWait(path);
    else page.takeFolder(folder);
}

void AppDelegate::onClickDiskUsage() {
    if (!m_isLeaving) showPageAlone(diskUsageIdentifier);
}

// As if it had been dropped there.
void AppDelegate::lookInto(const std::string& path) {
    onClickDiskUsage();
    Page* const page =
        AppPrefsWindowController::sharedPrefsWindowController().page(diskUsageIdentifier);
    if (page == nullptr) return;
    if (page->isBusy()) return tellToWait(path);
    lookUpFolder(path, [this, page, path](const std::string& folder) {
        if (!page->view()->isVisible()) return;  // closed meanwhile
        if (page->isBusy()) tellToWait(path);
        else page->takeFolder(folder);
    });
}

}  // namespace orrinvale
