// CustomTableView: the ten rows beside the cleaning page, with the figures of a run.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "engine/base/NotificationCenter.h"
#include "ui/cleaning/V3MainListView.h"
#include "ui/kit/lists/LeftRail.h"
#include "ui/kit/lists/LeftRow.h"

namespace orrinvale {

/// What a row shows.
struct TableViewCellItemObj {
    QString title;
    QString image;          ///< by name
    QString checkBoxImage;  ///< of the box, by name; empty for a row without one
    std::string size;       ///< found
};

/// One row. Row 7 is the header over the last two.
class LeftLinkTabviewCell final : public LeftRow {
    Q_OBJECT
public:
    static constexpr int cellHeight = 40;

    /// The centre outlives it.
    LeftLinkTabviewCell(int row, const NotificationCenter& notifications,
                        QWidget* parent = nullptr);

    /// The box's own action: the old state is taken from whether the setting holds anything at all,
    /// which it does, so that this unticks. The page goes by what the setting holds.
    void clickCheckBox();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const int m_row;
    const NotificationCenter& m_notifications;
};

/// Main thread only.
class CustomTableView final : public LeftRail {
    Q_OBJECT
public:
    static constexpr int tableWidth = 252;

    /// The centre outlives it.
    explicit CustomTableView(NotificationCenter& notifications, QWidget* parent = nullptr);

    [[nodiscard]] LeftLinkTabviewCell& cell(int row) const;
    [[nodiscard]] const std::vector<TableViewCellItemObj>& dataArr() const { return m_dataArr; }
    /// "0", "1" or "2" of each category.
    [[nodiscard]] const std::vector<std::string>& selectArray() const { return m_selectArray; }
    void setSelectArray(std::vector<std::string> states);

    /// The answer to "changeCheckBox": turns the box round, and says so with all states, which name
    /// no row, so that no list follows.
    void changeCheckBox(std::int32_t tag, bool flag);

    /// A size of the category with this context. Shown at once.
    void observeFoundText(const std::string& context, const std::string& size);
    void comeBackStringValue();
    /// The sum of all six as text.
    [[nodiscard]] std::string getTotalSize() const;
    [[nodiscard]] std::uint64_t totalScanSize() const;

    // A run: how much of what was selected has gone, 0 to 100, and its picture.
    void setIsCleanInfo(bool isCleaning) { m_isCleanInfo = isCleaning; }
    [[nodiscard]] bool isCleanInfo() const { return m_isCleanInfo; }
    void setSelectTotalSize(std::uint64_t bytes) { m_selectTotalSize = bytes; }
    void setCleanedSize(std::uint64_t bytes) { m_cleanedSize = bytes; }
    void setTotalSelectNum(std::int32_t number) { m_totalSelectNum = number; }
    void setProImageNum(std::int32_t number) { m_proImageNum = number; }
    [[nodiscard]] std::int32_t proImageNum() const { return m_proImageNum; }
    [[nodiscard]] int cleanedPercent() const;
    [[nodiscard]] QString getTotalSizeImage() const;

    void reloadData();

Q_SIGNALS:
    void boxClicked(int row);

private:
    FoundSizes m_found;
    std::vector<TableViewCellItemObj> m_dataArr;
    std::vector<std::string> m_selectArray;
    std::uint64_t m_selectTotalSize = 0, m_cleanedSize = 0;
    std::int32_t m_totalSelectNum = 0, m_proImageNum = 0;
    bool m_isCleanInfo = false;
    NotificationCenter& m_notifications;
    NotificationCenter::Observation m_observation;
};

}  // namespace orrinvale
