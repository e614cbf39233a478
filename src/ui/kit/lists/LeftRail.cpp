// Rows are never taken away, so that the number which a row has at first stays its own.
#include "ui/kit/lists/LeftRail.h"

#include <QVBoxLayout>
#include <algorithm>

#include "ui/kit/lists/LeftRow.h"
#include "ui/kit/look/accessibleRole.h"

namespace orrinvale {

LeftRail::LeftRail(QWidget* parent) : Panel(Theme::Color::SurfaceRaised, Qt::RightEdge, parent) {
    setFixedWidth(railWidth);
    setAccessibleTraits(*this, {.role = QAccessible::List});
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(Theme::gapSmall, Theme::gap, Theme::gapSmall, Theme::gap);
    column->setSpacing(0);
    column->addStretch();
}

void LeftRail::add(LeftRow* row) {
    const int number = int(m_rows.size());
    static_cast<QVBoxLayout*>(layout())->insertWidget(number, row);
    m_rows.push_back(row);
    connect(row, &LeftRow::chosen, this, [this, number] { Q_EMIT chosen(number); });
}

void LeftRail::makeRoomForSizes(const QString& widest) {
    const QMargins around = layout()->contentsMargins();
    const int width = maximumWidth() - around.left() - around.right();
    const bool isBelow = std::ranges::any_of(m_rows, [&](const LeftRow* row) {
        return row->box().has_value() && !row->hasRoomFor(widest, width);
    });
    for (LeftRow* const row : m_rows) row->setSizeBelow(isBelow);
}

void LeftRail::select(int number) {
    for (std::size_t each = 0; each < m_rows.size(); ++each)
        m_rows[each]->setSelected(int(each) == number);
}

}  // namespace orrinvale
