// ListFileViews: see ListFileViews.h.
#include "ui/largefiles/ListFileViews.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <utility>

#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/DragView.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/FolderStart.h"
#include "ui/kit/controls/Panel.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/look/Theme.h"
#include "ui/largefiles/NewOutlineView.h"
#include "ui/largefiles/QnProgressView.h"

namespace orrinvale {
namespace {

constexpr int barHeight = 52;

}  // namespace

ListFileViews::ListFileViews() {
    makeStartPage();
    makeResultPage();
}

ListFileViews::~ListFileViews() {
    for (const auto& view : {aLoadView, listView})
        if (view != nullptr && view->parentWidget() == nullptr) delete view.data();
}

void ListFileViews::makeStartPage() {
    const FolderStart start = makeFolderStart(
        {.viewName = "aLoadView",
         .buttonName = "selectFileButton",
         .dropName = tr("Drop a folder here to see what is large in it"),
         .pictureName = tr("Choose a folder to look into"),
         .heading = tr("See what takes up the space"),
         .hint =
             tr("Drop a folder here, or choose one. The biggest files and folders come first.")});
    aLoadView = start.view;
    dragView = start.dragView;
    animationHoverImageView = start.animationHoverImageView;
    selectFileButton = start.button;
}

QWidget* ListFileViews::makeTopBar() {
    auto* const bar = new Panel(Theme::Color::Surface, Qt::BottomEdge);
    bar->setFixedHeight(barHeight);
    backHomeButton = makeImageButton("backHomeButton", QStringLiteral("arrow_left"),
                                     tr("Look into another folder"));
    titleLabel = named(new ElidedLabel(Qt::ElideMiddle), "titleLabel");
    titleLabel->setFont(Theme::shared().font(Theme::Text::BodyStrong));
    auto* const row = new QHBoxLayout(bar);
    row->setContentsMargins(Theme::gapSmall, 0, Theme::gap, 0);
    row->setSpacing(Theme::gapSmall);
    row->addWidget(backHomeButton);
    row->addWidget(new PictureView(QStringLiteral("folder"), {20, 20}));
    row->addWidget(titleLabel, 1);
    return bar;
}

QWidget* ListFileViews::makeContent() {
    content = named(new QStackedWidget, "content");
    outlineView = new NewOutlineView;
    selectAllButton = outlineView->headerBox();
    emptyView = named(new Panel(Theme::Color::Surface), "emptyView");
    emptyLabel = makeLabel("emptyLabel", Theme::Text::Heading);
    emptyLabel->setWordWrap(true);
    auto* const empty = new QVBoxLayout(emptyView);
    empty->addStretch();
    empty->addWidget(new PictureView(QStringLiteral("empty_folder")), 0, Qt::AlignHCenter);
    empty->addWidget(emptyLabel);
    empty->addStretch();
    content->addWidget(outlineView);
    content->addWidget(emptyView);
    return content;
}

QWidget* ListFileViews::makeBottomBar() {
    auto* const bar = new Panel(Theme::Color::Surface, Qt::TopEdge);
    bar->setFixedHeight(barHeight);
    quietLine = named(new HoverButton, "quietLine");
    failureLine = named(new HoverButton, "failureLine");
    removedLabel = makeLabel("removedLabel", Theme::Text::Body, QPalette::PlaceholderText);
    quietLine->hide();
    removedLabel->hide();
    failureLine->hide();
    progressLabel = makeLabel("progressLabel", Theme::Text::Body, QPalette::PlaceholderText);
    progressLabel->setAlignment(Qt::AlignTrailing | Qt::AlignVCenter);
    // As wide as it ever gets, so that the bar beside it keeps its width.
    progressLabel->setMinimumWidth(
        progressLabel->fontMetrics().horizontalAdvance(shownPercent(QStringLiteral("100.0"))));
    progressLabel->hide();
    stopScanButton = named(new TextImageButton(tr("Stop")), "stopScanButton");
    deleteButton =
        named(new TextImageButton(tr("Delete"), TextImageButton::Role::Danger), "deleteButton");
    deleteButton->setToolTip(tr("Delete what is selected, for good"));
    deleteButton->setEnabled(false);
    m_bottom = new QHBoxLayout(bar);
    m_bottom->setContentsMargins(Theme::gap, 0, Theme::gap, 0);
    m_bottom->setSpacing(Theme::gap);
    m_bottom->addWidget(quietLine);
    m_bottom->addWidget(removedLabel);
    m_bottom->addWidget(failureLine);
    onlyOneNote = named(new ElidedLabel(Qt::ElideMiddle), "onlyOneNote");
    onlyOneNote->setFont(Theme::shared().font(Theme::Text::Caption));
    onlyOneNote->setForegroundRole(QPalette::PlaceholderText);
    onlyOneNote->hide();
    m_bottom->addWidget(onlyOneNote, 1);
    m_bottom->addStretch(1);
    m_bottom->addWidget(progressLabel);
    m_bottom->addWidget(stopScanButton);
    m_bottom->addWidget(deleteButton);
    return bar;
}

void ListFileViews::makeResultPage() {
    listView = named(new Panel(Theme::Color::Window), "listView");
    resultDragView =
        named(new DragView(listView), "resultDragView", tr("Drop a folder here to look into it"));
    resultDragView->setFrameAtRest(false);
    auto* const around = new QVBoxLayout(listView);
    around->setContentsMargins({});
    around->addWidget(resultDragView);
    auto* const column = new QVBoxLayout(resultDragView);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(makeTopBar());
    column->addWidget(makeContent(), 1);
    column->addWidget(makeBottomBar());
    resultDragView->setInvitation(tr("Drop the folder to look into it"));
}

void ListFileViews::showProgress() {
    if (progressView != nullptr) return;
    progressLabel->setText(shownPercent(QStringLiteral("0")));
    progressLabel->show();
    progressView = named(new QnProgressView, "progressView", tr("Progress of the scan"));
    constexpr int wide = 1000;  // all of the free space of the bar, whose spring has 1
    m_bottom->insertWidget(m_bottom->indexOf(progressLabel), progressView, wide);
}

void ListFileViews::removeProgress() {
    progressLabel->hide();
    delete std::exchange(progressView, nullptr);
}

}  // namespace orrinvale
