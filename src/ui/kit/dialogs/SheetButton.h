// SheetButton: a button at the foot of a sheet.
#pragma once

#include <QPushButton>

namespace orrinvale {

/// The one that acts is filled with the accent, or with the colour of danger when it removes something; the others have an outline,
/// and a link has its text alone. Enter and the space bar press it.
class SheetButton final : public QPushButton {
    Q_OBJECT
public:
    enum class Kind { Plain, Primary, Danger, Link };

    SheetButton(const QString& text, Kind kind, QWidget* parent = nullptr);

    [[nodiscard]] Kind kind() const { return m_kind; }
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    const Kind m_kind;
};

}  // namespace orrinvale
