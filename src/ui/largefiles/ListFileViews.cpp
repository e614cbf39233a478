// FolderStart and ResultFrame make what both pages have; here is what only this one has.
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
#include "ui/kit/controls/QnProgressView.h"
#include "ui/kit/controls/SegmentedControl.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/look/Theme.h"
#include "ui/largefiles/LargestFilesView.h"
#include "ui/largefiles/NewOutlineView.h"
#include "ui/preview/PreviewHost.h"
#include "ui/preview/PreviewPane.h"

namespace orrinvale {
ListFileViews::ListFileViews()
    : ResultFrame({.viewName = "listView",
                   .backName = "backHomeButton",
                   .removedName = "removedLabel",
                   .dropName = tr("Drop a folder here to look into it"),
                   .invitation = tr("Drop the folder to look into it"),
                   .backTip = tr("Look into another folder"),
                   .picture = QStringLiteral("folder"),
                   .bottomSpacing = Theme::gap}),
      listView(resultView) {
    makeStartPage();
    makeSwitch();
    fillContent();
    fillBottom();
    putTogether();
    previewPane = new PreviewPane;
    constexpr int leastBeside = 1000;  // with less names give way to their paths
    previewHost = new PreviewHost(*content, *previewPane, leastBeside);
    previewHost->addList(*outlineView, *outlineView);
    previewHost->addList(*filesView, *filesView->filesList);
}

ListFileViews::~ListFileViews() {
    if (aLoadView != nullptr && aLoadView->parentWidget() == nullptr) delete aLoadView.data();
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

void ListFileViews::makeSwitch() {
    viewSwitch = named(new SegmentedControl({tr("Folders"), tr("Largest Files")}), "viewSwitch",
                       tr("What the list shows"));
    head->addWidget(viewSwitch);
}

void ListFileViews::fillContent() {
    previewBtn = makePreviewButton();
    head->addWidget(previewBtn);
    outlineView = new NewOutlineView;
    selectAllButton = outlineView->headerBox();
    const EmptyView empty = makeEmptyView(QStringLiteral("empty_folder"), false);
    emptyView = empty.view;
    emptyLabel = empty.label;
    filesView = new LargestFilesView;
    content->addWidget(outlineView);
    content->addWidget(filesView);
    content->addWidget(emptyView);
}

void ListFileViews::fillBottom() {
    bottom->setStretch(bottom->count() - 1, 1);  // as much as the note about one folder
    tickedLabel = makeLabel("tickedLabel", Theme::Text::Body, QPalette::PlaceholderText);
    tickedLabel->hide();
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
    bottom->addWidget(tickedLabel);
    bottom->addWidget(progressLabel);
    bottom->addWidget(stopScanButton);
    bottom->addWidget(deleteButton);
}

void ListFileViews::showProgress() {
    if (progressView != nullptr) return;
    progressLabel->setText(shownPercent(QStringLiteral("0")));
    progressLabel->show();
    progressView = named(new QnProgressView, "progressView", tr("Progress of the scan"));
    constexpr int wide = 1000;  // all of the free space of the bar, whose spring has 1
    bottom->insertWidget(bottom->indexOf(progressLabel), progressView, wide);
}

void ListFileViews::removeProgress() {
    progressLabel->hide();
    delete std::exchange(progressView, nullptr);
}

}  // namespace orrinvale
