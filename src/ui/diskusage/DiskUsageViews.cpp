// FolderStart and ResultFrame make what the pages share; here is what only this one has.
#include "ui/diskusage/DiskUsageViews.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "ui/diskusage/ItemFacts.h"
#include "ui/diskusage/TreemapView.h"
#include "ui/kit/chrome/AnimationHoverImageView.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/columns/ColumnBrowser.h"
#include "ui/kit/controls/Animation.h"
#include "ui/kit/controls/DragView.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/FolderStart.h"
#include "ui/kit/controls/Panel.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/lists/LeftRail.h"
#include "ui/page/Padlock.h"
#include "ui/page/PageStack.h"

namespace orrinvale {
namespace {

constexpr int stripHeight = 40;

}  // namespace

DiskUsageViews::DiskUsageViews(NotificationCenter& notifications, const FileSystem& files)
    : ResultFrame({.viewName = "resultPage",
                   .backName = "backButton",
                   .removedName = "removedLabel",
                   .dropName = tr("Drop a folder here to see what fills it"),
                   .invitation = tr("Drop the folder to see what fills it"),
                   .backTip = tr("Back to the places"),
                   .picture = QStringLiteral("disk_usage"),
                   .bottomSpacing = Theme::gapSmall}) {
    page = named(new QWidget, "diskUsagePage");
    leftView = named(new QScrollArea, "leftView");
    leftView->setFrameShape(QFrame::NoFrame);
    leftView->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    leftView->setWidgetResizable(true);
    leftView->setFixedWidth(LeftRail::railWidth);
    leftView->setFocusPolicy(Qt::NoFocus);
    stack = new PageStack("usageStack");
    makeStart();
    fillHead(notifications);
    fillContent(notifications, files);
    fillBottom();
    putTogether();
    auto* const row = new QHBoxLayout(page);
    row->setContentsMargins({});
    row->setSpacing(0);
    row->addWidget(leftView);
    row->addWidget(stack, 1);
    stack->showView(resultView);  // both are in the page from the start
    stack->showView(diskUsageView);
}

DiskUsageViews::~DiskUsageViews() {
    if (diskUsageView != nullptr && diskUsageView->parentWidget() == nullptr) delete diskUsageView;
    if (page != nullptr && page->parentWidget() == nullptr) delete page.data();
}

void DiskUsageViews::setRail(LeftRail* rail) {
    // The row before may be in the middle of telling of its click.
    if (QWidget* const before = leftView->takeWidget()) before->deleteLater();
    leftView->setWidget(rail);
    rail->show();
}

void DiskUsageViews::makeStart() {
    const FolderStart start = makeFolderStart(
        {.viewName = "diskUsageView",
         .buttonName = "chooseButton",
         .dropName = tr("Drop a folder here to see what fills it"),
         .pictureName = tr("Choose a folder to look into"),
         .heading = tr("See what fills your disk"),
         .hint = tr("Choose a place on the left, or drop a folder here. Walk down to what is "
                    "large, and remove it.")});
    diskUsageView = start.view;
    dragView = start.dragView;
    animationHoverImageView = start.animationHoverImageView;
    animationHoverImageView->setImages(QStringLiteral("dq"), QStringLiteral("dq_hover"),
                                       QStringLiteral("dq_hover"));
    chooseButton = start.button;
}

void DiskUsageViews::fillHead(NotificationCenter& notifications) {
    columnsBtn = makeImageButton("columnsBtn", QStringLiteral("view_columns"), tr("Columns"));
    mapBtn = makeImageButton("mapBtn", QStringLiteral("view_map"), tr("Map"));
    changesBtn = makeImageButton("changesBtn", QStringLiteral("view_changes"), tr("Changes"));
    auto* const looks = new QButtonGroup(columnsBtn);
    for (TCImageButton* const each : {columnsBtn, mapBtn, changesBtn}) {
        each->setCheckable(true);
        looks->addButton(each);
        head->addWidget(each);
    }
    columnsBtn->setChecked(true);
    head->addSpacing(Theme::gapSmall);
    compareBtn = named(new TextImageButton(tr("Compare")), "compareBtn");
    head->addWidget(compareBtn);
    head->addSpacing(Theme::gapSmall);
    scanBtn = makeImageButton("scanBtn", QStringLiteral("refresh"), tr("Scan"));
    openFinderBtn =
        makeImageButton("openFinderBtn", QStringLiteral("preview"), tr("Open selected file"));
    revealFinderBtn =
        makeImageButton("revealFinderBtn", QStringLiteral("locate"), tr("Reveal selected file"));
    lockButton = new Padlock(notifications);
    for (TCImageButton* const each :
         {scanBtn, openFinderBtn, revealFinderBtn, static_cast<TCImageButton*>(lockButton)})
        head->addWidget(each);
}

void DiskUsageViews::makeStrip(const NotificationCenter& notifications) {
    stripBar = named(new Panel(Theme::Color::SurfaceRaised, Qt::BottomEdge), "stripBar");
    stripBar->setFixedHeight(stripHeight);
    animation = named(new Animation(notifications), "animation", tr("Progress of the scan"));
    stripLabel = named(new ElidedLabel(Qt::ElideMiddle), "stripLabel");
    stripLabel->setForegroundRole(QPalette::PlaceholderText);
    stopBtn = named(new TextImageButton(tr("Stop")), "stopBtn");
    stopBtn->setToolTip(tr("Stop Scan"));
    auto* const row = new QHBoxLayout(stripBar);
    row->setContentsMargins(Theme::gap, 0, Theme::gap, 0);
    row->setSpacing(Theme::gap);
    row->addWidget(animation);
    row->addWidget(stripLabel, 1);
    row->addWidget(stopBtn);
}

void DiskUsageViews::makeMap() {
    mapView = named(new Panel(Theme::Color::Window), "mapView");
    mapUpBtn = makeImageButton("mapUpBtn", QStringLiteral("chevron_up"), tr("To the folder above"));
    mapLine = named(new ElidedLabel(Qt::ElideMiddle), "mapLine");
    map = named(new TreemapView, "map", tr("Map of the folder"));
    auto* const line = new QHBoxLayout;
    line->setContentsMargins(Theme::gapSmall, 0, Theme::gap, 0);
    line->setSpacing(Theme::gapSmall);
    line->addWidget(mapUpBtn);
    line->addWidget(mapLine, 1);
    auto* const column = new QVBoxLayout(mapView);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addLayout(line);
    column->addWidget(map, 1);
    mapView->setFocusProxy(map);
}

void DiskUsageViews::fillContent(const NotificationCenter& notifications, const FileSystem& files) {
    makeStrip(notifications);
    shown = named(new QStackedWidget, "shown");
    browser = named(new ColumnBrowser, "browser", tr("Folders and files by size"));
    const EmptyView empty = makeEmptyView(QStringLiteral("empty_folder"), true);
    emptyView = empty.view;
    emptyLabel = empty.label;
    otherFolderBtn = empty.otherFolder;
    itemFacts = named(new ItemFacts(files), "itemFacts");
    browser->setDetail(itemFacts);
    makeMap();
    shown->addWidget(browser);
    changes = named(new ColumnBrowser, "changes", tr("What changed, the biggest change first"));
    shown->addWidget(mapView);
    shown->addWidget(changes);
    shown->addWidget(emptyView);
    auto* const around = new QWidget;
    auto* const column = new QVBoxLayout(around);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(stripBar);
    column->addWidget(shown, 1);
    content->addWidget(around);
}

void DiskUsageViews::fillBottom() {
    grownLine = named(new HoverButton, "grownLine");
    grownLine->setToolTip(tr("Show what changed since then"));
    grownLine->hide();
    bottom->insertWidget(bottom->indexOf(quietLine) + 1, grownLine);
    tickedLabel = makeLabel("tickedLabel", Theme::Text::Body, QPalette::PlaceholderText);
    tickedLabel->hide();
    trashBtn = named(new PictureView(QStringLiteral("trash"), {20, 20}), "trashBtn");
    removeBtn =
        named(new TextImageButton(tr("Remove"), TextImageButton::Role::Danger), "removeBtn");
    removeBtn->setToolTip(tr("Remove selected file"));
    removeBtn->setEnabled(false);
    for (QWidget* const each : {static_cast<QWidget*>(tickedLabel), static_cast<QWidget*>(trashBtn),
                                static_cast<QWidget*>(removeBtn)})
        bottom->addWidget(each);
}

}  // namespace orrinvale
