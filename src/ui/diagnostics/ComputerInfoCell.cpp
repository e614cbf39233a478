// The background is a picture, the current row a tint over it.
#include "ui/diagnostics/ComputerInfoCell.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QPainter>
#include <QStyle>
#include <utility>

#include "ui/kit/look/Theme.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr int textStart = Theme::gap + ComputerInfoCell::iconSide + Theme::gap;

}  // namespace

ComputerInfoCell::ComputerInfoCell(QString image, QString title, QString value)
    : m_iconImage(std::move(image)), m_titleText(std::move(title)), m_valueText(std::move(value)) {}

int ComputerInfoCell::titleWidth() const {
    return QFontMetrics(Theme::shared().font(Theme::Text::Body)).horizontalAdvance(m_titleText);
}

int ComputerInfoCell::valueWidth(int rowWidth, int titleWidth) {
    return rowWidth - textStart - titleWidth - Theme::gapLarge - Theme::gap;
}

void ComputerInfoCell::drawInterior(QPainter& painter, const QRect& withFrame, int titleWidth,
                                    bool isCurrent) const {
    const Theme& theme = Theme::shared();
    picture(m_cellBgImage).paint(&painter, withFrame);
    if (isCurrent)
        painter.fillRect(withFrame.adjusted(0, 0, 0, -1), theme.color(Theme::Color::Selection));
    const auto placed = [&withFrame](int left, int width) {
        return QStyle::visualRect(
            QGuiApplication::layoutDirection(), withFrame,
            {withFrame.left() + left, withFrame.top(), width, withFrame.height()});
    };
    const QRect icon = placed(Theme::gap, iconSide);
    picture(m_iconImage)
        .paint(&painter, QRect(icon.left(), icon.center().y() - iconSide / 2, iconSide, iconSide));
    const auto draw = [&](const QRect& place, const QString& text, Theme::Text size,
                          Theme::Color color) {
        const QFont font = theme.font(size);
        painter.setFont(font);
        painter.setPen(theme.color(color));
        painter.drawText(place, Qt::AlignVCenter | Qt::AlignLeading | Qt::TextSingleLine,
                         QFontMetrics(font).elidedText(text, Qt::ElideRight, place.width()));
    };
    draw(placed(textStart, titleWidth), m_titleText, Theme::Text::Body,
         Theme::Color::TextSecondary);
    draw(
        placed(textStart + titleWidth + Theme::gapLarge, valueWidth(withFrame.width(), titleWidth)),
        m_valueText, Theme::Text::BodyStrong, Theme::Color::Text);
}

}  // namespace orrinvale
