// The engine's numbers have a dot; what stands in its place is a text to be translated like others.
#include "ui/kit/controls/numberText.h"

#include <QCoreApplication>

namespace orrinvale {
namespace {

struct NumberText {
    Q_DECLARE_TR_FUNCTIONS(NumberText)
};

QString withDecimalSign(QString number) {
    //: The decimal sign, as in 1.25 MB.
    return number.replace(QLatin1Char('.'), NumberText::tr("."));
}

}  // namespace

QString shownSize(const std::string& size) {
    const QString shown = QString::fromStdString(size);
    const QString unit = QStringLiteral(" byte");
    if (shown.endsWith(unit)) return NumberText::tr("%1 byte").arg(shown.chopped(unit.size()));
    return withDecimalSign(shown);
}

QString shownPercent(const QString& number) {
    return NumberText::tr("%1%").arg(withDecimalSign(number));
}

}  // namespace orrinvale
