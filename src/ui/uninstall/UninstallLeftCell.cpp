#include "ui/uninstall/UninstallLeftCell.h"

#include "engine/uninstall/uninstallNotices.h"

namespace orrinvale {

UninstallLeftCell::UninstallLeftCell(std::int32_t curRowNum, const QString& title,
                                     const QString& picture,
                                     const NotificationCenter& notifications, QWidget* parent)
    : LeftRow({title, picture, curRowNum == 0, cellHeight}, parent), m_curRowNum(curRowNum) {
    setObjectName(QStringLiteral("leftCell%1").arg(curRowNum));
    setSelected(curRowNum == 0);
    connect(this, &LeftRow::chosen, this, [this, &notifications] {
        m_pathName.assign(1, ' ');
        notice::changeSelectCell.post(notifications, {m_pathName, m_curRowNum});
    });
}

}  // namespace orrinvale
