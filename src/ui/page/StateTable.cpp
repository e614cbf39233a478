// StateTable: what goes is hidden before what comes is shown, so that the layout never asks for
// room for both.
#include "ui/page/StateTable.h"

#include <QWidget>

namespace orrinvale {

void StateTable::applyNumber(std::size_t state) const {
    for (const Row& row : m_rows)
        if (row.looks.at(state) == Look::Hidden) row.control->hide();
    for (const Row& row : m_rows) {
        const Look look = row.looks.at(state);
        if (look == Look::On || look == Look::Off) row.control->setEnabled(look == Look::On);
        if (look == Look::On || look == Look::Off || look == Look::Shown) row.control->show();
    }
}

}  // namespace orrinvale
