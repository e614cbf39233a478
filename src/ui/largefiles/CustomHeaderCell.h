// CustomHeaderCell: the header of the list of the large file page. Its first word is the column
// that people read.
#pragma once

#include "ui/kit/lists/FlatHeader.h"

namespace orrinvale {

/// Titles that contain "Name" are darker than the others. Main thread only.
class CustomHeaderCell final : public FlatHeader {
    Q_OBJECT
public:
    using FlatHeader::FlatHeader;

protected:
    [[nodiscard]] QColor titleColor(int section) const override;
};

}  // namespace orrinvale
