// The figures are read on this thread: one small file of the kernel's, which waits for nothing.
// What takes longer comes from the watch, or is looked at aside.
#include "ui/memory/CleanMemoryController.h"

#include <QEvent>
#include <QLabel>
#include <array>
#include <utility>

#include "engine/base/Log.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "engine/text/UtilityFunction.h"
#include "engine/volumes/SpaceLevel.h"
#include "services/foundation/runAside.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/look/picture.h"
#include "ui/memory/PieChartView.h"
#include "ui/memory/ProgramList.h"

namespace orrinvale {
namespace {

constexpr int second = 1000;  // milliseconds
constexpr int programsPause = 10 * second;

QString shown(std::uint64_t bytes) { return shownSize(UtilityFunction::covertCleanMemory(bytes)); }

QColor colour(float red, float green, float blue) { return QColor::fromRgbF(red, green, blue); }

}  // namespace

CleanMemoryController::CleanMemoryController(const PageServices& services, MemoryParts parts)
    : m_services(services),
      m_parts(std::move(parts)),
      m_clearMemory(*m_parts.memory, m_parts.purge) {
    loadView();
}

// The view goes after the timers, and hides as it goes.
CleanMemoryController::~CleanMemoryController() {
    if (m_views.customView != nullptr) m_views.customView->removeEventFilter(this);
    endTimer();
    m_refreshTimer.stop();
}

void CleanMemoryController::loadView() {
    m_refreshTimer.setInterval(second);
    m_programsTimer.setInterval(programsPause);
    connect(&m_refreshTimer, &QTimer::timeout, this,
            &CleanMemoryController::updateTitleForLabelValue);
    connect(&m_programsTimer, &QTimer::timeout, this, &CleanMemoryController::lookAtPrograms);
    connect(m_views.clearMemBtn, &QAbstractButton::clicked, this,
            &CleanMemoryController::cleanMemoryButtonClick);
    m_views.clearMemBtn->setIcon(picture(QStringLiteral("clean_memory_button.png")));
    m_views.noteTipText->setText(
        tr("This frees copies of files. Programs could have had that memory anyway, and files may "
           "open more slowly for a while."));
    updateTitleForLabelValue();
    m_views.customView->installEventFilter(this);
}

bool CleanMemoryController::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show) beginTimer();
    if (event->type() == QEvent::Hide) endTimer();
    return QObject::eventFilter(watched, event);
}

void CleanMemoryController::beginTimer() {
    updateTitleForLabelValue();
    lookAtPrograms();
    m_refreshTimer.start();
    m_programsTimer.start();
    m_looking = m_parts.watch->observe(SystemWatch::Part::Memory, [this](const SystemSight& sight) {
        m_state = sight.memoryState;
        showTitle();
        showState();
    });
}

// A run that is under way is read to its end, so that what it freed is told by then.
void CleanMemoryController::endTimer() {
    if (!m_isFreeing) m_refreshTimer.stop();
    m_programsTimer.stop();
    m_looking.reset();
}

void CleanMemoryController::updateTitleForLabelValue() {
    m_clearMemory.getMemoryInfo(&m_memoryInfo);  // which notices the end of a run, too
    if (m_isFreeing && !m_clearMemory.isRuning()) {
        m_isFreeing = false;
        m_newUsedMemory = m_memoryInfo.freeMem;
        const bool hasGrown = m_newUsedMemory > m_oldUsedMemory;
        m_cleanFreeSave = hasGrown ? m_newUsedMemory - m_oldUsedMemory : 0;
        if (!hasGrown) Log::line("释放变小了");
        cleanBtnCancelHidden();
        if (m_looking == nullptr) m_refreshTimer.stop();  // nobody sees the page any more
    }
    const std::array<std::pair<QLabel*, std::uint64_t>, 6> fields{
        {{m_views.freeMemTF, m_memoryInfo.freeMem},
         {m_views.inactiveMemTF, m_memoryInfo.inactiveMem},
         {m_views.activeMemTF, m_memoryInfo.activeMem},
         {m_views.wiredMemTF, m_memoryInfo.wiredMem},
         {m_views.usedMemTF, m_memoryInfo.usedMem},
         {m_views.totalMemTF, m_memoryInfo.totalMem}}};
    for (const auto& [field, bytes] : fields) CleanMemoryViews::showFigure(*field, shown(bytes));
    showTitle();
    showPie();
}

void CleanMemoryController::showPie() {
    const auto item = [](std::uint64_t bytes, const QColor& color) {
        return PieChartItem{{}, color, static_cast<float>(bytes)};
    };
    m_views.chartView->setPieChartItems(
        {item(m_memoryInfo.freeMem, colour(0, 0.9686F, 0.1725F)),
         item(m_memoryInfo.activeMem, colour(0.9961F, 0.9765F, 0.2078F)),
         item(m_memoryInfo.inactiveMem, colour(0.0627F, 0.2471F, 0.9843F)),
         item(m_memoryInfo.wiredMem, colour(1, 0.1647F, 0.1020F))});
}

// By what programs can have: much of what is not free is given up as soon as it is wanted.
void CleanMemoryController::showTitle() {
    if (m_memoryInfo.totalMem == 0) {
        m_views.showTitle(tr("The system does not tell what its memory is used for"), false);
        return;
    }
    const QString total = shown(m_memoryInfo.totalMem);
    if (!m_state || !m_state->available) {
        m_views.showTitle(tr("%1 of %2 are in use").arg(shown(m_memoryInfo.usedMem), total), false);
        return;
    }
    const float level = warningLevel(m_services.defaults->floatForKey(ZvMemoryAlarmKey));
    const bool isLow = isShortOfSpace({*m_state->available, m_memoryInfo.totalMem}, level);
    const QString words = isLow ? tr("Memory runs low: %1 of %2 are available to programs")
                                : tr("%1 of %2 are available to programs");
    m_views.showTitle(words.arg(shown(*m_state->available), total), isLow);
}

void CleanMemoryController::showState() {
    QStringList lines;
    if (m_state && m_state->swapTotal > 0)
        lines.push_back(
            tr("Swap: %1 of %2 in use").arg(shown(m_state->swapUsed), shown(m_state->swapTotal)));
    if (m_state && m_state->pressure)
        lines.push_back(tr("Programs waited for memory in %1 of the last minute")
                            .arg(shownPercent(QString::number(*m_state->pressure, 'f', 2))));
    m_views.stateLine->setText(lines.join(QLatin1Char('\n')));
}

void CleanMemoryController::lookAtPrograms() {
    if (!m_parts.programs || std::exchange(m_isLookingAtPrograms, true)) return;
    const auto thread = runAside(
        this, "programsOfMemory",
        [programs = m_parts.programs] { return programs(CleanMemoryViews::programRows); },
        [this](std::vector<ProgramMemory> programs) {
            m_isLookingAtPrograms = false;
            m_views.programList->setPrograms(std::move(programs));
        });
    if (thread == nullptr) m_isLookingAtPrograms = false;
}

void CleanMemoryController::CleanButtonAction() {
    if (m_views.clearMemBtn->isHidden() || m_clearMemory.isRuning()) return;
    m_views.clearMemBtn->setEnabled(false);
    m_views.clearMemBtn->setIcon(picture(QStringLiteral("cleaning.png")));
    m_views.LastCleanText->hide();
    m_views.noteTipText->hide();
    m_views.noteCleaning->show();
    m_oldUsedMemory = m_memoryInfo.freeMem;
    m_outlook = m_clearMemory.outlook();
    Log::line("begin clear memory");
    m_clearMemory.clearMemory();
    Log::line("end clear memory");
    m_isFreeing = true;
    updateTitleForLabelValue();
}

void CleanMemoryController::cleanBtnCancelHidden() {
    m_views.noteCleaning->hide();
    m_views.LastCleanText->setText(tr("%1 freed.").arg(shown(m_cleanFreeSave)));
    m_views.LastCleanText->show();
    m_views.noteTipText->setText(noteOfRun());
    m_views.noteTipText->show();
    m_views.clearMemBtn->setEnabled(true);
    m_views.clearMemBtn->setIcon(picture(QStringLiteral("clean_memory_button.png")));
}

QString CleanMemoryController::noteOfRun() const {
    if (m_clearMemory.terminationStatus() != 0) return tr("The run ended early.");
    switch (m_outlook) {
        case PurgeOutlook::NoRoom:
            return tr(
                "Nothing was taken: there is no room left for it here, or the system does "
                "not tell how much.");
        case PurgeOutlook::WithinFree:
            return tr("Nothing had to be given up: as much as one run takes was free.");
        case PurgeOutlook::GivesUp:
        case PurgeOutlook::Foreign: break;
    }
    if (m_cleanFreeSave == 0)
        return tr(
            "No more is free than before: what was given up is in use again, if anything was.");
    return tr("Copies of files went. Programs could have had that memory anyway.");
}

PageDescriptor memoryPage(const PageServices& services, const MemoryParts& parts) {
    return {.identifier = QStringLiteral("memory"),
            .label = CleanMemoryController::tr("Memory"),
            .picture = QStringLiteral("memory"),
            .make = [services, parts] {
                return std::make_unique<CleanMemoryController>(services, parts);
            }};
}

}  // namespace orrinvale
