// Panel: an area filled with one of the theme's colours, with hairlines at the edges that it is
// given.
#pragma once

#include <QPaintEvent>
#include <QPainter>
#include <QWidget>

#include "ui/kit/look/Theme.h"

namespace orrinvale {

class Panel : public QWidget {
    Q_OBJECT
public:
    explicit Panel(Theme::Color color, Qt::Edges lines = {}, QWidget* parent = nullptr)
        : QWidget(parent), m_color(color), m_lines(lines) {
        connect(&Theme::shared(), &Theme::changed, this, [this] { update(); });
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.fillRect(rect(), Theme::shared().color(m_color));
        const QColor line = Theme::shared().color(Theme::Color::Line);
        if (m_lines.testFlag(Qt::TopEdge)) painter.fillRect(0, 0, width(), 1, line);
        if (m_lines.testFlag(Qt::BottomEdge)) painter.fillRect(0, height() - 1, width(), 1, line);
        if (m_lines.testFlag(Qt::RightEdge)) painter.fillRect(width() - 1, 0, 1, height(), line);
    }

private:
    const Theme::Color m_color;
    const Qt::Edges m_lines;
};

}  // namespace orrinvale
