// Built in code from the controls of the kit. The bar stretches, which a picture in a label does
// not.
#include "ui/volumes/CustomVolumView.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>
#include <array>
#include <tuple>
#include <utility>

#include "engine/text/Localized.h"
#include "engine/volumes/ZvVolumeInfo.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/accessibleRole.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {

namespace {

constexpr int volumeIconSide = 32;
constexpr int cardGap = Theme::gapSmall;  // below each card, within its height

// A picture as wide as there is room.
PictureView* makeBar(const char* name) {
    constexpr int height = 10;
    PictureView* const made = named(new PictureView({}, {height, height}), name);
    made->setMaximumWidth(QWIDGETSIZE_MAX);
    made->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    return made;
}

// Quiet text at the left or the right of the card.
QLabel* makeQuiet(const char* name) {
    QLabel* const made = makeLabel(name, Theme::Text::Caption, QPalette::PlaceholderText);
    made->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    return made;
}

}  // namespace

QString volumeGroupName(std::int64_t group) {
    constexpr std::array keys{"LOCAL_STORAGE",  "EXTERNAL_STORAGE", "SUPER_DRIVER",
                              "NETWOR_STORAGE", "DISK_IMAGE",       "FREE_MEMORY"};
    const auto row = static_cast<std::size_t>(group);  // beyond the keys where it is negative
    return row < keys.size() ? QString::fromStdString(getLocalizedString(keys.at(row))) : QString();
}

QString volumePicture(std::int32_t volType, bool isBootVolume) {
    switch (volType) {
        case ExternalVolume: return QStringLiteral("disk_ico_5.png");
        case OpticalVolume: return QStringLiteral("disk_ico_3.png");
        case NetworkVolume: return QStringLiteral("disk_ico_4.png");
        case DiskImageVolume: return QStringLiteral("disk_ico_2.png");
        default:
            return isBootVolume ? QStringLiteral("disk_mac.png") : QStringLiteral("disk_ico_1.png");
    }
}

CustomVolumView::CustomVolumView(const ZvVolumeInfo& volume, std::string errorValue,
                                 std::int32_t isPrograss, std::int32_t tag,
                                 CustomVolumViewDelegate& delegate, QWidget* parent)
    : QWidget(parent),
      m_delegate(delegate),
      m_volumeName(volume.volumeName),
      m_volRootDir(volume.volRootDir),
      m_errorValue(std::move(errorValue)),
      m_u64FreeSpace(volume.freeSpace),
      m_u64TotalSpace(volume.totalSpace),
      m_nTotalSize(volume.nTotalSize),
      m_nFreeSize(volume.nFreeSize),
      m_nReservedSize(volume.nReservedSize),
      m_volRefNumber(volume.volRefNumber),
      m_myStorage(volume.volType),
      m_aIsPrograss(isPrograss),
      m_viewTag(tag),
      m_bCanEject(volume.bCanEject) {
    setObjectName(QStringLiteral("CustomVolumView"));
    setFixedHeight(cardHeight);
    setAttribute(Qt::WA_Hover);
    setAccessibleTraits(*this, {.role = QAccessible::Grouping});
    connect(&Theme::shared(), &Theme::changed, this, [this] { setPrograssImage(); });
    makeParts(volume.bCanEject);
    m_groupName->setText(volumeGroupName(volume.volType));
    setvolumIcon(volumePicture(volume.volType, volume.bIsDefaultVol));
    showClicked(false);
    showTexts();
    setPrograssImage();
}

void CustomVolumView::makeParts(bool canEject) {
    m_curVolIcon = named(new PictureView({}, {volumeIconSide, volumeIconSide}), "curVolIcon");
    m_volName = named(new ElidedLabel(Qt::ElideMiddle), "volName");
    m_volName->setFont(Theme::shared().font(Theme::Text::BodyStrong));
    m_groupName = makeQuiet("groupName");
    m_freeVolT = makeLabel("freeVolT", Theme::Text::BodyStrong);
    m_prograssView = makeBar("prograssView");
    m_totlVolT = makeQuiet("totlVolT");
    m_usedVolT = makeQuiet("usedVolT");
    m_browseButton =
        makeImageButton("browseButton", QStringLiteral("search.png"), tr("Open in file manager"));
    m_ejectButton = makeImageButton("ejectButton", QStringLiteral("tc.png"), tr("Eject"));
    connect(m_browseButton, &QAbstractButton::clicked, this, &CustomVolumView::browseDisk);
    connect(m_ejectButton, &QAbstractButton::clicked, this, &CustomVolumView::backDisk);
    // The bars of all cards end at one place.
    QSizePolicy kept = m_ejectButton->sizePolicy();
    kept.setRetainSizeWhenHidden(true);
    m_ejectButton->setSizePolicy(kept);

    const auto rowOf = [](QWidget* first, QWidget* second, QWidget* last) {
        auto* const row = new QHBoxLayout;
        row->setSpacing(Theme::gapSmall);
        row->addWidget(first);
        if (second != nullptr) row->addWidget(second);
        row->addStretch(1);
        row->addWidget(last);
        return row;
    };
    auto* const column = new QVBoxLayout;
    column->setSpacing(Theme::gapTiny + 2);
    column->addStretch();
    column->addLayout(rowOf(m_volName, m_groupName, m_freeVolT));
    column->addWidget(m_prograssView);
    column->addLayout(rowOf(m_totlVolT, nullptr, m_usedVolT));
    column->addStretch();
    auto* const all = new QHBoxLayout(this);
    all->setContentsMargins(Theme::gapLarge, 0, Theme::gap, cardGap);
    all->setSpacing(Theme::gapLarge);
    all->addWidget(m_curVolIcon);
    all->addLayout(column, 1);
    auto* const buttons = new QHBoxLayout;
    buttons->setSpacing(Theme::gapTiny);
    buttons->addWidget(m_browseButton);
    buttons->addWidget(m_ejectButton);
    all->addLayout(buttons);
    m_ejectButton->setHidden(!canEject);  // not before it stands in the card: it would be a window
}

void CustomVolumView::showFigures(const SeenVolume& seen) {
    const ZvVolumeInfo& volume = *seen.record;
    const auto texts = [this] {
        return std::tie(m_u64FreeSpace, m_u64TotalSpace, m_volumeName, m_volRootDir, m_silence);
    };
    const QString silence = seen.silence.empty() ? QString() : inWords(seen.silence);
    const auto now = std::tie(volume.freeSpace, volume.totalSpace, volume.volumeName,
                              volume.volRootDir, silence);
    if (texts() != now) {
        texts() = now;
        showTexts();
    }
    m_nTotalSize = volume.nTotalSize;
    m_nFreeSize = volume.nFreeSize;
    m_nReservedSize = volume.nReservedSize;
    setPrograssImage();
}

void CustomVolumView::setvolumIcon(const QString& picture) { m_curVolIcon->setPicture(picture); }

void CustomVolumView::setVolumName(const std::string& name) {
    if (std::exchange(m_volumeName, name) != name) showTexts();
}

void CustomVolumView::setFreeTextFieldSpace(const std::string& freeSpace) {
    if (std::exchange(m_u64FreeSpace, freeSpace) != freeSpace) showTexts();
}

void CustomVolumView::setTotleTextFieldSpace(const std::string& totalSpace) {
    if (std::exchange(m_u64TotalSpace, totalSpace) != totalSpace) showTexts();
}

void CustomVolumView::showTexts() {
    const QString name = onOneLine(QString::fromStdString(m_volumeName));
    m_volName->setText(name);
    m_volName->setToolTip(asToolTip(QString::fromStdString(m_volRootDir)));
    const bool answers = m_silence.isEmpty();
    const QString free = m_u64TotalSpace.empty() ? QString()  // it never answered
                                                 : tr("%1 Free").arg(shownSize(m_u64FreeSpace));
    m_freeVolT->setText(m_isEjecting ? tr("Ejecting ...") : free);
    const QString total = tr("Total: %1").arg(shownSize(m_u64TotalSpace));
    m_totlVolT->setText(answers ? total : tr("Does not answer: %1").arg(onOneLine(m_silence)));
    m_volName->setEnabled(answers);
    m_browseButton->setAccessibleName(tr("Open %1 in file manager").arg(name));
    m_ejectButton->setAccessibleName(tr("Eject %1").arg(name));
    setAccessibleName(
        QStringList{name, m_groupName->text(), m_freeVolT->text(), m_totlVolT->text()}.join(
            QStringLiteral(", ")));
    m_browseButton->setEnabled(!m_isEjecting && answers);  // nobody else could open it either
    m_ejectButton->setEnabled(!m_isEjecting);
    m_prograssView->setEnabled(!m_isEjecting && answers);
    m_freeVolT->setEnabled(m_isEjecting || answers);
    m_usedVolT->setEnabled(answers);
}

VolumeSpace CustomVolumView::space() const {
    ZvVolumeInfo figures;
    figures.nFreeSize = m_nFreeSize;
    figures.nTotalSize = m_nTotalSize;
    figures.nReservedSize = m_nReservedSize;
    return spaceOf(figures);
}

bool CustomVolumView::getWarningValue() const {
    return isShortOfSpace(space(), static_cast<float>(warningLevelIn(m_errorValue)));
}

bool CustomVolumView::isWarned() const { return getWarningValue() && isGroupWarned(m_myStorage); }

QString CustomVolumView::getPrograssImage() const {
    return QString::fromStdString(usagePictureName(UsagePicture::Page, space(), isWarned()));
}

void CustomVolumView::setPrograssImage() {
    m_prograssView->setPicture(getPrograssImage());
    const auto used = usedPercent(space());
    m_usedVolT->setText(used ? tr("%1 used").arg(shownPercent(QString::number(*used))) : QString());
    QPalette palette = m_freeVolT->palette();
    palette.setColor(QPalette::Active, QPalette::WindowText,
                     Theme::shared().color(isWarned() ? Theme::Color::Danger : Theme::Color::Text));
    palette.setColor(QPalette::Inactive, QPalette::WindowText,
                     palette.color(QPalette::Active, QPalette::WindowText));
    m_freeVolT->setPalette(palette);
    update();
}

void CustomVolumView::backDisk() {
    if (m_isEjecting || m_myStorage < LocalVolume || m_myStorage > DiskImageVolume) return;
    m_delegate.ejectVolume(m_volRefNumber, m_volRootDir, m_volumeName);
}

void CustomVolumView::browseDisk() {
    if (!m_volRootDir.empty()) m_delegate.browseVolume(m_volRootDir);
}

void CustomVolumView::setEjecting(bool is) {
    m_isEjecting = is;
    showTexts();
}

void CustomVolumView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Theme::shared().color(Theme::Color::Line));
    painter.setBrush(Theme::shared().color(Theme::Color::Surface));
    const QRectF card = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5 - cardGap);
    painter.drawRoundedRect(card, Theme::radius, Theme::radius);
}

// The eject button of the card under the pointer shows that it is meant.
void CustomVolumView::showClicked(bool is) {
    m_clicked = is;
    m_ejectButton->setImage(!m_bCanEject ? QStringLiteral("search.png")
                            : m_clicked  ? QStringLiteral("tc_hover.png")
                                         : QStringLiteral("tc.png"));
    m_ejectButton->setIconSize({20, 20});
    update();
}

void CustomVolumView::enterEvent(QEnterEvent* /*event*/) { showClicked(true); }

void CustomVolumView::leaveEvent(QEvent* /*event*/) { showClicked(false); }

}  // namespace orrinvale
