// SheetHost: a window that says where its sheets go, because it draws its own title bar and shadow.
#pragma once

#include <QRect>

namespace orrinvale {

/// Windows without it give their sheets the whole of their inside.
class SheetHost {
public:
    virtual ~SheetHost() = default;

    /// What lies below the title bar, in the coordinates of the window's widget.
    [[nodiscard]] virtual QRect sheetArea() const = 0;

    /// A sheet has come to the top of the window's children; what must lie over everything comes up
    /// again.
    virtual void sheetRaised() {}

protected:
    SheetHost() = default;
    SheetHost(const SheetHost&) = default;
    SheetHost& operator=(const SheetHost&) = default;
};

}  // namespace orrinvale
