#include "ui/kit/controls/filterField.h"

#include <QCoreApplication>
#include <QLineEdit>

#include "ui/kit/controls/viewParts.h"

namespace orrinvale {
namespace {

constexpr int leastFilterWidth = 110, mostFilterWidth = 180;

struct FilterWords {
    Q_DECLARE_TR_FUNCTIONS(FilterField)
};

}  // namespace

QLineEdit* makeFilterField(const QString& purpose) {
    auto* const made = named(new QLineEdit, "filterField", purpose);
    made->setPlaceholderText(FilterWords::tr("Filter"));
    made->setClearButtonEnabled(true);
    made->setTextMargins(Theme::gapSmall, 0, Theme::gapTiny, 0);
    made->setFixedHeight(Theme::controlHeight);
    made->setMinimumWidth(leastFilterWidth);
    made->setMaximumWidth(mostFilterWidth);
    return made;
}

}  // namespace orrinvale
