#include "ui/bubbles/BubbleContent.h"

#include <QFontMetrics>
#include <QLabel>
#include <QVBoxLayout>
#include <utility>

#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

constexpr int margin = 10;  // at both sides

QLabel* makeLine(const QString& text, bool isAlone, QWidget* parent) {
    auto* const line = isAlone ? new QLabel(parent)
                               : static_cast<QLabel*>(new ElidedLabel(Qt::ElideRight, parent));
    line->setTextFormat(Qt::PlainText);
    line->setWordWrap(isAlone);
    line->setText(onOneLine(text));
    line->setFont(BubbleContent::font());
    QPalette palette = line->palette();
    palette.setColor(QPalette::WindowText, Qt::white);
    line->setPalette(palette);
    return line;
}

int widthFor(const QStringList& lines) {
    if (lines.size() != 1) return BubbleContent::wide;
    const QFontMetrics metrics(BubbleContent::font());
    const QRect room(0, 0, BubbleContent::narrow - 2 * margin, BubbleContent::height);
    return metrics.boundingRect(room, Qt::TextWordWrap, lines.constFirst()).height() > room.height()
               ? BubbleContent::wide
               : BubbleContent::narrow;
}

}  // namespace

BubbleContent::BubbleContent(QStringList lines, QWidget* parent)
    : QWidget(parent), m_lines(std::move(lines)) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(margin, 0, margin, 0);
    column->setSpacing(0);
    column->addStretch();
    for (const QString& each : m_lines)
        column->addWidget(makeLine(each, m_lines.size() == 1, this));
    column->addStretch();
    setFixedSize(widthFor(m_lines), height);
    setAccessibleName(m_lines.join(QLatin1Char('\n')));
}

QFont BubbleContent::font(int pixels) {
    QFont font = Theme::shared().font(Theme::Text::BodyStrong);
    font.setPixelSize(pixels);
    font.setBold(true);
    return font;
}

}  // namespace orrinvale
