// Two lines and a bar: the name, what is free, how full it is.
#include "ui/diskusage/DiskUsageLeftCell.h"

#include <QPainter>
#include <QStyle>
#include <utility>

#include "ui/diskusage/diskUsageNotices.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr int iconSide = 20;
constexpr int leftBarHeight = 3;
constexpr qsizetype narrowKeep = 12, wideKeep = 15;

}  // namespace

DiskUsageLeftCell::DiskUsageLeftCell(std::int32_t row, Place place,
                                     const NotificationCenter& notifications)
    : LeftRow({.title = place.name, .picture = place.picture, .height = rowHeight}),
      m_row(row),
      m_place(std::move(place)) {
    tellReaders();
    connect(this, &LeftRow::chosen, this, [this, &notifications] {
        notice::updateLeftCellBackGrounImage.post(notifications, {m_row, m_place.path});
        notice::refRemoveButtonState.post(notifications, nullptr);
    });
}

void DiskUsageLeftCell::setFigures(const Place& place) {
    m_place.total = place.total;
    m_place.free = place.free;
    m_place.fullness = place.fullness;
    m_place.isShort = place.isShort;
    tellReaders();
    update();
}

void DiskUsageLeftCell::updateSize(const QString& text) {
    m_place.free = text;
    tellReaders();
    update();
}

QString DiskUsageLeftCell::updatePathString(const QString& path) const {
    const qsizetype keep =
        m_selectedType == HomeType || m_selectedType == LastType ? narrowKeep : wideKeep;
    return path.size() > keep ? path.left(keep) + QStringLiteral("...") : path;
}

void DiskUsageLeftCell::updateCustomCellPath() {
    const QString path = QString::fromStdString(m_place.path);
    m_place.total = updatePathString(path);
    tellReaders();
    update();
}

QString DiskUsageLeftCell::caption() const {
    if (m_place.fullness) return tr("%1 free").arg(m_place.free);
    if (m_place.total.isEmpty()) return m_place.free.trimmed();
    return m_place.free.trimmed().isEmpty() ? m_place.total
                                            : m_place.total + QStringLiteral(", ") + m_place.free;
}

void DiskUsageLeftCell::tellReaders() {
    QString tip = onOneLine(QString::fromStdString(m_place.path));
    if (m_place.fullness)
        tip += QLatin1Char('\n') + tr("%1 of %2 free").arg(m_place.free, m_place.total);
    setToolTip(asToolTip(tip));
    const QString said = caption();
    setAccessibleName(said.isEmpty() ? title() : title() + QStringLiteral(", ") + said);
}

void DiskUsageLeftCell::paintEvent(QPaintEvent* /*event*/) {
    const Theme& theme = Theme::shared();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawGround(painter);
    const auto shown = [this](const QRect& logical) {
        return QStyle::visualRect(layoutDirection(), rect(), logical);
    };
    const QRect icon(Theme::gapSmall, (height() - iconSide) / 2, iconSide, iconSide);
    picture(m_place.picture).paint(&painter, shown(icon));
    const QString below = caption();
    QRect line = rect().adjusted(icon.right() + Theme::gapSmall, 3, -Theme::gapSmall, -3);
    const auto draw = [&](const QString& text, Theme::Text font, Theme::Color color) {
        painter.setFont(theme.font(font));
        painter.setPen(theme.color(color));
        const auto side =
            QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter);
        painter.drawText(
            shown(line), int(side) | Qt::TextSingleLine,
            painter.fontMetrics().elidedText(onOneLine(text), Qt::ElideMiddle, line.width()));
    };
    if (!below.isEmpty()) line.setHeight(line.height() / 2);
    draw(title(), Theme::Text::Body, Theme::Color::Text);
    if (below.isEmpty()) return;
    line.moveTop(line.bottom() - (m_place.fullness ? 2 : 0));
    draw(below, Theme::Text::Caption, Theme::Color::TextSecondary);
    if (!m_place.fullness) return;
    QRect bar(line.left(), height() - 7, line.width(), leftBarHeight);
    painter.fillRect(shown(bar), theme.color(Theme::Color::Line));
    bar.setWidth(qRound(bar.width() * *m_place.fullness));
    painter.fillRect(shown(bar),
                     theme.color(m_place.isShort ? Theme::Color::Warning : Theme::Color::Accent));
}

}  // namespace orrinvale
