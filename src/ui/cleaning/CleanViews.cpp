// ResultFrame makes what all pages have; here is what only this one has.
#include "ui/cleaning/CleanViews.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "ui/cleaning/DiskRing.h"
#include "ui/cleaning/ScanListView.h"
#include "ui/cleaning/cleanWords.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/DragView.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/Panel.h"
#include "ui/kit/controls/QnProgressView.h"
#include "ui/kit/controls/filterField.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/page/Padlock.h"

namespace orrinvale {
namespace {

constexpr int noteWidth = 560;
constexpr int lowLineHeight = 24;
// The words of a button begin inside it; what stands above and below begins with them.
constexpr int noteInset = Theme::gapSmall + 2;

}  // namespace

CleanViews::CleanViews(NotificationCenter& notifications)
    : ResultFrame({.viewName = "cleanView",
                   .backName = "scanButton",
                   .removedName = "removedLine",
                   .dropName = {},
                   .invitation = {},
                   .backTip = tr("Back"),
                   .picture = QStringLiteral("my_mac_b.png"),
                   .bottomSpacing = Theme::gapSmall}) {
    resultDragView->setAcceptDrops(false);
    backButton->setImage(QStringLiteral("back_index.png"));
    makeStartView();
    customTableView = new CustomTableView(notifications);
    fillHead(notifications);
    fillContent(notifications);
    fillBottom();
    putTogether(customTableView, makeNoteBar());
}

CleanViews::~CleanViews() {
    if (startView != nullptr && startView->parentWidget() == nullptr) delete startView.data();
}

void CleanViews::makeStartView() {
    startView = named(new Panel(Theme::Color::Window), "startView");
    diskRing = new DiskRing;
    startHeading = makeLabel("startHeading", Theme::Text::Title);
    startNote = named(new FigureLabel, "startNote");
    startNote->setAlignment(Qt::AlignCenter);
    startNote->setWordWrap(true);
    startNote->setFixedWidth(noteWidth);
    QLabel* const hint = makeLabel("startHint", Theme::Text::Body, QPalette::PlaceholderText);
    hint->setText(
        tr("Caches, old logs, the trash and downloads are looked through. Nothing is "
           "removed until you tick it and confirm."));
    hint->setWordWrap(true);
    hint->setFixedWidth(noteWidth);
    hint->setMinimumHeight(hint->heightForWidth(noteWidth));
    startButton =
        named(new TextImageButton(tr("Scan"), TextImageButton::Role::Primary), "startButton");
    forwardButton = named(new HoverButton, "forwardButton");
    forwardButton->setText(tr("Show what was found"));
    forwardButton->hide();
    auto* const column = new QVBoxLayout(startView);
    column->setContentsMargins(Theme::gapSection, Theme::gapSection, Theme::gapSection,
                               Theme::gapSection);
    column->setSpacing(Theme::gap);
    column->addStretch();
    column->addWidget(startButton, 0, Qt::AlignHCenter);  // the first stop of the Tab key
    column->addWidget(forwardButton, 0, Qt::AlignHCenter);
    column->addStretch();
    column->insertWidget(1, diskRing, 0, Qt::AlignHCenter);
    column->insertWidget(2, startHeading);
    column->insertWidget(3, hint, 0, Qt::AlignHCenter);
    column->insertSpacing(4, Theme::gapSmall);
    column->addWidget(startNote, 0, Qt::AlignHCenter);
}

// What the last clean came to stands where its progress stood, and what is kept beside it: the bar
// below has room for no more than one sentence in a narrow window.
QLayout* CleanViews::makeResultLine() {
    gainLabel = named(new ElidedLabel, "gainLabel");
    gainLabel->setFont(Theme::shared().font(Theme::Text::Body));
    gainLabel->setForegroundRole(QPalette::PlaceholderText);
    gainLabel->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    gainLabel->hide();
    gainLabel->setContentsMargins(noteInset, 0, 0, 0);
    auto* const result = new QHBoxLayout;
    result->setSpacing(Theme::gapTiny);
    result->addWidget(gainLabel);
    gainReason = named(new HoverButton, "gainReason");
    gainReason->setText(tr("Why less?"));
    gainReason->hide();
    for (HoverButton* const line : {gainReason, failureLine, quietLine}) {
        line->setFixedHeight(lowLineHeight);
        result->addWidget(line);
    }
    keptReason = named(new ElidedLabel, "keptReason");
    keptReason->setFont(Theme::shared().font(Theme::Text::Body));
    keptReason->setForegroundRole(QPalette::PlaceholderText);
    keptReason->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);  // what the others leave
    keptReason->hide();
    result->addWidget(keptReason, 1);
    result->addStretch();
    return result;
}

QWidget* CleanViews::makeNoteBar() {
    noteBar = named(new Panel(Theme::Color::Window, Qt::BottomEdge), "noteBar");
    noteTextField = named(new FigureLabel, "noteTextField");
    noteTextField->setContentsMargins(noteInset, 0, 0, 0);
    noteTextField->setWordWrap(true);
    noteTextField->setForegroundRole(QPalette::PlaceholderText);
    // Two lines, the first with its large figure: else a low window takes the second from it.
    const auto lineHeight = [](Theme::Text text) {
        return QFontMetrics(Theme::shared().font(text)).height();
    };
    noteTextField->setMinimumHeight(lineHeight(Theme::Text::Title) + lineHeight(Theme::Text::Body));
    totalProgress = named(new QnProgressView, "totalProgress", tr("Progress"));
    auto* const progress = new QHBoxLayout;
    progress->setContentsMargins(noteInset, 0, 0, 0);
    progress->addWidget(totalProgress);
    auto* const column = new QVBoxLayout(noteBar);
    column->setContentsMargins(Theme::gapLarge - noteInset, Theme::gapSmall, Theme::gapLarge,
                               Theme::gapSmall);
    column->setSpacing(Theme::gapSmall);
    column->addWidget(noteTextField);
    column->addLayout(makeResultLine());
    column->addLayout(progress);
    return noteBar;
}

void CleanViews::fillHead(NotificationCenter& notifications) {
    outlineButton = named(new HoverButton, "outlineButton");
    outlineButton->setText(tr("Show All Entries"));
    filterField = makeFilterField(tr("Show only names with these words"));
    rescanButton = makeImageButton("rescanButton", QStringLiteral("refresh"), tr("Scan again"));
    lockButton = new Padlock(notifications);
    for (QWidget* const each :
         {static_cast<QWidget*>(outlineButton), static_cast<QWidget*>(filterField),
          static_cast<QWidget*>(rescanButton), static_cast<QWidget*>(lockButton)})
        head->addWidget(each);
    // Where there is little room the field gives it to the title, whose figure a person looks for.
    head->setStretchFactor(titleLabel, 3);
    head->setStretchFactor(filterField, 1);
}

void CleanViews::fillContent(NotificationCenter& notifications) {
    v3MainView = named(new Panel(Theme::Color::Surface), "v3MainView");
    auto* const overview = new QVBoxLayout(v3MainView);
    overview->setContentsMargins({});
    overview->setSpacing(0);
    myMacPlace = new QVBoxLayout;
    overview->addLayout(myMacPlace);
    content->addWidget(v3MainView);
    for (std::size_t i = 0; i < allNewViewArr.size(); ++i) {
        allNewViewArr.at(i) = new V3MainListView(std::int32_t(i), notifications);
        overview->addWidget(allNewViewArr.at(i), 1);
        const QString title = cleanRowTitle(int(i) + 1);
        lists.at(i) = new ScanListView(QStringLiteral("list%1").arg(i),
                                       QStringLiteral("selectButton%1").arg(i), title,
                                       tr("Tick everything in %1").arg(title));
        content->addWidget(lists.at(i));
    }
    overview->addStretch();
    diskSizePlace = named(new QWidget, "diskSizePlace");
    (new QVBoxLayout(diskSizePlace))->setContentsMargins({});
    content->addWidget(diskSizePlace);
    const EmptyView empty = makeEmptyView(QStringLiteral("empty_done"), false);
    emptyView = empty.view;
    emptyLabel = empty.label;
    content->addWidget(emptyView);
}

void CleanViews::fillBottom() {
    stateTextField = named(new FigureLabel, "stateTextField");
    stopButton = named(new TextImageButton(tr("Stop")), "stopButton");
    cleanButton =
        named(new TextImageButton(tr("Clean"), TextImageButton::Role::Danger), "cleanButton");
    oneListCleanButton = named(new TextImageButton(tr("Clean"), TextImageButton::Role::Danger),
                               "oneListCleanButton");
    // What was selected or cleaned comes first.
    bottom->insertWidget(0, stateTextField);
    for (QWidget* const each :
         {static_cast<QWidget*>(stopButton), static_cast<QWidget*>(cleanButton),
          static_cast<QWidget*>(oneListCleanButton)})
        bottom->addWidget(each);
}

}  // namespace orrinvale
