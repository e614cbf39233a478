// LeftRail: the list at the left of a page, of which one row is chosen.
#pragma once

#include <vector>

#include "ui/kit/controls/Panel.h"

namespace orrinvale {

class LeftRow;

/// Chosen rows are told, and not selected by that: the page may not follow. Main thread only.
class LeftRail : public Panel {
    Q_OBJECT
public:
    static constexpr int railWidth = 188;

    explicit LeftRail(QWidget* parent = nullptr);

    /// Owns the row, which comes below the others.
    void add(LeftRow* row);
    [[nodiscard]] LeftRow& row(int number) const { return *m_rows.at(std::size_t(number)); }

    /// Where a title would be cut beside a size as wide as this one, all sizes stand below their
    /// titles: which titles are long is a matter of the language.
    void makeRoomForSizes(const QString& widest);

    /// Selects this row and no other.
    void select(int number);

Q_SIGNALS:
    void chosen(int number);

private:
    std::vector<LeftRow*> m_rows;
};

}  // namespace orrinvale
