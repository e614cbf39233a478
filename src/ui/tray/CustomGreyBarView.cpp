// Groups by their codes, and the bar with the text.
#include "ui/tray/CustomGreyBarView.h"

#include <QPainter>
#include <array>

#include "engine/text/Localized.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {

const char* groupTitleKey(std::uint64_t storage) {
    constexpr std::array keys{"LOCAL_STORAGE",  "EXTERNAL_STORAGE", "SUPER_DRIVER",
                              "NETWOR_STORAGE", "DISK_IMAGE",       "FREE_MEMORY"};
    return storage < keys.size() ? keys.at(storage) : "";
}

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
    const char* const key = groupTitleKey(titleImplment);
    return *key == 0 ? QString() : QString::fromStdString(getLocalizedString(key));
}

void CustomGreyBarView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), myColor);
    painter.setFont(Theme::shared().font(Theme::Text::Caption));
    painter.setPen(Qt::white);
    painter.drawText(rect().adjusted(14, 0, -14, 0), Qt::AlignVCenter | Qt::AlignLeft, title());
}

}  // namespace orrinvale
