// NewOutlineView: the list of the large file page, biggest first. FileNodeModel.h is what it shows.
#pragma once

#include "ui/kit/lists/TickOutline.h"

namespace orrinvale {

/// The highlighted row, of which there is one at most, is the selected one. Main thread only.
class NewOutlineView final : public TickOutline {
    Q_OBJECT
public:
    explicit NewOutlineView(QWidget* parent = nullptr);

    /// No row is highlighted any more; the keyboard stays at the row where it is.
    void clearRowNum();

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace orrinvale
