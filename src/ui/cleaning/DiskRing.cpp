#include "ui/cleaning/DiskRing.h"

#include <QPainter>
#include <algorithm>

#include "ui/cleaning/cleanWords.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

constexpr qreal band = 16;
constexpr double wholeTurn = 360 * 16;  // as the toolkit counts angles
// A slice that nobody sees says that there is nothing.
constexpr double leastShare = 0.006;

}  // namespace

DiskRing::DiskRing(QWidget* parent) : QWidget(parent) {
    setFixedSize(side, side);
    setObjectName(QStringLiteral("diskRing"));
    connect(&Theme::shared(), &Theme::changed, this, [this] { update(); });
}

void DiskRing::setDisk(std::uint64_t total, std::uint64_t free) {
    m_total = total;
    m_free = std::min(free, total);
    tell();
}

void DiskRing::setCleanable(std::uint64_t bytes) {
    m_cleanable = bytes;
    tell();
}

void DiskRing::tell() {
    setAccessibleName(m_total == 0
                          ? QString()
                          : tr("%1 of %2 are free").arg(sizeWords(m_free), sizeWords(m_total)));
    update();
}

void DiskRing::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Theme& theme = Theme::shared();
    const QRectF ring = QRectF(rect()).adjusted(band, band, -band, -band);
    const auto arc = [&](Theme::Color color, double from, double share) {
        painter.setPen(QPen(theme.color(color), band, Qt::SolidLine, Qt::FlatCap));
        painter.drawArc(ring, int(wholeTurn / 4 - from * wholeTurn), int(-share * wholeTurn));
    };
    arc(Theme::Color::Line, 0, 1);
    const double total = static_cast<double>(m_total);
    const double used = m_total == 0 ? 0 : static_cast<double>(m_total - m_free) / total;
    double can = m_total == 0 ? 0 : std::min(used, static_cast<double>(m_cleanable) / total);
    if (m_cleanable > 0 && used > leastShare) can = std::max(can, leastShare);
    arc(Theme::Color::Outline, 0, used);
    arc(Theme::Color::Accent, used - can, can);

    const QString figure = m_cleanable > 0 ? sizeWords(m_cleanable)
                           : m_total > 0   ? sizeWords(m_free)
                                           : QString();
    const QString word = m_cleanable > 0 ? tr("can go") : m_total > 0 ? tr("free") : QString();
    painter.setPen(theme.color(Theme::Color::Text));
    painter.setFont(theme.font(Theme::Text::Title));
    painter.drawText(rect().adjusted(0, -10, 0, -10), Qt::AlignCenter, figure);
    painter.setPen(theme.color(Theme::Color::TextSecondary));
    painter.setFont(theme.font(Theme::Text::Caption));
    painter.drawText(rect().adjusted(0, 26, 0, 26), Qt::AlignCenter, word);
}

}  // namespace orrinvale
