// ComputerInfoCell: one fact about the computer as a row: a picture, what it is, and what it says.
#pragma once

#include <QColor>
#include <QRect>
#include <QString>

class QPainter;

namespace orrinvale {

/// Drawn on one line; what has no room is cut at its end. Main thread only.
class ComputerInfoCell final {
public:
    static constexpr int height = 40, iconSide = 22;

    ComputerInfoCell() = default;
    ComputerInfoCell(QString image, QString title, QString value);

    /// In a row of that place; the title has `titleWidth` points.
    void drawInterior(QPainter& painter, const QRect& withFrame, int titleWidth,
                      bool isCurrent) const;

    /// How many points of a row are left for its value, beside such a title.
    [[nodiscard]] static int valueWidth(int rowWidth, int titleWidth);
    /// What the title takes.
    [[nodiscard]] int titleWidth() const;

    [[nodiscard]] const QString& iconImage() const { return m_iconImage; }
    [[nodiscard]] const QString& titleText() const { return m_titleText; }
    [[nodiscard]] const QString& valueText() const { return m_valueText; }

private:
    QString m_iconImage;
    QString m_titleText;
    QString m_valueText;
    QString m_cellBgImage = QStringLiteral("mymac_cellbg.png");
};

}  // namespace orrinvale
