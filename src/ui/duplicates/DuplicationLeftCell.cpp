#include "ui/duplicates/DuplicationLeftCell.h"

#include "engine/base/notices.h"
#include "ui/kit/controls/numberText.h"

namespace orrinvale {

DuplicationLeftCell::DuplicationLeftCell(std::int32_t rowViewNum, const QString& title,
                                         const QString& picture,
                                         const NotificationCenter& notifications, QWidget* parent)
    : LeftRow({title, picture, rowViewNum == 0, cellHeight}, parent), m_rowViewNum(rowViewNum) {
    setObjectName(QStringLiteral("leftCell%1").arg(rowViewNum));
    setSelected(rowViewNum == 0);
    setSizeText(shownSize("0.00K"));
    connect(this, &LeftRow::chosen, this,
            [this, &notifications] { notice::refViewBgColor.post(notifications, {m_rowViewNum}); });
}

}  // namespace orrinvale
