// The end of a run: what went is noted and measured aside, then the bubble stands for 5 seconds,
// and a second later the window goes. See CleanSysController.h.
#include <utility>

#include "engine/base/Log.h"
#include "engine/cleaning/ParseFileLog.h"
#include "services/foundation/runAside.h"
#include "ui/fastclean/CleanSysController.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/controls/QnProgressView.h"
#include "ui/kit/controls/pathText.h"

namespace orrinvale {
namespace {

// The free space is known once the disk has written all that it holds back. Nobody waits longer for
// the bubble.
constexpr std::chrono::milliseconds gainPatience{3000};

}  // namespace

void CleanSysController::endRun(std::uint64_t count, std::uint64_t bytes) {
    unRegisterNotification();
    m_endCount = count;
    m_endBytes = bytes;
    progressVal = 100.0;
    if (m_views.delProgress != nullptr) m_views.delProgress->setIndeterminate(false);
    const bool hasRemoved = m_removal != nullptr && m_removal->hasRemoved();
    // Set before it rests, so that the program does not end between the two.
    m_isSettling = hasRemoved;
    rest();
    draw();
    if (hasRemoved) settle();
    else report(std::nullopt);
}

void CleanSysController::settle() {
    QTimer::singleShot(gainPatience, this, [this] { report(std::nullopt); });
    const auto worker = runAside(
        this, "fastCleanEnd",
        [gain = m_removal->gain(), bytes = m_removal->goneBytes(),
         folder = m_parts.pages.stateFolder] {
            if (!ParseFileLog(folder).setSize(bytes, FileLog().date.value()))
                Log::line("The last clean could not be noted.");
            return gain->gained();
        },
        [this](std::optional<std::int64_t> gained) {
            m_isSettling = false;
            report(gained);
            Q_EMIT rested();
            leaveIfOver();
        });
    if (worker != nullptr) return;
    m_isSettling = false;
    report(std::nullopt);
}

void CleanSysController::report(std::optional<std::int64_t> gained) {
    if (!std::exchange(m_isReported, true)) showCleanFinishBubble(m_endCount, m_endBytes, gained);
    else if (gained && m_state == State::Reporting) showFurther(gained);  // it came late
}

// What there is to say besides the figures, in the window; the same lines are the result.
QStringList CleanSysController::showFurther(std::optional<std::int64_t> gained) {
    const FastCleanResult result{.category = m_category,
                                 .isEmpty = m_isEmpty,
                                 .isSilent = m_isSilent,
                                 .promised = m_promised,
                                 .gained = gained,
                                 .outcome = m_removal ? &m_removal->outcome() : nullptr,
                                 .closed = m_listing.closed,
                                 .skipped = m_listing.skipped};
    QStringList lines = furtherLines(result);
    m_further = lines.join(QLatin1Char('\n'));
    m_furtherTip = asToolTip(furtherReasons(result));
    draw();
    return lines;
}

void CleanSysController::showCleanFinishBubble(std::uint64_t count, std::uint64_t bytes,
                                               std::optional<std::int64_t> gained) {
    const QStringList further = showFurther(gained);
    if (!m_isClosed) enter(State::Reporting);
    // A bubble has room for three lines, or for one that is broken.
    const bool isAlone = m_isEmpty && !further.isEmpty();
    FastCleanBubbleViewDelegate& delegate = *this;
    m_bubbleView = std::make_unique<FastCleanBubbleView>(
        (isAlone ? QStringList() : countAndSizeLines(count, bytes)) + further.mid(0, 1),
        m_parts.bubbles, delegate);
    m_timer.start(m_parts.bubbles.lifetime);
}

// The pointer is on the bubble: it stays.
void CleanSysController::fastCleantimerKillToDeleteDelegate() { m_timer.stop(); }

void CleanSysController::fastCleantimerBeginToBeleteBubbleViewDelegate() {
    m_timer.start(m_parts.bubbles.lifetime);
}

void CleanSysController::timerDeleteBubble() {
    m_bubbleView.reset();
    if (m_isClosed) return leaveIfOver();
    QTimer::singleShot(m_parts.closingPause, this, [this] {
        if (m_isClosed) return;
        enter(State::Closing);
        ZvShouldCloseWindow.post(*m_parts.pages.notifications);
    });
}

void CleanSysController::leaveIfOver() {
    if (!m_isClosed || m_isWorking || m_isSettling || m_bubbleView != nullptr) return;
    Q_EMIT gone();
}

}  // namespace orrinvale
