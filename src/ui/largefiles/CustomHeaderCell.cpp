#include "ui/largefiles/CustomHeaderCell.h"

#include "ui/kit/look/Theme.h"

namespace orrinvale {

QColor CustomHeaderCell::titleColor(int section) const {
    const QString title = model()->headerData(section, orientation(), Qt::DisplayRole).toString();
    return title.contains(QLatin1String("Name")) ? Theme::shared().color(Theme::Color::Text)
                                                 : FlatHeader::titleColor(section);
}

}  // namespace orrinvale
