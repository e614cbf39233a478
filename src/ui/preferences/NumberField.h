// NumberField: a field for a whole number of four digits.
#pragma once

#include <QLineEdit>

namespace orrinvale {

/// What is typed or pasted with anything but digits in it is refused as a whole; digits of every
/// script count. Main thread only.
class NumberField final : public QLineEdit {
    Q_OBJECT
public:
    /// The tag tells whoever listens which field it is.
    explicit NumberField(int tag, QWidget* parent = nullptr);

    [[nodiscard]] int tag() const { return m_tag; }
    /// 0 for an empty field.
    [[nodiscard]] int number() const;
    /// Leaves the text alone where it stands for that number, so that nobody is disturbed in
    /// typing. Tells nobody.
    void setNumber(qint64 number);

    [[nodiscard]] QSize sizeHint() const override;

private:
    const int m_tag;
};

/// Whether the text that was typed, from the start of what was selected before up to the cursor,
/// has digits only; else the error says what it is not.
[[nodiscard]] bool isPartialStringValid(const QString& partialString,
                                        qsizetype proposedSelectedRange,
                                        qsizetype originalSelectedRange, QString& errorDescription);

}  // namespace orrinvale
