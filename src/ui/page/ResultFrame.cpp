// ResultFrame: built in code from the controls of the kit; FolderStart.h is the view before it.
#include "ui/page/ResultFrame.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/DragView.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/Panel.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {

ResultFrame::ResultFrame(const ResultFrameParts& parts) {
    resultView = named(new Panel(Theme::Color::Window), parts.viewName);
    resultDragView = named(new DragView(resultView), "resultDragView", parts.dropName);
    resultDragView->setFrameAtRest(false);
    auto* const around = new QVBoxLayout(resultView);
    around->setContentsMargins({});
    around->addWidget(resultDragView);
    resultDragView->setInvitation(parts.invitation);
    makeHead(parts);
    content = named(new QStackedWidget, "content");
    makeBottom(parts);
}

void ResultFrame::putTogether(QWidget* rail, QWidget* note) {
    auto* const row = new QHBoxLayout(resultDragView);
    row->setContentsMargins({});
    row->setSpacing(0);
    if (rail != nullptr) row->addWidget(rail);
    auto* const column = new QVBoxLayout;
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(m_headBar);
    if (note != nullptr) column->addWidget(note);
    column->addWidget(content, 1);
    column->addWidget(m_bottomBar);
    row->addLayout(column, 1);
}

ResultFrame::~ResultFrame() {
    if (resultView != nullptr && resultView->parentWidget() == nullptr) delete resultView.data();
}

void ResultFrame::makeHead(const ResultFrameParts& parts) {
    m_headBar = new Panel(Theme::Color::Surface, Qt::BottomEdge);
    m_headBar->setFixedHeight(barHeight);
    backButton = makeImageButton(parts.backName, QStringLiteral("arrow_left"), parts.backTip);
    rightImageView = named(new PictureView(parts.picture, {20, 20}), "rightImageView");
    titleLabel = named(new ElidedLabel(Qt::ElideMiddle), "titleLabel");
    titleLabel->setFont(Theme::shared().font(Theme::Text::BodyStrong));
    head = new QHBoxLayout(m_headBar);
    head->setContentsMargins(Theme::gapSmall, 0, Theme::gap, 0);
    head->setSpacing(Theme::gapSmall);
    head->addWidget(backButton);
    head->addWidget(rightImageView);
    head->addWidget(titleLabel, 1);
}

void ResultFrame::makeBottom(const ResultFrameParts& parts) {
    m_bottomBar = named(new Panel(Theme::Color::Surface, Qt::TopEdge), "bottomBgView");
    m_bottomBar->setFixedHeight(barHeight);
    quietLine = named(new HoverButton, "quietLine");
    removedLine = makeLabel(parts.removedName, Theme::Text::Body, QPalette::PlaceholderText);
    failureLine = named(new HoverButton, "failureLine");
    onlyOneNote = named(new ElidedLabel(Qt::ElideMiddle), "onlyOneNote");
    onlyOneNote->setFont(Theme::shared().font(Theme::Text::Caption));
    onlyOneNote->setForegroundRole(QPalette::PlaceholderText);
    bottom = new QHBoxLayout(m_bottomBar);
    bottom->setContentsMargins(Theme::gap, 0, Theme::gap, 0);
    bottom->setSpacing(parts.bottomSpacing);
    for (QWidget* const line :
         {static_cast<QWidget*>(quietLine), static_cast<QWidget*>(removedLine),
          static_cast<QWidget*>(failureLine), static_cast<QWidget*>(onlyOneNote)}) {
        line->hide();
        bottom->addWidget(line, line == onlyOneNote ? 1 : 0);
    }
    bottom->addStretch();
}

void ResultFrame::showLine(QLabel& line, const QString& text) {
    line.setText(text);
    line.setVisible(!text.isEmpty());
}

void ResultFrame::showLine(QAbstractButton& line, const QString& text) {
    line.setText(text);
    line.setVisible(!text.isEmpty());
}

void ResultFrame::showSkipped(std::size_t count) const {
    showLine(*quietLine,
             count == 0   ? QString()
             : count == 1 ? tr("1 entry could not be read")
                          : tr("%Ln entries could not be read", nullptr, static_cast<int>(count)));
}

EmptyView makeEmptyView(const QString& picture, bool withOtherFolder) {
    EmptyView made;
    made.view = named(new Panel(Theme::Color::Surface), "emptyView");
    made.label = makeLabel("emptyLabel", Theme::Text::Heading);
    made.label->setWordWrap(true);
    auto* const column = new QVBoxLayout(made.view);
    column->addStretch();
    column->addWidget(new PictureView(picture), 0, Qt::AlignHCenter);
    column->addWidget(made.label);
    if (withOtherFolder) {
        made.otherFolder =
            named(new TextImageButton(ResultFrame::tr("Choose Another Folder")), "otherFolderBtn");
        made.view->setFocusProxy(made.otherFolder);
        column->addSpacing(Theme::gapSmall);
        column->addWidget(made.otherFolder, 0, Qt::AlignHCenter);
    }
    column->addStretch();
    return made;
}

}  // namespace orrinvale
