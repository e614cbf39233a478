// ResultOutline: the tree of groups and copies.
#pragma once

#include "ui/kit/lists/TickOutline.h"

namespace orrinvale {

/// The header box, named "button", ticks the whole view. Main thread only.
class ResultOutline final : public TickOutline {
    Q_OBJECT
public:
    explicit ResultOutline(QWidget* parent = nullptr);
};

}  // namespace orrinvale
