#include "ui/duplicates/ResultOutline.h"

#include "ui/kit/lists/FlatHeader.h"
#include "ui/kit/lists/TickBox.h"

namespace orrinvale {

ResultOutline::ResultOutline(QWidget* parent) : TickOutline(new FlatHeader, parent) {
    setObjectName(QStringLiteral("outline"));
    setAccessibleName(tr("Groups of duplicates"));
    headerBox()->setObjectName(QStringLiteral("button"));
    headerBox()->setAccessibleName(tr("Select all but one of each group"));
    header()->setSectionsClickable(true);
}

}  // namespace orrinvale
