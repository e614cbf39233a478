// ResultFrame makes what pages have in common; here is what only this one has.
#include "ui/uninstall/UninstallAppsViews.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "engine/uninstall/UninstallList.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/DragView.h"
#include "ui/kit/controls/Panel.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/controls/Spinner.h"
#include "ui/kit/controls/filterField.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/lists/FlatHeader.h"
#include "ui/kit/lists/LeftRail.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/page/Padlock.h"
#include "ui/uninstall/UninstallAppsModel.h"
#include "ui/uninstall/UninstallLeftCell.h"

namespace orrinvale {
namespace {

// Below these widths a name would be cut to a few letters.
constexpr int roomForDate = 660, roomForUse = 520;

QString pictureOf(std::int32_t row) {
    switch (row) {
        case UninstallList::AllSoftware: return QStringLiteral("uninstall_all.png");
        case UninstallList::SystemProgram: return QStringLiteral("uninstall_system.png");
        case UninstallList::Application: return QStringLiteral("uninstall_app.png");
        default: break;
    }
    switch (static_cast<ApplicationType>(row - UninstallList::FirstKind)) {
        case ApplicationType::Flatpak: return QStringLiteral("kind_flatpak");
        case ApplicationType::Snap: return QStringLiteral("kind_snap");
        case ApplicationType::Deb: return QStringLiteral("kind_package");
        case ApplicationType::AppImage: return QStringLiteral("kind_appimage");
        case ApplicationType::Folder: return QStringLiteral("folder");
        case ApplicationType::App: break;
    }
    return QStringLiteral("ic_app");
}

QString titleOf(std::int32_t row) {
    switch (row) {
        case UninstallList::AllSoftware: return UninstallAppsViews::tr("ALL Software");
        case UninstallList::SystemProgram: return UninstallAppsViews::tr("System program");
        case UninstallList::Application: return UninstallAppsViews::tr("Application");
        default: return kindRowTitle(static_cast<ApplicationType>(row - UninstallList::FirstKind));
    }
}

}  // namespace

UninstallAppsTable::UninstallAppsTable(QWidget* parent) : TickOutline(new FlatHeader, parent) {
    setObjectName(QStringLiteral("tableView"));
    setAccessibleName(tr("Applications"));
    headerBox()->setObjectName(QStringLiteral("selectButton"));
    headerBox()->setAccessibleName(tr("Select everything"));
    header()->setSectionsClickable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setExpandsOnDoubleClick(false);
    setRootIsDecorated(false);
    setMouseTracking(true);
}

void UninstallAppsTable::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (currentIndex().isValid() && !event->isAutoRepeat()) Q_EMIT detailsWanted();
            return;
        case Qt::Key_Delete: Q_EMIT removalWanted(); return;
        default: TickOutline::keyPressEvent(event);
    }
}

void UninstallAppsTable::resizeEvent(QResizeEvent* event) {
    setColumnHidden(UninstallAppsModel::Created, viewport()->width() < roomForDate);
    setColumnHidden(UninstallAppsModel::LastUse, viewport()->width() < roomForUse);
    TickOutline::resizeEvent(event);
}

UninstallAppsViews::UninstallAppsViews(NotificationCenter& notifications)
    : ResultFrame({.viewName = "uninstallView",
                   .backName = "backButton",
                   .removedName = "removedLabel",
                   .dropName = {},
                   .invitation = {},
                   .backTip = {},
                   .picture = QStringLiteral("uninstall"),
                   .bottomSpacing = Theme::gap}) {
    backButton->hide();
    resultDragView->setAcceptDrops(false);
    initLeftView(notifications);
    fillHead(notifications);
    fillContent();
    fillBottom();
    putTogether(leftView);
}

void UninstallAppsViews::initLeftView(const NotificationCenter& notifications) {
    leftView = named(new LeftRail, "leftView", tr("Which applications are shown"));
    for (std::int32_t row = 0; row < UninstallList::rowCount; ++row) {
        leftCellArr.push_back(
            new UninstallLeftCell(row, titleOf(row), pictureOf(row), notifications));
        leftView->add(leftCellArr.back());
        leftCellArr.back()->setVisible(row < UninstallList::FirstKind);
    }
}

void UninstallAppsViews::fillHead(NotificationCenter& notifications) {
    head->setContentsMargins(Theme::gapLarge, 0, Theme::gap, 0);
    filterField = makeFilterField(tr("Filter by name"));
    lockButton = new Padlock(notifications);
    head->addWidget(filterField);
    head->addWidget(lockButton);
}

void UninstallAppsViews::fillContent() {
    tableView = new UninstallAppsTable;
    selectButton = tableView->headerBox();
    searchView = named(new Panel(Theme::Color::Surface), "searchView");
    auto* const column = new QVBoxLayout(searchView);
    searchAppsIndicator = named(new Spinner, "searchAppsIndicator", tr("Looking for applications"));
    column->addWidget(searchAppsIndicator, 0, Qt::AlignCenter);
    const EmptyView empty = makeEmptyView(QStringLiteral("empty_search"), false);
    emptyView = empty.view;
    emptyLabel = empty.label;
    content->addWidget(tableView);
    content->addWidget(searchView);
    content->addWidget(emptyView);
}

void UninstallAppsViews::fillBottom() {
    // A result needs two or three lines in a small window.
    uninstallTextField = makeLabel("uninstallTextField", Theme::Text::Caption);
    uninstallTextField->setWordWrap(true);
    uninstallTextField->setAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    uninstallTextField->hide();
    stopButton = named(new TextImageButton(tr("Stop")), "stopButton");
    stopButton->hide();
    uninstallButton = named(new TextImageButton(tr("Uninstall"), TextImageButton::Role::Danger),
                            "uninstallButton");
    uninstallButton->setEnabled(false);
    bottom->insertWidget(0, uninstallTextField, 1);
    bottom->addWidget(stopButton);
    bottom->addWidget(uninstallButton);
}

}  // namespace orrinvale
