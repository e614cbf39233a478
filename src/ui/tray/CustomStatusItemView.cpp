// The two fields stand in a column 80 wide beside the program's picture.
#include "ui/tray/CustomStatusItemView.h"

#include <QFontMetricsF>
#include <QPainter>

#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr int besideTitle = 52;
constexpr QRect logoPlace(2, 2, 20, 20);
constexpr int column = 26;

QColor restingColour() { return QColor::fromRgbF(0.1725F, 0.7255F, 0.3490F); }

}  // namespace

CustomStatusItemView::CustomStatusItemView(QWidget* parent)
    : QWidget(parent), textField(new QLabel(this)), totolField(new QLabel(this)) {
    setFixedHeight(24);
    QFont font(QStringLiteral("Helvetica Neue"));
    font.setPixelSize(10);
    int top = 0;
    for (QLabel* const each : {textField, totolField}) {
        each->setTextFormat(Qt::PlainText);
        each->setFont(font);
        each->setGeometry(column, top, 80, 12);
        top += 12;
    }
    setFieldColour(restingColour());
}

void CustomStatusItemView::setFieldColour(const QColor& colour) {
    for (QLabel* const each : {textField, totolField}) {
        QPalette palette = each->palette();
        palette.setColor(QPalette::WindowText, colour);
        each->setPalette(palette);
    }
    update();
}

void CustomStatusItemView::setTitle(const QString& title) {
    if (title == m_title) return;
    m_title = title;
    m_length = static_cast<int>(QFontMetricsF(font()).horizontalAdvance(title)) + besideTitle;
    update();
}

void CustomStatusItemView::updateShowSizeWithFree(const QString& free,
                                                  const QString& withTotalSpace) {
    u64FreeSpace = free;
    u64TotalSpace = withTotalSpace;
    textField->setText(tr("Free:%1").arg(free));
    totolField->setText(tr("Total:%1").arg(withTotalSpace));
}

void CustomStatusItemView::setWarningStatusShowColor(bool warns) {
    setFieldColour(warns ? Qt::red : Qt::white);
}

void CustomStatusItemView::menuWillOpen() {
    isMenuVisible = true;
    setFieldColour(Qt::white);
}

void CustomStatusItemView::menuDidClose() {
    isMenuVisible = false;
    setFieldColour(restingColour());
}

void CustomStatusItemView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    picture(QStringLiteral("appicon")).paint(&painter, logoPlace);
    painter.drawText(QPoint(column, 13), m_title);
}

}  // namespace orrinvale
