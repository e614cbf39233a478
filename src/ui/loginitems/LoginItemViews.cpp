#include "ui/loginitems/LoginItemViews.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/Panel.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/lists/FlatHeader.h"
#include "ui/kit/lists/LeftRail.h"
#include "ui/kit/lists/LeftRow.h"
#include "ui/kit/lists/RowDelegate.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/kit/lists/TickOutline.h"
#include "ui/page/ResultFrame.h"

namespace orrinvale {

LoginItemViews::LoginItemViews() {
    makeList();
    initBottomView();
    putTogether();
}

LoginItemViews::~LoginItemViews() {
    if (view != nullptr && view->parentWidget() == nullptr) delete view.data();
}

void LoginItemViews::makeList() {
    tableView = named(new TickOutline(new FlatHeader, nullptr), "tableView", tr("Login items"));
    tableView->setRootIsDecorated(false);
    tableView->setDragEnabled(true);
    tableView->setAcceptDrops(true);
    tableView->setDropIndicatorShown(true);
    tableView->setDragDropMode(QAbstractItemView::DragDrop);
    tableView->setDefaultDropAction(Qt::CopyAction);
    tableView->setMouseTracking(true);
    backgroundList = named(new QListWidget, "backgroundList", tr("Background services"));
    backgroundList->setFrameShape(QFrame::NoFrame);
    backgroundList->setSelectionMode(QAbstractItemView::NoSelection);
    auto* const background = new Panel(Theme::Color::Surface);
    auto* const inside = new QVBoxLayout(background);
    inside->setContentsMargins(Theme::gap, Theme::gapSmall, Theme::gap, Theme::gapSmall);
    inside->addWidget(backgroundList);
    const EmptyView empty = makeEmptyView(QStringLiteral("empty_done"), false);
    emptyLabel = empty.label;
    content = named(new QStackedWidget, "content");
    content->addWidget(tableView);
    content->addWidget(background);
    content->addWidget(empty.view);
    const EmptyView failed = makeEmptyView(QStringLiteral("empty_error"), false);
    named(failed.label, "failedLabel");
    failed.label->setText(tr("What starts at login could not be read."));
    content->addWidget(failed.view);
}

void LoginItemViews::initBottomView() {
    using Role = TextImageButton::Role;
    loginItemBottom = named(new Panel(Theme::Color::Surface, Qt::TopEdge), "loginItemBottom");
    loginItemBottom->setFixedHeight(ResultFrame::barHeight);
    quietLine = named(new ElidedLabel, "quietLine");
    quietLine->setForegroundRole(QPalette::PlaceholderText);
    hideBox = named(new TickBox(tr("Start hidden")), "hideBox");
    addButton = named(new TextImageButton(tr("Add …"), Role::Primary), "addButton");
    addButton->setToolTip(tr("Add login item"));
    auto* const row = new QHBoxLayout(loginItemBottom);
    row->setContentsMargins(Theme::gapLarge, 0, Theme::gap, 0);
    row->setSpacing(Theme::gap);
    row->addWidget(quietLine, 1);
    row->addWidget(hideBox);
    row->addWidget(addButton);
}

void LoginItemViews::putTogether() {
    view = named(new Panel(Theme::Color::Window), "loginItemsView");
    auto* const head = new Panel(Theme::Color::Surface, Qt::BottomEdge);
    head->setFixedHeight(ResultFrame::barHeight);
    titleLabel = named(new ElidedLabel, "titleLabel");
    titleLabel->setFont(Theme::shared().font(Theme::Text::BodyStrong));
    auto* const headRow = new QHBoxLayout(head);
    headRow->setContentsMargins(Theme::gapLarge, 0, Theme::gapLarge, 0);
    headRow->setSpacing(Theme::gapSmall);
    headRow->addWidget(new PictureView(QStringLiteral("login_items"), {20, 20}));
    headRow->addWidget(titleLabel, 1);
    rail = new LeftRail;
    rail->add(new LeftRow({.title = tr("Applications"), .picture = QStringLiteral("ic_app")}));
    rail->add(new LeftRow({.title = tr("Background"), .picture = QStringLiteral("refresh")}));
    rail->select(Items);
    auto* const right = new QVBoxLayout;
    right->setSpacing(0);
    right->addWidget(head);
    right->addWidget(content, 1);
    right->addWidget(loginItemBottom);
    auto* const row = new QHBoxLayout(view);
    row->setContentsMargins({});
    row->setSpacing(0);
    row->addWidget(rail);
    row->addLayout(right, 1);
}

void LoginItemViews::showServices(const std::vector<std::pair<QString, QString>>& services) const {
    backgroundList->clear();
    for (const auto& [name, description] : services) {
        auto* const item = new QListWidgetItem(
            description.isEmpty() ? name : QStringLiteral("%1  (%2)").arg(description, name));
        item->setSizeHint({0, RowDelegate::rowHeight});
        backgroundList->addItem(item);
    }
}

}  // namespace orrinvale
