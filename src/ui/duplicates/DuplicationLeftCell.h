// DuplicationLeftCell: one row of the list of types beside the result.
#pragma once

#include <cstdint>

#include "ui/kit/lists/LeftRow.h"

namespace orrinvale {

class NotificationCenter;

/// Choosing it posts "refViewBgColor" with a UserInfo as object that holds the row, an
/// std::int32_t, under "rowNum". Main thread only.
class DuplicationLeftCell final : public LeftRow {
    Q_OBJECT
public:
    static constexpr int cellHeight = 28;

    /// The centre outlives the row.
    DuplicationLeftCell(std::int32_t rowViewNum, const QString& title, const QString& picture,
                        const NotificationCenter& notifications, QWidget* parent = nullptr);

    [[nodiscard]] std::int32_t rowViewNum() const { return m_rowViewNum; }
    void setRowViewNum(std::int32_t row) { m_rowViewNum = row; }
    [[nodiscard]] const QString& sizeF() const { return sizeText(); }

    void setHiglightImage(bool isSelected) { setSelected(isSelected); }
    void setSizeTextFieldString(const QString& text) { setSizeText(text); }

private:
    std::int32_t m_rowViewNum;
};

}  // namespace orrinvale
