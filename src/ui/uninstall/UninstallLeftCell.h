// UninstallLeftCell: one of the left rows of the uninstall page: which applications are shown.
#pragma once

#include <cstdint>
#include <string>

#include "ui/kit/lists/LeftRow.h"

namespace orrinvale {

class NotificationCenter;

/// Choosing it posts "changeSelectCell". Main thread only.
class UninstallLeftCell final : public LeftRow {
    Q_OBJECT
public:
    static constexpr int cellHeight = 36;

    /// The centre outlives the row.
    UninstallLeftCell(std::int32_t curRowNum, const QString& title, const QString& picture,
                      const NotificationCenter& notifications, QWidget* parent = nullptr);

    [[nodiscard]] std::int32_t curRowNum() const { return m_curRowNum; }
    [[nodiscard]] const std::string& pathName() const { return m_pathName; }

private:
    const std::int32_t m_curRowNum;
    std::string m_pathName;
};

}  // namespace orrinvale
