// The drawn buttons: what clicks them, which picture shows, and what a keyboard user sees.
#include <QDialog>
#include <QSignalSpy>
#include <QVBoxLayout>

#include "support/test.h"
#include "ui/kit/chrome/AnimationHoverImageView.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/look/Theme.h"
#include "ui/support/StillStyle.h"
#include "ui/support/soon.h"

namespace orrinvale {
namespace {

QIcon plain(QColor color) {
    QPixmap pixmap(24, 24);
    pixmap.fill(color);
    return QIcon(pixmap);
}

QColor middle(QWidget& widget) {
    const QImage image = widget.grab().toImage();
    return image.pixelColor(image.width() / 2, image.height() / 2);
}

// A button of every kind, on a window that is active.
class Buttons : public ::testing::Test {
protected:
    Buttons() {
        auto* const layout = new QVBoxLayout(&window);
        for (QAbstractButton* const button : all) layout->addWidget(button);
        image->setPictures({plain(Qt::red), plain(Qt::green), plain(Qt::blue), plain(Qt::gray)});
        view->setImages(plain(Qt::red), plain(Qt::green), plain(Qt::blue));
        window.show();
        window.activateWindow();
        park();
    }

    void park() { QTest::mouseMove(window.windowHandle(), {1, 1}); }

    void hover(QWidget* widget) {
        // Through the window system, which knows what the pointer enters and leaves.
        QTest::mouseMove(window.windowHandle(), widget->mapTo(&window, widget->rect().center()));
    }

    QWidget window;
    TCImageButton* image = new TCImageButton;
    TextImageButton* text = new TextImageButton(QStringLiteral("&Stop"));
    HoverButton* quiet = new HoverButton;
    AnimationHoverImageView* view = new AnimationHoverImageView;
    const QList<QAbstractButton*> all{image, text, quiet, view};
};

TEST_F(Buttons, MouseSpaceAndEnterClickEveryKindUnlessItIsDisabled) {
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    for (QAbstractButton* const button : all) {
        QSignalSpy clicks(button, &QAbstractButton::clicked);
        const auto tryAll = [&] {
            QTest::mouseClick(button, Qt::LeftButton);
            button->setFocus();
            for (const auto key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter})
                QTest::keyClick(button, key);
        };
        tryAll();
        EXPECT_EQ(clicks.count(), 4) << button->metaObject()->className();
        button->setEnabled(false);
        tryAll();
        EXPECT_EQ(clicks.count(), 4) << button->metaObject()->className();
    }
}

TEST_F(Buttons, APictureForEachLookAndAnotherSetForTheStateOn) {
    EXPECT_EQ(middle(*image), QColor(Qt::red));
    hover(image);
    EXPECT_EQ(middle(*image), QColor(Qt::green));
    QTest::mousePress(image, Qt::LeftButton);
    EXPECT_EQ(middle(*image), QColor(Qt::blue));
    QTest::mouseRelease(image, Qt::LeftButton);
    image->setEnabled(false);
    EXPECT_EQ(middle(*image), QColor(Qt::gray));
    image->setEnabled(true);
    image->setCheckable(true);
    image->setAlternatePictures({plain(Qt::cyan), {}, {}, {}});
    image->click();
    EXPECT_EQ(middle(*image), QColor(Qt::cyan));
    image->click();
    EXPECT_NE(middle(*image), QColor(Qt::cyan));
}

TEST_F(Buttons, AToolTipNamesAPictureUntilANameIsGiven) {
    image->setToolTip(QStringLiteral("Click lock"));
    EXPECT_EQ(image->accessibleName(), QStringLiteral("Click lock"));
    image->setAccessibleName(QStringLiteral("Padlock"));
    image->setToolTip(QStringLiteral("Other"));
    EXPECT_EQ(image->accessibleName(), QStringLiteral("Padlock"));
}

TEST_F(Buttons, TheKeyboardsFocusIsSeenAndTheMousesIsNot) {
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    for (QAbstractButton* const button : all) {
        park();
        window.setFocus();
        const QImage without = button->grab().toImage();
        button->setFocus(Qt::MouseFocusReason);
        EXPECT_EQ(button->grab().toImage(), without) << button->metaObject()->className();
        button->clearFocus();
        button->setFocus(Qt::TabFocusReason);
        EXPECT_NE(button->grab().toImage(), without) << button->metaObject()->className();
    }
}

TEST_F(Buttons, AQuietButtonHasAFrameUnderThePointerOnly) {
    quiet->setText(QStringLiteral("Help"));
    QCoreApplication::sendPostedEvents();  // the layout makes room for it
    const QImage without = quiet->grab().toImage();
    hover(quiet);
    EXPECT_NE(quiet->grab().toImage(), without);
    hover(text);
    EXPECT_EQ(quiet->grab().toImage(), without);
}

TEST_F(Buttons, RolesStatesAndSchemesAllLookDifferent) {
    Theme& theme = Theme::shared();
    QList<QImage> seen;
    for (const auto scheme : {Theme::Scheme::Dark, Theme::Scheme::Light}) {
        theme.setScheme(scheme);
        using Role = TextImageButton::Role;
        for (const auto role : {Role::Plain, Role::Primary, Role::Link, Role::Danger}) {
            text->setRole(role);
            text->setEnabled(true);
            hover(image);
            seen.append(text->grab().toImage());
            hover(text);
            seen.append(text->grab().toImage());
            text->setDown(true);
            seen.append(text->grab().toImage());
            text->setDown(false);
        }
        text->setEnabled(false);
        seen.append(text->grab().toImage());
    }
    for (qsizetype i = 0; i < seen.size(); ++i)
        for (qsizetype j = 0; j < i; ++j) EXPECT_NE(seen[i], seen[j]) << i << " and " << j;
}

TEST(TextImageButton, IsTheDefaultOfADialogAndKeepsRoomForItsText) {
    QDialog dialog;
    auto* const layout = new QVBoxLayout(&dialog);
    auto* const field = new QWidget;
    field->setFocusPolicy(Qt::StrongFocus);
    auto* const sure =
        new TextImageButton(QStringLiteral("A text longer than the least width of buttons"));
    layout->addWidget(field);
    layout->addWidget(sure);
    sure->setDefault(true);
    QSignalSpy clicks(sure, &QAbstractButton::clicked);
    dialog.show();
    field->setFocus();
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(clicks.count(), 1);
    EXPECT_GE(sure->width(),
              sure->fontMetrics().horizontalAdvance(sure->text()) + 2 * Theme::gapLarge);
}

TEST_F(Buttons, TheAddControlFadesUnlessTheDesktopForbidsIt) {
    testing::StillStyle still, moving(false);
    view->setStyle(&still);
    hover(view);
    EXPECT_EQ(middle(*view), QColor(Qt::green));
    hover(text);
    EXPECT_EQ(middle(*view), QColor(Qt::red));
    view->setStyle(&moving);
    hover(view);
    EXPECT_LT(view->fadeProgress(), 1.0);
    EXPECT_GT(middle(*view).red(), middle(*view).green());
    EXPECT_SOON(middle(*view).red() > 20 && middle(*view).green() > 20);
    EXPECT_SOON(middle(*view) == QColor(Qt::green));
    view->setStyle(nullptr);
}

TEST_F(Buttons, TheAddControlShowsThatSomethingMayBeDroppedOnIt) {
    const QImage before = view->grab().toImage();
    view->setDropTarget(true);
    EXPECT_SOON(middle(*view) == QColor(Qt::green));
    view->setDropTarget(false);
    EXPECT_SOON(view->grab().toImage() == before);
}

}  // namespace
}  // namespace orrinvale
