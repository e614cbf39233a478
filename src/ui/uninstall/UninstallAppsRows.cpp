// UninstallAppsController: ticks, filters, order, and what is done with one row.
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>

#include "engine/uninstall/uninstallNotices.h"
#include "services/foundation/runAside.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/kit/lists/LeftRail.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/page/Padlock.h"
#include "ui/page/rowMenu.h"
#include "ui/uninstall/UninstallAppsController.h"
#include "ui/uninstall/UninstallAppsModel.h"
#include "ui/uninstall/UninstallAppsViews.h"
#include "ui/uninstall/UninstallDetails.h"

namespace orrinvale {

void UninstallAppsController::showRows() {
    m_model->refresh();
    showFitting();
    showTitle();
    getSelectAllOrNull();
    Q_EMIT allApplicationsChanged();
}

void UninstallAppsController::changeSelectCell(std::int32_t row) {
    if (!m_isScaned) return;
    m_list.select(row);
    m_views->leftView->select(row);
    showRows();
    postSelectNum();
}

void UninstallAppsController::postSelectNum() const {
    notice::uninstallShowSelectNumInBottom.post(*m_services.notifications, {});
}

void UninstallAppsController::uninstallShowSelectNumInBottom(const std::string& object) {
    const auto selected = m_list.getAllSelectApp();
    const std::size_t count = selected ? selected->size() : 0;
    if (object != notice::uninstalledObject) {
        const auto number = [](std::size_t n) { return QLocale().toString(qulonglong(n)); };
        m_views->uninstallTextField->setText(
            tr("%1 of %2 selected.").arg(number(count), number(m_list.allApplications().size())));
        m_views->uninstallTextField->show();
    }
    getSelectAllOrNull();
}

void UninstallAppsController::getSelectAllOrNull() {
    const bool hasAny = m_list.getAllSelectApp().has_value();
    m_views->uninstallButton->setEnabled(hasAny && isFree());
    m_views->uninstallButton->setToolTip(hasAny ? QString()
                                                : tr("Tick the applications that are to go"));
    // Before the search has found any, all of nothing is no tick.
    const bool isAnything = m_isScaned || !m_list.allApplications().empty();
    m_views->selectButton->setState(
        isAnything && m_list.isEverythingSelected() ? TickState::All : TickState::Nothing);
}

void UninstallAppsController::boxClicked(AppItems& item) {
    if (!mayTick()) return;
    UninstallList::flip(item);
    m_model->refresh();
    getSelectAllOrNull();
    postSelectNum();
}

// The click has changed the box already.
void UninstallAppsController::selectAllList() {
    if (mayTick()) m_list.selectAllList(m_views->selectButton->state() == TickState::All);
    m_model->refresh();
    getSelectAllOrNull();
    postSelectNum();
}

void UninstallAppsController::unlockRigths() { m_views->lockButton->toggleRight(); }

void UninstallAppsController::filter(const QString& text) {
    m_list.setFilter(text.trimmed().toStdString());
    showRows();
    postSelectNum();
}

// The biggest, the newest, and what was not used for longest come first.
void UninstallAppsController::sortByColumn(int column) {
    const auto key = m_model->sortKey(column);
    if (!key) return;
    const bool startsDescending =
        column == UninstallAppsModel::Size || column == UninstallAppsModel::Created;
    m_isDescending = column == m_sortColumn ? !m_isDescending : startsDescending;
    m_sortColumn = column;
    m_list.sortBy(static_cast<UninstallList::Sort>(*key), m_isDescending);
    m_views->tableView->header()->setSortIndicator(
        column, m_isDescending ? Qt::DescendingOrder : Qt::AscendingOrder);
    m_model->refresh();
    Q_EMIT allApplicationsChanged();
}

void UninstallAppsController::cellClicked(const QModelIndex& index) {
    if (index.column() == UninstallAppsModel::View) cellClickOfView(index);
}

void UninstallAppsController::showRowMenu(const QModelIndex& index, QPoint position) {
    const AppItems* const item = m_model->node(index);
    if (item == nullptr) return;
    QMenu* const menu =
        makeRowMenu(m_views->resultView, *this,
                    {.preview = {},
                     .reveal = [this, path = item->path] { m_services.reveal(path); },
                     .path = [path = item->path] { return path; }});
    menu->addAction(tr("Details"), this,
                    [this, row = QPersistentModelIndex(index)] { cellClickOfView(row); });
    menu->popup(position);
}

Sheet* UninstallAppsController::listWindow() const { return m_listWindow; }

// The files are counted at this moment, and the size is this sheet's alone.
void UninstallAppsController::cellClickOfView(const QModelIndex& index) {
    const AppItems* const item = m_model->node(index);
    QWidget* const window =
        m_mainWindow != nullptr ? m_mainWindow.data() : m_views->resultView.data();
    if (item == nullptr || m_listWindow != nullptr) return;
    auto* const details = new UninstallDetails(*item, m_icons.largeIcon(item->record->icon));
    m_listWindow = new Sheet(*window, details);  // ends itself
    connect(m_listWindow, &Sheet::cancelled, this, &UninstallAppsController::alertWindowOkAction);
    connect(details->okButton, &QAbstractButton::clicked, this,
            &UninstallAppsController::alertWindowOkAction);
    m_listWindow->open(details->okButton);
    const auto stop = std::make_shared<std::atomic<bool>>(false);
    connect(details, &QObject::destroyed, this, [stop] { *stop = true; });
    runAside(
        details, "size of an application",
        [stop, measure = m_parts.measure, record = item->record] {
            return measure(*record, *stop);
        },
        [details](const ApplicationDetails& measured) { details->showSize(measured); });
}

void UninstallAppsController::alertWindowOkAction() {
    if (m_listWindow != nullptr) m_listWindow->close([] {});
}

}  // namespace orrinvale
