// DiskUsageLeftCell: a place on the left of the disk usage page: the home folder, a volume with how
// full it is, a folder that was chosen.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "engine/base/NotificationCenter.h"
#include "ui/kit/lists/LeftRow.h"

namespace orrinvale {

/// Main thread only.
class DiskUsageLeftCell final : public LeftRow {
    Q_OBJECT
public:
    static constexpr int rowHeight = 40;
    /// What selectedType says of a row.
    enum Type : std::uint64_t { HomeType = 0, VolumeType = 1, LastType = 2 };

    struct Place {
        QString name;
        std::string path;  ///< exact bytes
        QString picture;
        QString total, free;             ///< sizes for people; empty where they are not known
        std::optional<double> fullness;  ///< of a volume, from 0 to 1
        bool isShort = false;            ///< of space
    };
    /// A click posts "updateLeftCellBackGrounImage" and "refRemoveButtonState" to the centre, which
    /// outlives the cell.
    DiskUsageLeftCell(std::int32_t row, Place place, const NotificationCenter& notifications);

    [[nodiscard]] const std::string& pathName() const { return m_place.path; }
    [[nodiscard]] std::int32_t curRowNum() const { return m_row; }
    [[nodiscard]] std::uint64_t selectedType() const { return m_selectedType; }
    void setSelectedType(std::uint64_t type) { m_selectedType = type; }
    [[nodiscard]] bool isScaned() const { return m_isScaned; }
    void setIsScaned(bool isScaned) { m_isScaned = isScaned; }

    /// New figures of the same volume.
    void setFigures(const Place& place);
    /// The text of FreeSizeTF.
    void updateSize(const QString& text);
    /// The path as it fits: the first 12 characters of the home's and the last row, 15 of others.
    [[nodiscard]] QString updatePathString(const QString& path) const;
    /// Shows it, with the whole path as tool tip.
    void updateCustomCellPath();

    [[nodiscard]] const QString& totleSizeTF() const { return m_place.total; }
    [[nodiscard]] const QString& FreeSizeTF() const { return m_place.free; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QString caption() const;
    void tellReaders();

    const std::int32_t m_row;
    Place m_place;
    std::uint64_t m_selectedType = VolumeType;
    bool m_isScaned = false;
};

}  // namespace orrinvale
