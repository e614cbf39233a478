// MainViewController: what is done with rows of the six lists.
#include <QMenu>
#include <algorithm>

#include "engine/cleaning/CleanPageRows.h"
#include "engine/cleaning/KeepList.h"
#include "services/foundation/runAside.h"
#include "ui/cleaning/CleanViews.h"
#include "ui/cleaning/MainViewController.h"
#include "ui/cleaning/ScanListModel.h"
#include "ui/cleaning/ScanListView.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/page/PageStack.h"
#include "ui/page/rowMenu.h"

namespace orrinvale {

void MainViewController::listBoxClicked(std::size_t category, std::size_t row) {
    if (isFree()) m_tableControllers.at(category)->toggleRow(row);
}

// What a filter hides is left as it is.
void MainViewController::listHeaderClicked(std::size_t category) {
    ScanViewController& list = *m_tableControllers.at(category);
    ScanListView& view = *m_views->lists.at(category);
    const ScanListModel& model = *m_models.at(category);
    if (!isFree() || !list.scanFiles) return refreshLists();
    if (!model.isFiltered()) {
        const bool isOn = sumsOf(list).state() != 1;
        QWidget* const from = view.headerBox();
        return list.cleanShowSelectNumInBottom(isOn, std::any(from));
    }
    const std::vector<std::size_t> shown = model.shownNumbers();
    const auto isTicked = [&](std::size_t row) { return (*list.scanFiles)[row]->bIsSelected; };
    const bool isOn = !std::ranges::all_of(shown, isTicked);
    for (const std::size_t row : shown) (*list.scanFiles)[row]->bIsSelected = isOn;
    cleanShowSelectNumInBottomNotice.post(*m_parts.pages.notifications, {.state = isOn});
}

void MainViewController::refreshLists() {
    for (std::size_t i = 0; i < m_models.size(); ++i) {
        m_views->lists.at(i)->headerBox()->setState(
            static_cast<TickState>(sumsOf(*m_tableControllers.at(i)).state()));
        if (m_views->lists.at(i)->isVisible()) m_models.at(i)->refresh();
    }
}

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

// The row goes once the list of what is kept is on the disk.
void MainViewController::alwaysKeep(const std::string& path, std::size_t category) {
    runAside(
        this, "alwaysKeep",
        [files = m_parts.clean.files, folder = m_parts.clean.settingsFolder, path] {
            return KeepList::add(*files, folder, path);
        },
        [this, path, category](const Result<void>& stored) {
            if (!stored) {
                Alert alert;
                alert.title = tr("That could not be noted.");
                alert.text = inWords(stored.error().reason());
                alert.severity = Alert::Severity::Warning;
                return m_parts.pages.dialogs->alert(m_mainWindow, alert, [](int) {});
            }
            ScanViewController& list = *m_tableControllers.at(category);
            if (m_state != State::Reviewing || !list.scanFiles) return;
            list.leaveOut(path);
            m_views->allNewViewArr.at(category)->observeFoundText(
                std::string(cleanCategories.at(category).context), list.filesSize);
            m_views->customTableView->observeFoundText(
                std::string(cleanCategories.at(category).context), list.filesSize);
            m_models.at(category)->setList(list);
            listsChanged();
            setHiddenCheckBoxAction();
            showShares();
            cleanShowSelectNumInBottomNotice.post(*m_parts.pages.notifications, {});
            showRow();
            showKept();
        });
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
