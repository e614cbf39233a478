// MainViewController: what is done with rows of the six lists.
#include <QMenu>
#include <utility>

#include "engine/cleaning/CleanPageRows.h"
#include "engine/cleaning/KeepList.h"
#include "services/foundation/runAside.h"
#include "ui/cleaning/CleanViews.h"
#include "ui/cleaning/MainViewController.h"
#include "ui/cleaning/ScanListModel.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/page/PageStack.h"
#include "ui/page/rowMenu.h"

namespace orrinvale {

void MainViewController::reveal(const std::string& path) const {
    if (m_parts.pages.reveal) m_parts.pages.reveal(path);
}

void MainViewController::showPlace(const QPoint& position, const std::string& path,
                                   std::size_t category) {
    QMenu* const menu = makeRowMenu(
        m_views->resultView, *this,
        {.preview = {}, .reveal = [this, path] { reveal(path); }, .path = [path] { return path; }});
    QAction* const keep = menu->addAction(tr("Always Keep"), this,
                                          [this, path, category] { alwaysKeep(path, category); });
    keep->setEnabled(m_state == State::Reviewing && !m_isAsking);
    menu->popup(position);
}

// The row goes at once, so that a clean that begins before the list of what is kept is on the disk
// does not take it along.
void MainViewController::alwaysKeep(const std::string& path, std::size_t category) {
    leaveOut(path, category);
    runAside(
        this, "alwaysKeep",
        [files = m_parts.clean.files, folder = m_parts.clean.settingsFolder, path] {
            return KeepList::add(*files, folder, path);
        },
        [this, path, category](const Result<void>& stored) {
            if (!stored) {
                Alert alert;
                alert.title = tr("That could not be noted.");
                alert.text = tr("%1. It is left out until the next scan.")
                                 .arg(inWords(stored.error().reason()));
                alert.severity = Alert::Severity::Warning;
                return m_parts.pages.dialogs->alert(m_mainWindow, alert, [](int) {});
            }
            if (m_state == State::Reviewing) leaveOut(path, category);
            else m_keptLate.emplace_back(category, path);
        });
}

void MainViewController::leaveOut(const std::string& path, std::size_t category) {
    m_tableControllers.at(category)->leaveOut(path);
    tellSize(category);
    m_models.at(category)->takeOut(path);
    rowTaken(category, path);
    setHiddenCheckBoxAction();
    showShares();
    cleanShowSelectNumInBottomNotice.post(*m_parts.pages.notifications, {});
    showRow();
    showKept();
}

// A scan that began before the wish was noted has not heeded it.
void MainViewController::leaveOutLate() {
    for (const auto& [category, path] : std::exchange(m_keptLate, {})) {
        ScanViewController& list = *m_tableControllers.at(category);
        list.leaveOut(path);
        m_models.at(category)->takeOut(path);
        tellSize(category);
    }
}

void MainViewController::tellSize(std::size_t category) {
    const std::string context(cleanCategories.at(category).context);
    const std::string& size = m_tableControllers.at(category)->filesSize;
    m_views->allNewViewArr.at(category)->observeFoundText(context, size);
    m_views->customTableView->observeFoundText(context, size);
}

void MainViewController::browseVolume(const std::string& volRootDir) {
    notice::openFinderWhenClickItems.post(*m_parts.pages.notifications, volRootDir);
}

void MainViewController::forwardViewAnimation() {
    m_stack->showView(m_views->resultView);
    shouldSelectRow(overviewRow);
}

void MainViewController::backViewAnimation() {
    m_stack->showView(m_views->startView);
    showTitle();
}

void MainViewController::backToAnimationPage() {
    if (m_state == State::Scanning) return scanButtonAction();
    if (!isFree()) return;
    if (selectRowNum != overviewRow) return shouldSelectRow(overviewRow);
    if (!goBackFromOverview()) backViewAnimation();
}

}  // namespace orrinvale
