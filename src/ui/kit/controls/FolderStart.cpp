// What the column takes first comes first for the Tab key, so that the order here is not the one on
// screen.
#include "ui/kit/controls/FolderStart.h"

#include <QCoreApplication>
#include <QLabel>
#include <QVBoxLayout>

#include "ui/kit/chrome/AnimationHoverImageView.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/DragView.h"
#include "ui/kit/controls/Panel.h"
#include "ui/kit/controls/viewParts.h"

namespace orrinvale {

FolderStart makeFolderStart(const FolderStartTexts& texts) {
    FolderStart made;
    made.view = named(new Panel(Theme::Color::Window), texts.viewName);
    made.dragView = named(new DragView(made.view), "dragView", texts.dropName);
    made.animationHoverImageView =
        named(new AnimationHoverImageView, "animationHoverImageView", texts.pictureName);
    made.animationHoverImageView->setImages(QStringLiteral("addbg"), QStringLiteral("addbg_hover"),
                                            QStringLiteral("addbg_press"));
    // The picture is the place to drop at; around it the whole view takes folders too, and says so
    // only then.
    made.dragView->setFrameAtRest(false);
    QObject::connect(made.dragView, &DragView::folderOverChanged, made.animationHoverImageView,
                     &AnimationHoverImageView::setDropTarget);
    QLabel* const heading = makeLabel("heading", Theme::Text::Title);
    heading->setText(texts.heading);
    QLabel* const hint = makeLabel("hint", Theme::Text::Body, QPalette::PlaceholderText);
    hint->setText(texts.hint);
    hint->setWordWrap(true);
    made.button =
        named(new TextImageButton(QCoreApplication::translate("FolderStart", "Choose a Folder"),
                                  TextImageButton::Role::Primary),
              texts.buttonName);

    auto* const around = new QVBoxLayout(made.view);
    around->setContentsMargins({});
    around->addWidget(made.dragView);
    made.column = new QVBoxLayout(made.dragView);
    made.column->setContentsMargins(Theme::gapSection, Theme::gapSection, Theme::gapSection,
                                    Theme::gap);
    made.column->setSpacing(Theme::gap);
    // What one came for becomes a child first, and so the first stop of the Tab key; the picture
    // above it does the same.
    made.column->addStretch();
    made.column->addWidget(made.button, 0, Qt::AlignHCenter);
    made.column->addStretch();
    made.column->insertWidget(1, made.animationHoverImageView, 0, Qt::AlignHCenter);
    made.column->insertSpacing(2, Theme::gapSmall);
    made.column->insertWidget(3, heading);
    made.column->insertWidget(4, hint);
    made.column->insertSpacing(5, Theme::gapSmall);
    return made;
}

}  // namespace orrinvale
