// The bar with its text.
#include "ui/tray/CustomGreyBarView.h"

#include <QPainter>

#include "ui/kit/look/Theme.h"
#include "ui/volumes/CustomVolumView.h"

namespace orrinvale {

CustomGreyBarView::CustomGreyBarView(std::uint64_t withStorage, QWidget* parent)
    : QWidget(parent),
      myColor(QColor::fromRgbF(0.0F, 0.5804F, 0.2275F)),
      titleImplment(withStorage) {
    setGeometry(0, 34, 280, 16);
    setFixedHeight(16);
    setMinimumWidth(280);
    setAccessibleName(title());
}

QString CustomGreyBarView::title() const {
    return volumeGroupName(static_cast<std::int64_t>(titleImplment));
}

void CustomGreyBarView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), myColor);
    painter.setFont(Theme::shared().font(Theme::Text::Caption));
    painter.setPen(Qt::white);
    painter.drawText(rect().adjusted(14, 0, -14, 0), Qt::AlignVCenter | Qt::AlignLeft, title());
}

}  // namespace orrinvale
