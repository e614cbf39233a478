// The way of a run from its folders to the end of its removal. What notices bring is kept in the
// fields and drawn ten times a second.
#include "ui/fastclean/CleanSysController.h"

#include <QLabel>
#include <QPointer>
#include <QShortcut>
#include <algorithm>
#include <cmath>
#include <utility>

#include "engine/base/UtilityObject.h"
#include "engine/base/saturating.h"
#include "platform/paths.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/chrome/WindowButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/controls/QnProgressView.h"
#include "ui/kit/controls/pathText.h"

namespace orrinvale {
namespace {

constexpr std::chrono::milliseconds drawInterval{100};

bool wantsQuestion(CleanCategory category) {
    return category == CleanCategory::UserTrash || category == CleanCategory::UserDownloads;
}

std::vector<std::string> foldersOf(const std::vector<CleanRow>& rows) {
    std::vector<std::string> folders;
    for (const CleanRow& row : rows) {
        const std::string_view folder = splitPath(row.path).folder;
        if (folders.empty() || withoutSlashesAtEnd(folder) != folders.back())
            folders.emplace_back(withoutSlashesAtEnd(folder));
    }
    return folders;
}

}  // namespace

CleanSysController::CleanSysController(const FastCleanParts& parts) : m_parts(parts) {
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &CleanSysController::timerDeleteBubble);
    connect(&m_drawTimer, &QTimer::timeout, this, &CleanSysController::draw);
    m_nameTimer.setSingleShot(true);
    connect(&m_nameTimer, &QTimer::timeout, this, [this] { takeNames(std::nullopt); });
}

CleanSysController::~CleanSysController() = default;

std::unique_ptr<CleanSysController> CleanSysController::init(
    const FastCleanParts& parts, const std::function<void(const QStringList& lines)>& tell) {
    std::unique_ptr<CleanSysController> made(new CleanSysController(parts));
    made->resetStatus();
    made->readSettings();
    const NotificationCenter& center = *parts.pages.notifications;
    UtilityObject& shared = UtilityObject::getMyObject();
    if (!made->foldersArr.empty() || made->isAskingNames()) {
        shared.setIsCanBeAction(false);
        notice::refMenuItemWhenDeleteAndAdd.post(center);
        return made;
    }
    tell({made->waitingText()});
    shared.setIsCanBeAction(true);
    ZvShouldCloseWindow.post(center);
    notice::refMenuItemWhenDeleteAndAdd.post(center);
    return nullptr;
}

void CleanSysController::resetStatus() {
    totalSize = fileCount = failedCount = failedSize = totalDelSize = 0;
    foldersArr.clear();
    progressVal = 0;
    showFixedText = tr("Scanning system...");
    draw();
}

void CleanSysController::makeWindow() {
    if (m_window != nullptr) return;
    m_window = std::make_unique<TCImageWindow>();
    m_views = makeFastCleanViews(*m_window);
    m_window->setWindowFlag(Qt::WindowStaysOnTopHint);
    m_window->standardWindowButton(0)->setAction([this] { performClose(); });
    connect(m_views.cancelBtn, &QAbstractButton::clicked, this, &CleanSysController::stopFastClean);
    connect(m_views.startBtn, &QAbstractButton::clicked, this, &CleanSysController::windowDidLoad);
    auto* const escape = new QShortcut(QKeySequence(Qt::Key_Escape), m_window.get());
    connect(escape, &QShortcut::activated, this, &CleanSysController::performClose);
    m_window->center();
}

void CleanSysController::windowDidLoad() {
    if (m_state != State::Idle) return;
    if (!isAsShown()) {
        readSettings();
        return draw();
    }
    registerNotification();
    resetStatus();
    m_views.delProgress->setIndeterminate(true);
    m_isWorking = true;
    enter(State::Measuring);
    m_drawTimer.start(drawInterval);
    if (!isAskingNames()) browse();
}

void CleanSysController::browse() {
    foldersArr = m_runFolders;
    m_browse = std::make_unique<BrowseFolderOperation>(
        m_runFolders, m_parts.clean,
        CleanPosts{m_parts.pages.notifications, m_parts.pages.mainQueue});
    m_browse->main();
}

void CleanSysController::showWindow() {
    makeWindow();
    windowDidLoad();
    bringForward();
}

void CleanSysController::showWindowWaiting() {
    makeWindow();
    draw();
    bringForward();
}

void CleanSysController::bringForward() {
    m_window->setWindowState(m_window->windowState() & ~Qt::WindowMinimized);
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
}

void CleanSysController::registerNotification() {
    NotificationCenter& center = *m_parts.pages.notifications;
    const auto keep = [this](NotificationCenter::Observation observation) {
        m_observations.push_back(std::move(observation));
    };
    keep(ZvScanSingleFolder.observe(
        center, [this](const FolderPath& folder) { handleSingleFolder(folder); }));
    keep(ZvScanOperationFinish.observe(
        center, [this](const FolderTotals& totals) { handleScanFinish(totals); }));
    keep(ZvBeginFastClean.observe(center, [this] { handleBeginFastClean(); }));
    keep(ZvDeleteFileSuccess.observe(
        center, [this](const CleanedFile& file) { handleDelFileSuccess(file); }));
    keep(ZvFastCleanFinish.observe(center, [this] { handleFinishClean(); }));
    keep(ZvCleanCanceled.observe(center, [this] { handleCancelClean(); }));
    m_failedObservation = ZvDeleteFileFailed.observe(
        center, [this](const CleanedFile& file) { handleDelFileFailed(file); });
}

void CleanSysController::unRegisterNotification() { m_observations.clear(); }

void CleanSysController::handleSingleFolder(const FolderPath& folder) {
    curDeleteFile = folder.path;
}

void CleanSysController::handleScanFinish(const FolderTotals& totals) {
    totalSize = totals.FolderSize;
    fileCount = totals.FileCount;
    m_listing = m_browse->takeListing();
    m_promised = m_listing.onDisk;
    m_isEmpty = m_listing.rows.empty();
    if (wantsQuestion(m_category) && !m_isEmpty) askBefore();
    else beginRemoval();
}

// What a person threw away or loaded can not be made again.
void CleanSysController::askBefore() {
    m_views.delProgress->setIndeterminate(false);
    const Alert question =
        goodbyeQuestion(m_category, foldersOf(m_listing.rows), fileCount, totalSize);
    fitFastCleanWindow(*m_window, &question);
    bringForward();
    m_parts.pages.dialogs->alert(m_window.get(), question, [self = QPointer(this)](int button) {
        if (self == nullptr || self->m_state != State::Measuring) return;
        fitFastCleanWindow(*self->m_window);
        if (button == 0) return self->beginRemoval();
        self->unRegisterNotification();
        self->enter(State::Closing);
        self->rest();
        ZvShouldCloseWindow.post(*self->m_parts.pages.notifications);
    });
}

void CleanSysController::beginRemoval() {
    CleanTaskParts parts{
        .clean = m_parts.clean,
        .stateFolder = m_parts.pages.stateFolder,
        .makeDoor = [make = m_parts.makeDoor, category = m_category] { return make(category); }};
    m_removal = std::make_unique<DeleteFolderOperation>(
        m_runFolders, std::exchange(m_listing.rows, {}), std::move(parts),
        CleanPosts{m_parts.pages.notifications, m_parts.pages.mainQueue}, m_parts.freeSpace);
    enter(State::Deleting);
    m_removal->main();
}

void CleanSysController::handleBeginFastClean() {
    m_views.delProgress->setIndeterminate(false);
    if (!m_runFolders.empty()) showFixedText = tr("Deleting items...");
}

void CleanSysController::handleDelFileFailed(const CleanedFile& file) {
    updateFastClean(file);
    addSaturating(failedSize, file.FileSize.value_or(0));
    ++failedCount;
}

void CleanSysController::updateFastClean(const CleanedFile& file) {
    curDeleteFile = file.FilePath;
    addSaturating(totalDelSize, file.FileSize.value_or(0));
    progressVal = static_cast<double>(totalDelSize) / (static_cast<double>(totalSize) / 100.0);
}

void CleanSysController::handleFinishClean() {
    // Items that failed stay in the size: what they are taken from is told without any.
    const std::uint64_t bytes = failedCount == 0 ? totalSize - failedSize : totalSize;
    endRun(fileCount, bytes);
}

void CleanSysController::handleCancelClean() {
    if (m_removal == nullptr && m_browse != nullptr) fileCount = m_browse->entriesSeen();
    endRun(fileCount, totalDelSize);
}

void CleanSysController::stopFastClean() {
    if (m_state != State::Measuring && m_state != State::Deleting) return;
    // The person is asked, or the disk for its folders.
    const bool isAsking = m_removal == nullptr && (m_browse == nullptr || !m_listing.rows.empty());
    progressVal = 100.0;
    m_nameTimer.stop();
    enter(State::Closing);
    if (isAsking) {
        unRegisterNotification();
        rest();
    } else if (m_removal != nullptr) {
        m_removal->cancel();
    } else {
        m_browse->cancel();
    }
    ZvShouldCloseWindow.post(*m_parts.pages.notifications);
}

void CleanSysController::performClose() {
    if (m_state == State::Measuring || m_state == State::Deleting) stopFastClean();
    else ZvShouldCloseWindow.post(*m_parts.pages.notifications);
}

void CleanSysController::close() {
    m_isClosed = true;
    m_drawTimer.stop();
    if (m_window != nullptr) m_window->hide();
    if (m_state == State::Idle) enter(State::Closing);
    leaveIfOver();
}

void CleanSysController::giveUp() {
    if (m_window != nullptr) m_window->hide();
    m_nameTimer.stop();
    if (m_state == State::Reporting) return;
    enter(State::Closing);
    // What went is noted and measured once the removal says that it has ended.
    if (m_removal != nullptr) return m_removal->cancel();
    if (m_browse != nullptr) m_browse->cancel();
    unRegisterNotification();
    rest();
}

bool CleanSysController::isRemoving() const {
    return (m_isWorking && m_removal != nullptr) || m_isSettling;
}

void CleanSysController::rest() {
    if (!std::exchange(m_isWorking, false)) return;
    m_drawTimer.stop();
    Q_EMIT rested();
}

void CleanSysController::enter(State state) {
    m_state = state;
    draw();
}

QString CleanSysController::doingText() const {
    if (m_state == State::Idle) return tr("Nothing is removed before you click.");
    if (m_isSettling && !m_isReported) return tr("Looking how much space was freed...");
    if (m_state == State::Reporting)
        return countAndSizeLines(m_endCount, m_endBytes).join(QStringLiteral("  ·  "));
    if (m_removal != nullptr && m_removal->isWaiting())
        return tr("Waiting for another removal to end");
    return showFixedText;
}

QString CleanSysController::pictureName() const {
    const bool hasRun = m_state == State::Reporting && m_removal != nullptr;
    if (hasRun && m_removal->hasFailed()) return QStringLiteral("warning");
    return hasRun && m_removal->hasRemoved() ? QStringLiteral("success")
                                             : QStringLiteral("fast_clean");
}

void CleanSysController::draw() {
    if (m_window == nullptr) return;
    const bool isRunning =
        m_isWorking && (m_state == State::Measuring || m_state == State::Deleting);
    const bool hasFurther = m_state == State::Reporting && !m_further.isEmpty();
    m_views.title->setText(categoryTitle(m_category));
    m_views.startBtn->setVisible(m_state == State::Idle);
    m_views.startBtn->setEnabled(!isAskingNames());
    m_views.cancelBtn->setVisible(isRunning);
    m_views.fixedText->setText(doingText());
    m_views.fastCleanImage->setPicture(pictureName());
    m_views.delProgress->setVisible(m_state != State::Idle);
    m_views.delProgress->changeProgressValue(
        std::isfinite(progressVal) ? static_cast<float>(std::clamp(progressVal, 0.0, 100.0)) : 0);
    const std::string inHand = m_removal != nullptr && isRunning ? m_removal->inHand() : "";
    m_views.curFileName->setText(
        m_state == State::Idle
            ? waitingText()
            : onOneLine(QString::fromStdString(inHand.empty() ? curDeleteFile : inHand)));
    m_views.curFileName->setVisible(!hasFurther);
    m_views.further->setVisible(hasFurther);
    m_views.further->setText(m_further);
    m_views.further->setToolTip(m_furtherTip);
    if (hasFurther) fitFastCleanWindow(*m_window);
}

}  // namespace orrinvale
