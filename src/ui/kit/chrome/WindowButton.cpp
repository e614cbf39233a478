// The signs are always there: ones that come only under the pointer leave three dots without a
// label.
#include "ui/kit/chrome/WindowButton.h"

#include <QPainter>

#include <utility>

#include "ui/kit/chrome/TCImageButton.h"

namespace orrinvale {
namespace {

QString nameOf(WindowButton::Kind kind, bool restores) {
    switch (kind) {
        case WindowButton::Kind::Close: return WindowButton::tr("Close");
        case WindowButton::Kind::Miniaturize: return WindowButton::tr("Minimize");
        case WindowButton::Kind::Zoom: break;
    }
    return restores ? WindowButton::tr("Restore") : WindowButton::tr("Zoom");
}

ButtonPictures picturesOf(WindowButton::Kind kind, bool restores) {
    switch (kind) {
        case WindowButton::Kind::Close:
            return ButtonPictures::named(QStringLiteral("window_close"));
        case WindowButton::Kind::Miniaturize:
            return ButtonPictures::named(QStringLiteral("window_minimise"));
        case WindowButton::Kind::Zoom: break;
    }
    return ButtonPictures::named(restores ? QStringLiteral("window_restore")
                                          : QStringLiteral("window_zoom"));
}

}  // namespace

WindowButton::WindowButton(Kind kind, QWidget* parent) : DrawnButton(parent), m_kind(kind) {
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::ArrowCursor);
    resize(side, side);
    setRestores(false);
    connect(this, &QAbstractButton::clicked, this, &WindowButton::perform);
}

void WindowButton::setAction(std::function<void()> action) { m_action = std::move(action); }

void WindowButton::perform() const {
    // By copy: an action may well set another one.
    if (const auto action = m_action) action();
}

void WindowButton::setRestores(bool restores) {
    m_pictures = picturesOf(m_kind, restores);
    setToolTip(nameOf(m_kind, restores));
    setAccessibleName(nameOf(m_kind, restores));
    update();
}

void WindowButton::paintEvent(QPaintEvent*) {
    const ButtonLook look = buttonLook(*this);
    // In a window behind others the signs step back, until the pointer comes.
    const bool isBehind = look == ButtonLook::Normal && !isActiveWindow();
    QPainter painter(this);
    m_pictures.forLook(isBehind ? ButtonLook::Disabled : look).paint(&painter, rect());
    drawFocus(painter, side / 2.0 - 1);
}

}  // namespace orrinvale
