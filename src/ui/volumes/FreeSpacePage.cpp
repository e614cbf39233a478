// What is seen comes from SystemWatch, so that nothing here waits for a disk.
#include "ui/volumes/FreeSpacePage.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QShortcut>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>
#include <utility>

#include "engine/base/notices.h"
#include "engine/volumes/volumeNotices.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/Panel.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/page/ResultFrame.h"
#include "ui/volumes/levelNow.h"

namespace orrinvale {
FreeSpacePage::FreeSpacePage(const PageServices& services, FreeSpaceParts parts)
    : m_services(services),
      m_parts(parts),
      m_diskSizeView([this] { return m_seen->volumes; }, *this) {
    NotificationCenter& center = *services.notifications;
    m_observations.push_back(notice::updateNewDiskSizeView.observe(center, [this] {
        if (m_looking) updateNewDiskSizeViewData();
    }));
    m_observations.push_back(
        notice::refMenuItemWhenDeleteAndAdd.observe(center, [this] { lookNow(); }));
    connect(parts.ejections, &Ejections::changed, this, &FreeSpacePage::showEjecting);
    makeView();
}

FreeSpacePage::~FreeSpacePage() {
    if (m_view != nullptr && m_view->parentWidget() == nullptr) delete m_view.data();
}

void FreeSpacePage::makeView() {
    m_view = named(new Panel(Theme::Color::Window), "diskSizeView");
    auto* const head = new Panel(Theme::Color::Surface, Qt::BottomEdge);
    head->setFixedHeight(ResultFrame::barHeight);
    m_titleLabel = named(new ElidedLabel, "titleLabel");
    m_titleLabel->setFont(Theme::shared().font(Theme::Text::BodyStrong));
    auto* const row = new QHBoxLayout(head);
    row->setContentsMargins(Theme::gapLarge, 0, Theme::gapLarge, 0);
    row->setSpacing(Theme::gapSmall);
    row->addWidget(new PictureView(QStringLiteral("free_space"), {20, 20}));
    row->addWidget(m_titleLabel, 1);

    m_page = named(new Panel(Theme::Color::Window), "volumePage");
    auto* const list = new QVBoxLayout(m_page);
    list->setContentsMargins({});
    const EmptyView empty = makeEmptyView(QStringLiteral("empty_search"), false);
    m_emptyLabel = empty.label;
    m_content = named(new QStackedWidget, "content");
    m_content->addWidget(m_page);
    m_content->addWidget(empty.view);
    auto* const column = new QVBoxLayout(m_view);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(head);
    column->addWidget(m_content, 1);
    showTitle();
    m_view->installEventFilter(this);
    connect(new QShortcut(QKeySequence::Refresh, m_view), &QShortcut::activated, this,
            &FreeSpacePage::lookNow);
}

bool FreeSpacePage::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show) look(true);
    if (event->type() == QEvent::Hide) look(false);
    return QObject::eventFilter(watched, event);
}

void FreeSpacePage::look(bool isOnScreen) {
    m_looking.reset();
    if (!isOnScreen) return;
    m_looking = m_parts.watch->observe(
        SystemWatch::Part::Volumes,
        [this](const SystemSight& /*sight*/) { updateNewDiskSizeViewData(); });
    // Mostly that takes milliseconds; a dead server takes its second.
    constexpr int patience = 300;
    QTimer::singleShot(patience, this, [this] {
        if (m_view == nullptr) return;
        if (m_diskSizeView.scrollArea() != nullptr) return;
        m_emptyLabel->setText(tr("Looking at your volumes ..."));
        m_content->setCurrentIndex(1);
    });
}

void FreeSpacePage::lookNow() {
    if (m_looking) m_parts.watch->lookNow();
}

// Of one look both the watch and the tray tell, which is filled once. A row is matched by its place
// alone, so that cards of another sequence are never filled.
void FreeSpacePage::updateNewDiskSizeViewData() {
    const auto now = m_parts.watch->latest();
    const std::string level = levelNow();
    if (now == nullptr || (now == m_seen && level == m_shownLevel)) return;
    const auto before = std::exchange(m_seen, now);
    if (before != nullptr && hasSameRows(*before, *now) && level == m_shownLevel)
        m_diskSizeView.updateViewAndData();
    else rebuild();
    showTitle();
}

void FreeSpacePage::rebuild() {
    m_diskSizeView.initDiskSizeView(m_page);
    m_shownLevel = levelNow();
    showEjecting();
    m_emptyLabel->setText(tr("There are no volumes here."));
    m_content->setCurrentIndex(m_seen->volumes.empty() ? 1 : 0);
}

void FreeSpacePage::showEjecting() const {
    const auto& cards = m_diskSizeView.allItemArr();
    for (std::size_t row = 0; row < cards.size(); ++row) {
        const ZvVolumeInfo& volume = *m_seen->volumes[row].record;
        cards[row]->setEjecting(volume.bCanEject && m_parts.ejections->isEjecting(
                                                        {volume.volRefNumber, volume.volRootDir}));
    }
}

void FreeSpacePage::showTitle() const {
    const bool hasVolumes = m_seen && !m_seen->volumes.empty();
    const SeenVolume* const seen = hasVolumes ? bootVolume(m_seen->volumes) : nullptr;
    if (seen == nullptr) {
        m_titleLabel->setText(hasVolumes ? tr("Your volumes") : tr("Free Space"));
        return;
    }
    const ZvVolumeInfo& boot = *seen->record;
    const float level = static_cast<float>(warningLevelIn(levelNow()));
    const QString words = isShortOfSpace(spaceOf(boot), level)
                              ? tr("This computer runs out of space: %1 of %2 are free")
                              : tr("%1 of %2 are free on this computer");
    m_titleLabel->setText(words.arg(shownSize(boot.freeSpace), shownSize(boot.totalSpace)));
}

void FreeSpacePage::ejectVolume(std::int16_t volRefNumber, const std::string& volRootDir,
                                const std::string& volumeName) {
    m_parts.ejections->eject({volRefNumber, volRootDir}, volumeName, this, [this](bool /*isGone*/) {
        notice::refMenuItemWhenDeleteAndAdd.post(*m_services.notifications);
    });
}

void FreeSpacePage::browseVolume(const std::string& volRootDir) {
    notice::openFinderWhenClickItems.post(*m_services.notifications, volRootDir);
}

PageDescriptor freeSpacePage(const PageServices& services, const FreeSpaceParts& parts) {
    return {.identifier = QStringLiteral("free_space"),
            .label = FreeSpacePage::tr("Free Space"),
            .picture = QStringLiteral("free_space"),
            .make = [services, parts] { return std::make_unique<FreeSpacePage>(services, parts); }};
}

}  // namespace orrinvale
