// TitleBarView keeps this view as large as itself.
#include "ui/kit/chrome/ToplineView.h"

#include <QPainter>

#include "ui/kit/look/Theme.h"

namespace orrinvale {

ToplineView::ToplineView(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    connect(&Theme::shared(), &Theme::changed, this, qOverload<>(&QWidget::update));
}

void ToplineView::paintEvent(QPaintEvent* event) {
    QWidget::paintEvent(event);
    QPainter painter(this);
    painter.fillRect(QRect(0, height() - 1, width(), 1), Theme::shared().color(Theme::Color::Line));
}

}  // namespace orrinvale
