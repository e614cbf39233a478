// SameFileDeleteViewController: a search in several folders: the sheet in which they are chosen,
// and the searches that have a name.
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <utility>

#include "platform/paths.h"
#include "services/foundation/runAside.h"
#include "ui/duplicates/SameFileDeleteViewController.h"
#include "ui/duplicates/SameFileDeleteViews.h"
#include "ui/duplicates/ScopePanel.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/DragView.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/kit/dialogs/failureWords.h"

namespace orrinvale {
namespace {

QString shownRoot(const std::string& path) { return onOneLine(QString::fromStdString(path)); }

}  // namespace

// On the first view several folders that are dropped together open the sheet; a single one is
// searched at once, as everywhere.
bool SameFileDeleteViewController::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_views->detailView &&
        (event->type() == QEvent::WindowActivate || event->type() == QEvent::Show))
        showWays();  // the setting may be another by now
    if (event->type() != QEvent::Drop || watched != m_views->dragView) return false;
    auto& drop = static_cast<QDropEvent&>(*event);
    const auto paths = localPathsOf(*drop.mimeData());
    if (paths.size() < 2 || !bSearchFinished()) return false;
    drop.setDropAction(Qt::CopyAction);
    drop.accept();
    m_views->dragView->concludeDragOperation();
    openScope(paths);
    return true;
}

void SameFileDeleteViewController::openScope(const std::vector<std::string>& paths) {
    QWidget* const window = m_mainWindow;
    if (window == nullptr || !bSearchFinished() || m_scopePanel != nullptr) return;
    auto* const panel = new ScopePanel;
    auto* const sheet = new Sheet(*window, panel);  // ends itself
    m_scopePanel = panel;
    const QPointer<ScopePanel> guarded(panel);
    const auto addAll = [this, guarded](const std::vector<std::string>& added) {
        for (const std::string& path : added)
            whenFolderIsThere(m_parts, *this, path, [guarded, path] {
                if (guarded != nullptr) guarded->addFolder(path);
            });
    };
    connect(panel, &ScopePanel::dropped, this, addAll);
    connect(panel->addBtn, &QAbstractButton::clicked, this, [this, addAll] {
        PathChoice choice;
        choice.withSeveral = true;
        m_parts.dialogs->choosePaths(m_mainWindow, choice, addAll);
    });
    connect(panel, &ScopePanel::saveWanted, this, &SameFileDeleteViewController::saveScope);
    connect(panel, &ScopePanel::clearWanted, this, [this] { changeScopes({}); });
    const auto end = [this, sheet](bool searches) {
        const SearchScope scope = m_scopePanel != nullptr ? m_scopePanel->scope() : SearchScope{};
        m_scopePanel = nullptr;
        sheet->close([self = QPointer(this), searches, scope] {
            if (self != nullptr && searches) self->searchScope(scope);
        });
    };
    connect(panel->searchYes, &QAbstractButton::clicked, sheet, [end] { end(true); });
    connect(panel->cancelButton, &QAbstractButton::clicked, sheet, [end] { end(false); });
    connect(sheet, &Sheet::cancelled, sheet, [end] { end(false); });
    panel->setScope(m_lastScope);
    panel->setKept({});
    addAll(paths);
    sheet->open(panel->addBtn);
    showKeptScopes();
}

NamedSearches SameFileDeleteViewController::keptScopes() const {
    return NamedSearches(m_parts.stateFolder.empty() ? std::string()
                                                     : joinPath(m_parts.stateFolder, "searches"));
}

void SameFileDeleteViewController::showKeptScopes() {
    if (m_parts.stateFolder.empty()) return;
    static_cast<void>(runAside(
        this, "keptSearches", [kept = keptScopes()] { return kept.all(); },
        [this](std::vector<SearchScope> all) {
            if (m_scopePanel != nullptr) m_scopePanel->setKept(std::move(all));
        }));
}

void SameFileDeleteViewController::saveScope(const SearchScope& scope) { changeScopes(scope); }

// Nothing: all of them are forgotten.
void SameFileDeleteViewController::changeScopes(const std::optional<SearchScope>& saved) {
    if (m_parts.stateFolder.empty()) return;
    static_cast<void>(runAside(
        this, "keptSearches",
        [kept = keptScopes(), saved] { return saved ? kept.save(*saved) : kept.clear(); },
        [this](const Result<void>& done) {
            if (m_scopePanel != nullptr && !done)
                m_scopePanel->showFault(
                    tr("Could not be saved: %1").arg(inWords(done.error().reason())));
            showKeptScopes();
        }));
}

void SameFileDeleteViewController::searchScope(const SearchScope& scope) {
    auto request = scope.request();
    if (!bSearchFinished() || !request || request->roots.empty()) return;
    m_lastScope = scope;
    searchRequest(std::move(*request));
}

void SameFileDeleteViewController::searchRequest(SearchRequest request) {
    if (!bSearchFinished()) return;
    updatePathString(request.roots.front());
    m_request = std::move(request);
    for (QLabel* const label : {m_views->onlyOneLabel, static_cast<QLabel*>(m_views->onlyOneNote)})
        label->hide();
    searchBtnClicked();
    forwardViewForAnimation();
}

// Of folders that lie in others the page says that they were searched once.
void SameFileDeleteViewController::showCovered(const std::vector<CoveredRoot>& covered) {
    if (covered.empty()) return;
    QStringList lines;
    for (const CoveredRoot& each : covered)
        lines.push_back((each.isSame ? tr("%1 is %2 and was searched once")
                                     : tr("%1 lies in %2 and was searched once"))
                            .arg(shownRoot(each.path), shownRoot(each.by)));
    m_views->onlyOneNote->setText(lines.front());
    m_views->onlyOneNote->setToolTip(lines.join(QLatin1Char('\n')));
    m_views->onlyOneNote->show();
}

}  // namespace orrinvale
