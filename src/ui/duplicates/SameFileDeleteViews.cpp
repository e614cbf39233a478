// FolderStart and ResultFrame make what both pages have; here is what only this one has. The
// engine's titles of the rows stand here again, to be translated.
#include "ui/duplicates/SameFileDeleteViews.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

#include "engine/duplicates/results/ResultViews.h"
#include "ui/duplicates/ResultOutline.h"
#include "ui/kit/chrome/AnimationHoverImageView.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/Animation.h"
#include "ui/kit/controls/DragView.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/FolderStart.h"
#include "ui/kit/controls/Panel.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/lists/LeftRail.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/kit/look/Theme.h"
#include "ui/page/Padlock.h"
#include "ui/preview/PreviewHost.h"
#include "ui/preview/PreviewPane.h"

namespace orrinvale {
namespace {

constexpr int imageSide = 64;

// The titles of engine/duplicates/results/ResultViews.h.
constexpr std::array titles{
    QT_TRANSLATE_NOOP("ResultRow", "All"),      QT_TRANSLATE_NOOP("ResultRow", "Documents"),
    QT_TRANSLATE_NOOP("ResultRow", "Videos"),   QT_TRANSLATE_NOOP("ResultRow", "Music"),
    QT_TRANSLATE_NOOP("ResultRow", "Archives"), QT_TRANSLATE_NOOP("ResultRow", "Pictures"),
    QT_TRANSLATE_NOOP("ResultRow", "Others"),
};
static_assert(std::ranges::equal(
                  titles, resultRows, {}, [](const char* title) { return std::string_view(title); },
                  &ResultRow::title),
              "a row of the engine has another title here");

}  // namespace

QString resultRowTitle(std::size_t row) {
    return QCoreApplication::translate("ResultRow", titles.at(row));
}

SameFileDeleteViews::SameFileDeleteViews(NotificationCenter& notifications)
    : ResultFrame({.viewName = "detailView",
                   .backName = "backButton",
                   .removedName = "removedLine",
                   .dropName = tr("Drop a folder here to search it"),
                   .invitation = tr("Drop the folder to search it"),
                   .backTip = tr("Search another folder"),
                   .picture = QStringLiteral("all"),
                   .bottomSpacing = Theme::gapSmall}),
      detailView(resultView) {
    makeLoadPathView();
    makeFirstView();
    makeProgressView(notifications);
    fillHead(notifications);
    fillContent();
    fillBottom();
    putTogether(makeLeftView(notifications));
    previewPane = new PreviewPane;
    constexpr int leastBeside = 720;
    previewHost = new PreviewHost(*content, *previewPane, leastBeside);
    previewHost->addList(*outline, *outline);
    showLoadPathInProgress();
}

SameFileDeleteViews::~SameFileDeleteViews() {
    for (const auto& view : {fristView, progressageView})
        if (view != nullptr && view->parentWidget() == nullptr) delete view.data();
}

void SameFileDeleteViews::makeFirstView() {
    const FolderStart start =
        makeFolderStart({.viewName = "fristView",
                         .buttonName = "pathChoseBtn",
                         .dropName = tr("Drop a folder here to search it"),
                         .pictureName = tr("Choose a folder to search"),
                         .heading = tr("Find files that you have twice"),
                         .hint = tr("Drop a folder here, or choose one. Nothing is removed until "
                                    "you tick it and confirm.")});
    fristView = start.view;
    dragView = start.dragView;
    animationHoverImageView = start.animationHoverImageView;
    pathChoseBtn = start.button;
    pathChoseBtn->setToolTip(tr("Select scan path"));
    searchBtn = named(new TextImageButton(tr("Scan")), "searchBtn");
    searchBtn->setToolTip(tr("Scan"));
    searchBtn->hide();  // a search begins with the folder
    logoButton = named(new HoverButton, "logoButton", tr("Open the web page of Orrinvale"));
    logoButton->setText(tr("Orrinvale on the web"));

    // Between the button and the free space below it.
    scopeBtn = named(new TextImageButton(tr("Several Folders\u2026"), TextImageButton::Role::Link),
                     "scopeBtn");
    scopeBtn->setToolTip(tr("Search several folders as one, protect some, leave things out"));
    start.column->insertWidget(start.column->count() - 1, scopeBtn, 0, Qt::AlignHCenter);
    firstMoreBtn =
        named(new TextImageButton(tr("Plans and Removals \u25BE"), TextImageButton::Role::Link),
              "firstMoreBtn");
    firstMoreBtn->setAccessibleName(tr("Plans and Removals"));
    start.column->insertWidget(start.column->count() - 1, firstMoreBtn, 0, Qt::AlignHCenter);
    start.column->insertWidget(start.column->count() - 1, searchBtn, 0, Qt::AlignHCenter);
    start.column->addWidget(logoButton, 0, Qt::AlignHCenter);
}

void SameFileDeleteViews::makeLoadPathView() {
    loadPathView = named(new QWidget, "loadPathView");
    imageView = named(new QLabel, "imageView");
    imageView->setFixedSize(imageSide, imageSide);
    imageView->setScaledContents(true);
    nameTextStr = named(new ElidedLabel(Qt::ElideMiddle), "nameTextStr", tr("At this moment"));
    nameTextStr->setAlignment(Qt::AlignCenter);
    nameTextStr->setFont(Theme::shared().font(Theme::Text::Body));
    countsLabel = makeLabel("countsLabel", Theme::Text::Caption, QPalette::PlaceholderText);
    auto* const column = new QVBoxLayout(loadPathView);
    column->setContentsMargins({});
    column->setSpacing(Theme::gapSmall);
    column->addWidget(imageView, 0, Qt::AlignHCenter);
    column->addWidget(nameTextStr);
    column->addWidget(countsLabel);
}

void SameFileDeleteViews::clearLoadPath() const {
    nameTextStr->setText(QStringLiteral(" "));  // which keeps its height
    imageView->clear();
    countsLabel->clear();
}

void SameFileDeleteViews::makeProgressView(const NotificationCenter& notifications) {
    progressageView = named(new Panel(Theme::Color::Window), "progressageView");
    animation = named(new Animation(notifications), "animation", tr("Progress of the search"));
    progress = makeLabel("progress", Theme::Text::Display);
    onlyOneLabel = makeLabel("onlyOneLabel", Theme::Text::Caption, QPalette::PlaceholderText);
    onlyOneLabel->hide();
    stopScanBtn = named(new TextImageButton(tr("Stop")), "stopScanBtn");
    stopScanBtn->setToolTip(tr("Stop Scan"));
    auto* const column = new QVBoxLayout(progressageView);
    column->setContentsMargins(Theme::gapSection, Theme::gapSection, Theme::gapSection,
                               Theme::gapSection);
    column->setSpacing(Theme::gapLarge);
    column->addStretch();
    column->addWidget(progress);
    column->addWidget(animation, 0, Qt::AlignHCenter);
    column->addSpacing(Theme::gapSmall);
    column->addWidget(onlyOneLabel);
    column->addStretch();
    column->addWidget(stopScanBtn, 0, Qt::AlignHCenter);
}

void SameFileDeleteViews::showLoadPathInProgress() {
    // Below the strip, above the free space over the button.
    constexpr int below = 3;
    static_cast<QVBoxLayout*>(progressageView->layout())->insertWidget(below, loadPathView);
}

void SameFileDeleteViews::showLoadPathInDetail() {
    constexpr int below = 1;
    static_cast<QVBoxLayout*>(removalView->layout())->insertWidget(below, loadPathView);
}

QWidget* SameFileDeleteViews::makeLeftView(const NotificationCenter& notifications) {
    auto* const rail = named(new LeftRail, "leftView", tr("Kinds of files"));
    for (std::size_t row = 0; row < leftCells.size(); ++row) {
        const ResultRow& shown = resultRows.at(row);
        leftCells.at(row) = new DuplicationLeftCell(
            static_cast<std::int32_t>(row), resultRowTitle(row),
            QString::fromUtf8(shown.picture.data(), qsizetype(shown.picture.size())),
            notifications);
        rail->add(leftCells.at(row));
    }
    // Here, since the head has no room left beside its title.
    previewBtn = makePreviewButton();
    static_cast<QVBoxLayout*>(rail->layout())->addWidget(previewBtn, 0, Qt::AlignLeading);
    leftView = rail;
    return leftView;
}

void SameFileDeleteViews::fillHead(NotificationCenter& notifications) {
    btnBgView = named(new QWidget, "btnBgView");
    openBtn = makeImageButton("openBtn", QStringLiteral("preview"), tr("Open selected file"));
    RevealFinder = makeImageButton("RevealFinder", QStringLiteral("locate"),
                                   tr("Reveal selected file in finder"));
    lockButton = new Padlock(notifications);
    keepBtn = named(new TextImageButton(tr("Keep \u25BE")), "keepBtn");
    keepBtn->setAccessibleName(tr("Keep"));
    keepBtn->setToolTip(tr("Choose which copy of each group stays, and tick all others"));
    auto* const buttons = new QHBoxLayout(btnBgView);
    buttons->setContentsMargins({});
    buttons->setSpacing(Theme::gapTiny);
    for (QWidget* const control :
         {static_cast<QWidget*>(keepBtn), static_cast<QWidget*>(openBtn),
          static_cast<QWidget*>(RevealFinder), static_cast<QWidget*>(lockButton)})
        buttons->addWidget(control);
    buttons->insertSpacing(1, Theme::gapSmall);
    head->addWidget(btnBgView);
}

void SameFileDeleteViews::fillContent() {
    outline = new ResultOutline;
    button = outline->headerBox();
    const EmptyView empty = makeEmptyView(QStringLiteral("empty_done"), true);
    emptyView = empty.view;
    emptyLabel = empty.label;
    otherFolderBtn = empty.otherFolder;

    removalView = named(new Panel(Theme::Color::Surface), "removalView");
    auto* const removal = new QVBoxLayout(removalView);
    removal->setContentsMargins(Theme::gapSection, Theme::gapSection, Theme::gapSection,
                                Theme::gapSection);
    removal->addStretch();
    removal->addStretch();

    for (QWidget* const page : {static_cast<QWidget*>(outline), emptyView, removalView})
        content->addWidget(page);
}

void SameFileDeleteViews::fillBottom() {
    // One that gives way, beside Undo.
    auto* const line = named(new ElidedLabel, "removedLine");
    line->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    line->setFont(removedLine->font());
    line->setForegroundRole(QPalette::PlaceholderText);
    line->hide();
    delete bottom->replaceWidget(removedLine, line);  // the old place is ours
    delete removedLine;
    removedLine = line;
    removedLine->setContentsMargins(Theme::gapSmall, 0, Theme::gapSmall, 0);
    undoBtn = named(new HoverButton, "undoBtn");
    undoBtn->setText(tr("Undo"));
    undoBtn->setToolTip(tr("Bring back what was moved to the trash (Ctrl+Z)"));
    againBtn = named(new HoverButton, "againBtn");
    againBtn->setText(tr("Search Again"));
    againBtn->setToolTip(tr("Show what is there now (Ctrl+R)"));
    // Behind the line about what went.
    const int behind = bottom->indexOf(removedLine) + 1;
    for (HoverButton* const each : {againBtn, undoBtn}) {
        each->hide();
        bottom->insertWidget(behind, each);
    }
    gainLabel = named(new ElidedLabel, "gainLabel");
    gainLabel->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    gainLabel->setFont(Theme::shared().font(Theme::Text::Body));
    gainLabel->setForegroundRole(QPalette::PlaceholderText);
    gainLabel->hide();
    otherWayBtn = named(new HoverButton, "otherWayBtn", tr("More"));
    otherWayBtn->setText(QStringLiteral("\u25BE"));
    otherWayBtn->setToolTip(tr("To the trash or for good, sharing, plans, removals of 30 days"));
    trashBtn = named(new PictureView(QStringLiteral("trash"), {20, 20}), "trashBtn");
    // What the button says too, the picture beside it, and what was told since the search: in this
    // order (ResultFrame.cpp).
    gainLabel->setProperty("givesWay", 1);
    trashBtn->setProperty("givesWay", 2);
    quietLine->setProperty("givesWay", 3);
    stopRemoveBtn = named(new TextImageButton(tr("Stop")), "stopRemoveBtn");
    stopRemoveBtn->hide();
    stopBtn = named(new TextImageButton(tr("Remove"), TextImageButton::Role::Danger), "stopBtn");
    stopBtn->setToolTip(tr("Remove selected file"));
    stopBtn->setAccessibleName(tr("Remove"));  // its text counts
    stopBtn->setEnabled(false);
    for (QWidget* const each : {static_cast<QWidget*>(gainLabel), static_cast<QWidget*>(trashBtn),
                                static_cast<QWidget*>(stopRemoveBtn),
                                static_cast<QWidget*>(otherWayBtn), static_cast<QWidget*>(stopBtn)})
        bottom->addWidget(each);
}

}  // namespace orrinvale
