#include "ui/kit/controls/filterField.h"

#include <QCoreApplication>
#include <QLineEdit>

#include "ui/kit/controls/viewParts.h"

namespace orrinvale {
namespace {

constexpr int leastFilterWidth = 110, mostFilterWidth = 180;

// Of one width, whatever stands in it: the toolkit's grows with the button that empties it.
class FilterField final : public QLineEdit {
    Q_DECLARE_TR_FUNCTIONS(FilterField)

public:
    QSize sizeHint() const override { return {mostFilterWidth, Theme::controlHeight}; }
    QSize minimumSizeHint() const override { return {leastFilterWidth, Theme::controlHeight}; }
};

}  // namespace

QLineEdit* makeFilterField(const QString& purpose) {
    auto* const made = named(new FilterField, "filterField", purpose);
    made->setPlaceholderText(FilterField::tr("Filter"));
    made->setClearButtonEnabled(true);
    made->setTextMargins(Theme::gapSmall, 0, Theme::gapTiny, 0);
    made->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    return made;
}

}  // namespace orrinvale
