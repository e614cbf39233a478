// CustomComInfoView: seven facts about the computer as a list.
#pragma once

#include <QListView>
#include <array>

#include "engine/diagnostics/SysInfo.h"
#include "ui/diagnostics/ComputerInfoCell.h"

class QStandardItemModel;

namespace orrinvale {

/// Ctrl+C copies the row that the keyboard is on. Main thread only.
class CustomComInfoView final : public QListView {
    Q_OBJECT
public:
    static constexpr int rowCount = 7;

    /// `system` is asked here, and never again.
    explicit CustomComInfoView(const SystemValues& system, QWidget* parent = nullptr);

    [[nodiscard]] const _SYS_INFO& systemInfo() const { return m_systemInfo; }
    [[nodiscard]] const ComputerInfoCell& cell(int row) const {
        return m_cells.at(static_cast<std::size_t>(row));
    }
    /// That of the widest title.
    [[nodiscard]] int titleWidth() const;

public Q_SLOTS:
    void copy() const;

private:
    void awakeFromNib(const SystemValues& system);

    QStandardItemModel* const m_tableItem;
    _SYS_INFO m_systemInfo;
    std::array<ComputerInfoCell, rowCount> m_cells;
};

}  // namespace orrinvale
