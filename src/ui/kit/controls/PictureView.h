// PictureView: a picture of the program's collection as a widget of a fixed size, in the colours of
// the theme of the moment.
#pragma once

#include <QPainter>
#include <QWidget>

#include "ui/kit/look/Theme.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {

/// Unlike a pixmap in a label it follows the theme and the scale of the screen. Faint while it is
/// disabled, nothing for an empty name. Main thread only.
class PictureView final : public QWidget {
    Q_OBJECT
public:
    /// The picture's own size unless another one is given.
    explicit PictureView(const QString& name, QSize size = {}, QWidget* parent = nullptr)
        : QWidget(parent), m_name(name) {
        setFixedSize(size.isEmpty() ? pictureSize(name) : size);
        connect(&Theme::shared(), &Theme::changed, this, [this] { update(); });
    }

    void setPicture(const QString& name) {
        m_name = name;
        update();
    }
    [[nodiscard]] const QString& name() const { return m_name; }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        if (!isEnabled()) painter.setOpacity(0.4);
        if (!m_name.isEmpty()) picture(m_name).paint(&painter, rect());
    }

private:
    QString m_name;
};

}  // namespace orrinvale
