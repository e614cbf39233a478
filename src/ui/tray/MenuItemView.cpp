// The fields and their operations first, then the drawing: name, free and total, and below them the
// bar.
#include "ui/tray/MenuItemView.h"

#include <QAction>
#include <QMouseEvent>
#include <QPainter>
#include <QToolButton>
#include <utility>

#include "engine/volumes/SpaceLevel.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr std::uint64_t memoryStorage = 5;
constexpr std::int32_t memoryTag = 5;
constexpr int iconSide = 24;
constexpr int left = 14;
constexpr int textLeft = 46;
constexpr int buttonSide = 24;
constexpr int right = 14;
constexpr int barHeight = 3;

QString shown(const QString& size) { return shownSize(size.toStdString()); }

VolumeSpace spaceOfRow(const MenuItemView& row) { return {row.nFreeSize, row.nTotalSize}; }

}  // namespace

MenuItemView::MenuItemView(const Row& row, Handlers handlers, QWidget* parent)
    : QWidget(parent),
      volumeSize(row.withVlumeName),
      u64TotalSpace(row.withTotolVol),
      u64FreeSpace(row.withFreeVol),
      bCanEject(row.withBCanEject),
      myStorage(row.withStorage),
      aIsPrograss(row.isPrograss),
      ViewTag(row.withTag),
      m_handlers(std::move(handlers)),
      m_icon(row.withVolIcon),
      m_backButton(new QToolButton(this)) {
    setFixedHeight(leastSize.height());
    setMinimumWidth(leastSize.width());
    m_backButton->setObjectName(QStringLiteral("backButton"));
    m_backButton->setFixedSize(buttonSide, buttonSide);
    m_backButton->setAutoRaise(true);
    m_backButton->setIcon(picture(QStringLiteral("hover.png")));
    m_backButton->setEnabled(bCanEject);
    m_backButton->setVisible(bCanEject);
    if (bCanEject) connect(m_backButton, &QToolButton::clicked, this, &MenuItemView::backDisk);
    tellReaders();
}

void MenuItemView::tellReaders() {
    setAccessibleName(tr("%1, %2 free of %3")
                          .arg(onOneLine(volumeSize), shown(u64FreeSpace), shown(u64TotalSpace)));
    m_backButton->setAccessibleName(tr("Eject %1").arg(onOneLine(volumeSize)));
    m_backButton->setToolTip(asToolTip(m_backButton->accessibleName()));
    update();
}

void MenuItemView::setVolumName(const QString& name) {
    if (std::exchange(volumeSize, name) != name) tellReaders();
}

void MenuItemView::setFreeTextFieldSpace(const QString& text) {
    if (std::exchange(u64FreeSpace, text) != text) tellReaders();
}

void MenuItemView::setTotleTextFieldSpace(const QString& text) {
    if (std::exchange(u64TotalSpace, text) != text) tellReaders();
}

QString MenuItemView::getPrograssImage() const {
    const auto level = static_cast<float>(warningLevelIn(errorValue.toStdString()));
    return QString::fromStdString(usagePictureName(UsagePicture::Row, spaceOfRow(*this), level,
                                                   static_cast<std::int64_t>(myStorage)));
}

void MenuItemView::setPrograssImage() const { static_cast<void>(getPrograssImage()); }

bool MenuItemView::getWarningValue() const {
    return isShortOfSpace(spaceOfRow(*this),
                          static_cast<float>(warningLevelIn(errorValue.toStdString())));
}

void MenuItemView::setSeen(const SeenVolume& seen) {
    m_seen = seen;
    const QString reason = inWords(seen.silence);
    setToolTip(seen.silence.empty() ? QString()
                                    : asToolTip(tr("It does not answer: %1").arg(reason)));
    update();
}

void MenuItemView::backDisk() {
    if (myStorage < memoryStorage && !m_isEjecting) m_handlers.ejects(*this);
}

void MenuItemView::mouseDown() {
    if (ViewTag != memoryTag && m_seen.silence.empty()) m_handlers.opens(volRootDir);
    clicked = false;
}

void MenuItemView::setEjecting(bool isEjecting) {
    m_isEjecting = isEjecting;
    m_backButton->setEnabled(!isEjecting && bCanEject);
    update();
    Q_EMIT ejectingChanged();
}

// On the release, as menus do, so that a press may still be taken back.
void MenuItemView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        mouseDown();
}

void MenuItemView::resizeEvent(QResizeEvent* event) {
    m_backButton->move(width() - buttonSide - right, (height() - buttonSide) / 2);
    QWidget::resizeEvent(event);
}

void MenuItemView::enterEvent(QEnterEvent* event) {
    clicked = false;
    update();
    QWidget::enterEvent(event);
}

void MenuItemView::leaveEvent(QEvent* event) {
    clicked = false;
    update();
    QWidget::leaveEvent(event);
}

void MenuItemView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Theme& theme = Theme::shared();
    if (clicked || underMouse()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme.color(clicked ? Theme::Color::Selection : Theme::Color::Hover));
        painter.drawRoundedRect(rect().adjusted(4, 0, -4, 0), Theme::radiusSmall,
                                Theme::radiusSmall);
    }
    const bool isSilent = !m_seen.silence.empty();
    m_icon.paint(&painter, QRect(left, (height() - iconSide) / 2, iconSide, iconSide),
                 Qt::AlignCenter, isSilent ? QIcon::Disabled : QIcon::Normal);
    const auto line = [&](const QRect& place, const QString& text, Theme::Text size,
                          Theme::Color colour) {
        painter.setFont(theme.font(size));
        painter.setPen(theme.color(isSilent ? Theme::Color::TextDisabled : colour));
        painter.drawText(place, Qt::AlignCenter,
                         painter.fontMetrics().elidedText(text, Qt::ElideRight, place.width()));
    };
    const int wide = width() - textLeft - buttonSide - right - Theme::gapSmall;
    line({textLeft, 2, wide, 17},
         m_isEjecting ? tr("Ejecting %1 …").arg(onOneLine(volumeSize)) : onOneLine(volumeSize),
         Theme::Text::Body, Theme::Color::Text);
    line({textLeft, 19, wide / 2, 14}, tr("Free: %1").arg(shown(u64FreeSpace)),
         Theme::Text::Caption, Theme::Color::TextSecondary);
    line({textLeft + wide / 2, 19, wide / 2, 14}, tr("Total: %1").arg(shown(u64TotalSpace)),
         Theme::Text::Caption, Theme::Color::TextSecondary);
    if (!m_seen.record) return;
    const auto level = static_cast<float>(warningLevelIn(errorValue.toStdString()));
    const std::string bar =
        usagePictureName(UsagePicture::Row, spaceOf(*m_seen.record), level, m_seen.record->volType);
    if (bar.empty()) return;
    painter.setOpacity(isSilent ? 0.4 : 1.0);
    const QRect place(textLeft, height() - barHeight - 3, wide, barHeight);
    painter.drawPixmap(
        place, picturePixmap(QString::fromStdString(bar), place.size(), devicePixelRatioF()));
}

}  // namespace orrinvale
