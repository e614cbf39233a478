// Drawn, since ten rows of labels would be laid out anew every ten seconds.
#include "ui/memory/ProgramList.h"

#include <QPainter>
#include <QStyle>
#include <utility>

#include "engine/text/UtilityFunction.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/accessibleRole.h"

namespace orrinvale {
namespace {

constexpr int programBarHeight = 2;

}  // namespace

ProgramList::ProgramList(int rows, QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("programList"));
    setMinimumWidth(220);
    setFixedHeight(rows * rowHeight);
    setAccessibleTraits(*this, {.role = QAccessible::StaticText});
    connect(&Theme::shared(), &Theme::changed, this, [this] { update(); });
}

QString ProgramList::nameOf(const ProgramMemory& program) {
    const QString name = onOneLine(QString::fromStdString(program.name));
    return program.processes > 1 ? tr("%1 (%2 processes)").arg(name).arg(program.processes) : name;
}

QString ProgramList::sizeOf(const ProgramMemory& program) {
    const QString size = shownSize(UtilityFunction::covertCleanMemory(program.bytes));
    return program.isUpTo ? tr("up to %1").arg(size) : size;
}

void ProgramList::setPrograms(std::vector<ProgramMemory> programs) {
    m_programs = std::move(programs);
    QStringList lines;
    for (const ProgramMemory& each : m_programs)
        lines.push_back(QStringLiteral("%1: %2").arg(nameOf(each), sizeOf(each)));
    setAccessibleName(lines.join(QLatin1Char('\n')));
    update();
}

void ProgramList::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const Theme& theme = Theme::shared();
    painter.setFont(theme.font(Theme::Text::Body));
    const auto mirrored = [this](const QRect& place) {
        return QStyle::visualRect(layoutDirection(), rect(), place);
    };
    int top = 0;
    for (const ProgramMemory& each : m_programs) {
        const QString size = sizeOf(each);
        const int sizeWidth = painter.fontMetrics().horizontalAdvance(size);
        const QRect row(0, top, width(), rowHeight - programBarHeight - 2);
        painter.setPen(theme.color(Theme::Color::TextSecondary));
        painter.drawText(row, Qt::AlignRight | Qt::AlignVCenter, size);
        painter.setPen(theme.color(Theme::Color::Text));
        const int room = row.width() - sizeWidth - Theme::gap;
        painter.drawText(row, Qt::AlignLeft | Qt::AlignVCenter,
                         painter.fontMetrics().elidedText(nameOf(each), Qt::ElideMiddle, room));
        const double share = static_cast<double>(each.bytes) /
                             static_cast<double>(std::max<std::uint64_t>(1, m_programs[0].bytes));
        const QRect bar(0, top + rowHeight - programBarHeight - 1, width(), programBarHeight);
        painter.fillRect(bar, theme.color(Theme::Color::Line));
        painter.fillRect(
            mirrored({0, bar.top(), static_cast<int>(share * width()), programBarHeight}),
            theme.color(Theme::Color::Accent));
        top += rowHeight;
    }
}

}  // namespace orrinvale
