#include "ui/preferences/NumberField.h"

#include <QValidator>
#include <algorithm>

#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

constexpr int mostNumber = 9999;

// A field begins with digits and takes no others, so that all before the cursor can be asked about.
class Digits final : public QValidator {
public:
    using QValidator::QValidator;
    State validate(QString& input, int& /*place*/) const override {
        QString error;
        return isPartialStringValid(input, input.size(), 0, error) ? Acceptable : Invalid;
    }
};

}  // namespace

bool isPartialStringValid(const QString& partialString, qsizetype proposedSelectedRange,
                          qsizetype originalSelectedRange, QString& errorDescription) {
    const qsizetype length = std::max(proposedSelectedRange - originalSelectedRange, qsizetype{0});
    const QString typed = partialString.mid(originalSelectedRange, length);
    const bool isValid =
        std::ranges::all_of(typed, [](const QChar each) { return each.isDigit(); });
    errorDescription = isValid ? QString() : QStringLiteral("不是数字");
    return isValid;
}

NumberField::NumberField(int tag, QWidget* parent) : QLineEdit(parent), m_tag(tag) {
    setValidator(new Digits(this));
    setAlignment(Qt::AlignTrailing);
    setFixedHeight(Theme::controlHeight);
    setTextMargins(Theme::gapTiny, 0, Theme::gapTiny, 0);
}

int NumberField::number() const {
    int number = 0;
    const QString digits = text();
    for (const QChar each : digits)
        if (each.isDigit() && number <= mostNumber) number = number * 10 + each.digitValue();
    return number;
}

void NumberField::setNumber(qint64 number) {
    if (number == this->number() && (hasFocus() || !text().isEmpty())) return;
    setText(QString::number(std::max(number, qint64{0})));
}

QSize NumberField::sizeHint() const {
    return {fontMetrics().horizontalAdvance(QStringLiteral("00000")) + 2 * Theme::gap,
            Theme::controlHeight};
}

}  // namespace orrinvale
