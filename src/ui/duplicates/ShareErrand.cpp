// A disk that hangs holds nobody up: a stop ends the errand at once, and its thread when it can.
#include "ui/duplicates/ShareErrand.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <chrono>
#include <utility>

#include "engine/cleaning/QnAuthorization.h"
#include "services/foundation/runAside.h"
#include "ui/duplicates/shareWords.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/accessibleRole.h"

namespace orrinvale {
namespace {

constexpr int sharePanelWidth = 460;
// Most looks are over before a sheet would have come down.
constexpr std::chrono::milliseconds untilSheet{400};

}  // namespace

ShareErrand::ShareErrand(const PageServices& services, QObject* parent)
    : QObject(parent), m_services(services) {
    m_patience.setSingleShot(true);
    connect(&m_patience, &QTimer::timeout, this, [this] { showWaiting(); });
}

ShareErrand::~ShareErrand() {
    if (m_stop) *m_stop = true;
}

void ShareErrand::look(QWidget& window, DuplicatePlan plan, std::function<void(Outlook)> ended) {
    if (isLooking()) return;
    m_stop = std::make_shared<std::atomic<bool>>(false);
    m_progress = std::make_shared<ProgressBox>();
    m_ended = std::move(ended);
    m_window = &window;
    const auto worker = runAside(
        this, "shareOutlook",
        [files = m_services.files, plan = std::move(plan), progress = m_progress, stop = m_stop] {
            return lookAtSharing(*files, QnAuthorization::protectedPlaces(), plan, true, *progress,
                                 *stop);
        },
        [this, stop = m_stop](ShareOutlook outlook) {
            if (stop == m_stop) finish(std::move(outlook));
        });
    if (worker != nullptr) m_patience.start(untilSheet);
    else QTimer::singleShot(0, this, [this] { stop(); });
}

void ShareErrand::stop() {
    if (!m_stop) return;
    *m_stop = true;
    finish(std::nullopt);
}

void ShareErrand::finish(Outlook outlook) {
    m_patience.stop();
    m_stop.reset();
    if (m_sheet != nullptr) std::exchange(m_sheet, nullptr)->close({});
    std::exchange(m_ended, nullptr)(std::move(outlook));
}

void ShareErrand::showWaiting() {
    if (m_window == nullptr) return;
    auto* const panel = new QWidget;
    panel->setObjectName(QStringLiteral("shareLookPanel"));
    panel->setFixedWidth(sharePanelWidth);
    setAccessibleTraits(*panel, {.role = QAccessible::Dialog, .isModal = true});
    auto* const title = makeLabel("shareLookTitle", Theme::Text::Heading);
    title->setText(lookingText());
    title->setWordWrap(true);
    title->setAlignment(Qt::AlignLeading);
    panel->setAccessibleName(title->text());
    auto* const current = named(new ElidedLabel(Qt::ElideMiddle), "shareLookCurrent");
    auto* const stopButton = named(new TextImageButton(stopLookText()), "shareLookStop");
    auto* const column = new QVBoxLayout(panel);
    column->setContentsMargins(Theme::gapHuge, Theme::gapHuge, Theme::gapHuge, Theme::gapLarge);
    column->setSpacing(Theme::gap);
    column->addWidget(title);
    column->addWidget(current);
    column->addWidget(stopButton, 0, Qt::AlignTrailing);
    auto* const often = new QTimer(panel);
    const auto show = [current, progress = m_progress] {
        current->setText(onOneLine(QString::fromStdString(progress->copy().current)));
    };
    connect(often, &QTimer::timeout, panel, show);
    constexpr std::chrono::milliseconds redraw{100};
    often->start(redraw);
    show();
    m_sheet = new Sheet(*m_window, panel);  // ends itself
    connect(stopButton, &QAbstractButton::clicked, this, [this] { stop(); });
    connect(m_sheet, &Sheet::cancelled, this, [this] { stop(); });
    m_sheet->open(stopButton);
}

}  // namespace orrinvale
