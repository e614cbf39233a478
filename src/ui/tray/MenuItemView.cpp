// The fields and their operations first, then the drawing: name, free and total, and below them the
// bar.
#include "ui/tray/MenuItemView.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QToolButton>
#include <utility>

#include "engine/volumes/SpaceLevel.h"
#include "ui/kit/chrome/buttonLook.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/accessibleRole.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr int menuIconSide = 24;
constexpr int left = 14;
constexpr int textLeft = 46;
constexpr int buttonSide = 24;
constexpr int right = 14;
constexpr int menuBarHeight = 3;

QString shown(const QString& size) { return shownSize(size.toStdString()); }

// Of the texts and the bar, in pixels.
int wideOf(const QWidget& row) {
    return row.width() - textLeft - buttonSide - right - Theme::gapSmall;
}

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
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleTraits(*this, {.role = QAccessible::MenuItem, .press = [this] { mouseDown(); }});
    m_backButton->setFocusPolicy(Qt::NoFocus);  // the row chooses it
    m_backButton->setObjectName(QStringLiteral("backButton"));
    m_backButton->setFixedSize(buttonSide, buttonSide);
    m_backButton->setAutoRaise(true);
    m_backButton->setIcon(picture(QStringLiteral("hover.png")));
    m_backButton->setEnabled(bCanEject);
    m_backButton->setVisible(bCanEject);
    if (bCanEject) connect(m_backButton, &QToolButton::clicked, this, &MenuItemView::backDisk);
    tellReaders();
}

QString MenuItemView::inOneLine() const {
    const QString name = onOneLine(volumeSize);
    const bool hasFigures = !u64TotalSpace.isEmpty();
    const QString figures =
        hasFigures ? tr("%1: %2 free of %3").arg(name, shown(u64FreeSpace), shown(u64TotalSpace))
                   : name;
    return m_seen.silence.empty() ? figures : tr("%1, does not answer").arg(figures);
}

void MenuItemView::tellReaders() {
    setAccessibleName(inOneLine());
    m_backButton->setAccessibleName(tr("Eject %1").arg(onOneLine(volumeSize)));
    m_backButton->setToolTip(asToolTip(m_backButton->accessibleName()));
    update();
    Q_EMIT readsOtherwise();
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
    return QString::fromStdString(usagePictureName(UsagePicture::Row, spaceOfRow(*this), level(),
                                                   static_cast<std::int64_t>(myStorage)));
}

void MenuItemView::setPrograssImage() const { static_cast<void>(getPrograssImage()); }

bool MenuItemView::getWarningValue() const { return isShortOfSpace(spaceOfRow(*this), level()); }

float MenuItemView::level() const {
    return static_cast<float>(warningLevelIn(errorValue.toStdString()));
}

void MenuItemView::setSeen(const SeenVolume& seen) {
    const bool readsAsBefore = m_seen.silence.empty() == seen.silence.empty();
    m_seen = seen;
    const QString reason = inWords(seen.silence);
    setToolTip(seen.silence.empty() ? QString()
                                    : asToolTip(tr("It does not answer: %1").arg(reason)));
    if (readsAsBefore) update();
    else tellReaders();
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
    chooseEject(m_isEjectChosen && !isEjecting);
    Q_EMIT ejectingChanged();
}

void MenuItemView::mousePressEvent(QMouseEvent* event) {
    m_isPressed = event->button() == Qt::LeftButton;
}

// On the release, as menus do, so that a press may still be taken back. The press that opened the
// menu may end over a row that it did not begin on.
void MenuItemView::mouseReleaseEvent(QMouseEvent* event) {
    const bool isPressed = std::exchange(m_isPressed, false);
    if (isPressed && event->button() == Qt::LeftButton &&
        rect().contains(event->position().toPoint()))
        mouseDown();
}

void MenuItemView::setCurrent(bool isCurrent) {
    if (std::exchange(m_isCurrent, isCurrent) == isCurrent) return;
    chooseEject(false);
    if (isCurrent) setFocus(Qt::PopupFocusReason);
}

void MenuItemView::chooseEject(bool isChosen) {
    m_isEjectChosen = isChosen;
    update();
}

void MenuItemView::keyPressEvent(QKeyEvent* event) {
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    const int towardsEnd = isMirrored ? Qt::Key_Left : Qt::Key_Right;
    const int back = isMirrored ? Qt::Key_Right : Qt::Key_Left;
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (m_isCurrent && event->key() == towardsEnd && m_backButton->isEnabled()) chooseEject(true);
    else if (m_isEjectChosen && event->key() == back) chooseEject(false);
    else if (m_isEjectChosen && (isReturn || event->key() == Qt::Key_Space)) backDisk();
    else QWidget::keyPressEvent(event);
}

QRect MenuItemView::mirrored(const QRect& place) const {
    return QStyle::visualRect(layoutDirection(), rect(), place);
}

void MenuItemView::placeButton() {
    m_backButton->setGeometry(mirrored(
        {width() - buttonSide - right, (height() - buttonSide) / 2, buttonSide, buttonSide}));
}

void MenuItemView::resizeEvent(QResizeEvent* event) {
    placeButton();
    QWidget::resizeEvent(event);
}

void MenuItemView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::LayoutDirectionChange) placeButton();
    QWidget::changeEvent(event);
}

void MenuItemView::enterEvent(QEnterEvent* event) {
    clicked = false;
    Q_EMIT pointed(true);
    QWidget::enterEvent(event);
}

void MenuItemView::leaveEvent(QEvent* event) {
    clicked = false;
    Q_EMIT pointed(false);
    QWidget::leaveEvent(event);
}

void MenuItemView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Theme& theme = Theme::shared();
    if (clicked || m_isCurrent) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme.color(clicked ? Theme::Color::Selection : Theme::Color::Hover));
        painter.drawRoundedRect(rect().adjusted(4, 0, -4, 0), Theme::radiusSmall,
                                Theme::radiusSmall);
    }
    const bool isSilent = !m_seen.silence.empty();
    m_icon.paint(&painter,
                 mirrored({left, (height() - menuIconSide) / 2, menuIconSide, menuIconSide}),
                 Qt::AlignCenter, isSilent ? QIcon::Disabled : QIcon::Normal);
    paintTexts(painter);
    paintBar(painter);
    if (m_isEjectChosen)
        drawFocusRing(painter, m_backButton->geometry().adjusted(-2, -2, 2, 2), Theme::radiusSmall);
}

void MenuItemView::paintTexts(QPainter& painter) const {
    const bool isSilent = !m_seen.silence.empty();
    const auto line = [&](const QRect& place, const QString& text, Theme::Text size,
                          Theme::Color colour) {
        const Theme& theme = Theme::shared();
        painter.setFont(theme.font(size));
        painter.setPen(theme.color(isSilent ? Theme::Color::TextDisabled : colour));
        painter.drawText(mirrored(place), Qt::AlignCenter,
                         painter.fontMetrics().elidedText(text, Qt::ElideRight, place.width()));
    };
    const int wide = wideOf(*this);
    const auto quiet = [&](const QRect& place, const QString& text) {
        line(place, text, Theme::Text::Caption, Theme::Color::TextSecondary);
    };
    line({textLeft, 2, wide, 17},
         m_isEjecting ? tr("Ejecting %1 …").arg(onOneLine(volumeSize)) : onOneLine(volumeSize),
         Theme::Text::Body, Theme::Color::Text);
    if (u64TotalSpace.isEmpty()) {
        quiet({textLeft, 19, wide, 14}, tr("Does not answer"));
        return;
    }
    quiet({textLeft, 19, wide / 2, 14}, tr("Free: %1").arg(shown(u64FreeSpace)));
    quiet({textLeft + wide / 2, 19, wide / 2, 14}, tr("Total: %1").arg(shown(u64TotalSpace)));
}

void MenuItemView::paintBar(QPainter& painter) const {
    if (!m_seen.record) return;
    const std::string bar = usagePictureName(UsagePicture::Row, spaceOf(*m_seen.record), level(),
                                             m_seen.record->volType);
    if (bar.empty()) return;
    painter.setOpacity(m_seen.silence.empty() ? 1.0 : 0.4);
    const QRect place =
        mirrored({textLeft, height() - menuBarHeight - 3, wideOf(*this), menuBarHeight});
    painter.drawPixmap(
        place, picturePixmap(QString::fromStdString(bar), place.size(), devicePixelRatioF()));
    painter.setOpacity(1.0);
}

}  // namespace orrinvale
