// The way of a run from its folders to the end of its removal. What notices bring is kept in the
// fields and drawn ten times a second.
#include "ui/fastclean/CleanSysController.h"

#include <fmt/format.h>

#include <QLabel>
#include <QPointer>
#include <QShortcut>
#include <algorithm>
#include <array>
#include <cmath>
#include <future>
#include <system_error>
#include <thread>
#include <utility>

#include "engine/base/Log.h"
#include "engine/base/UtilityObject.h"
#include "engine/base/saturating.h"
#include "engine/cleaning/FolderUtilities.h"
#include "engine/settings/UtilityFunctionOfData.h"
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
// The names of folders are asked of the disk, and the window waits for them.
constexpr std::chrono::milliseconds namePatience{40};

// Nothing where the disk does not answer in time; its thread then stays behind.
std::optional<std::vector<std::string>> foldersOf(const FolderUtilities& utilities,
                                                  CleanCategory category) {
    const auto answer = std::make_shared<std::promise<std::vector<std::string>>>();
    auto folders = answer->get_future();
    try {
        std::thread([answer, &utilities, category] {
            answer->set_value(utilities.getFolderPath(static_cast<std::uint32_t>(category)));
        }).detach();
    } catch (const std::system_error&) {
        return std::nullopt;
    }
    if (folders.wait_for(namePatience) != std::future_status::ready) return std::nullopt;
    return folders.get();
}

// The last in the categories' order whose text says that all of it is ticked.
std::optional<CleanCategory> lastTicked(const SettingItems& settings) {
    const std::array texts{&settings.systemCaches, &settings.userCaches, &settings.systemLogs,
                           &settings.userLogs,     &settings.userTrash,  &settings.downloads};
    std::optional<CleanCategory> last;
    for (const CleanCategoryNames& each : cleanCategories)
        if (*texts.at(static_cast<std::size_t>(each.category)) == "1") last = each.category;
    return last;
}

bool wantsQuestion(CleanCategory category) {
    return category == CleanCategory::UserTrash || category == CleanCategory::UserDownloads;
}

}  // namespace

CleanSysController::CleanSysController(const FastCleanParts& parts) : m_parts(parts) {
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &CleanSysController::timerDeleteBubble);
    connect(&m_drawTimer, &QTimer::timeout, this, &CleanSysController::draw);
}

CleanSysController::~CleanSysController() = default;

std::unique_ptr<CleanSysController> CleanSysController::init(
    const FastCleanParts& parts, const std::function<void(const QStringList& lines)>& tell) {
    std::unique_ptr<CleanSysController> made(new CleanSysController(parts));
    made->resetStatus();
    made->readSettings();
    const NotificationCenter& center = *parts.pages.notifications;
    UtilityObject& shared = UtilityObject::getMyObject();
    if (!made->foldersArr.empty()) {
        shared.setIsCanBeAction(false);
        notice::refMenuItemWhenDeleteAndAdd.post(center);
        return made;
    }
    tell({!made->m_isAnyTicked ? noCategoryLine()
          : made->m_isSilent   ? silentCategoryLine(made->m_category)
                               : emptyCategoryLine(made->m_category)});
    shared.setIsCanBeAction(true);
    ZvShouldCloseWindow.post(center);
    notice::refMenuItemWhenDeleteAndAdd.post(center);
    return nullptr;
}

void CleanSysController::readSettings() {
    const auto settings = UtilityFunctionOfData::getMyData().readerTxtForSettingValue();
    if (settings == nullptr) {
        Log::line("settingItems is nil.");
        return;
    }
    const auto category = lastTicked(*settings);
    m_isAnyTicked = category.has_value();
    if (!category) return;
    m_category = *category;
    const auto folders = foldersOf(*m_parts.clean.utilities, m_category);
    m_isSilent = !folders;
    if (folders) foldersArr.insert(foldersArr.end(), folders->begin(), folders->end());
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
    m_views.title->setText(categoryTitle(m_category));
    connect(m_views.cancelBtn, &QAbstractButton::clicked, this, &CleanSysController::stopFastClean);
    connect(m_views.startBtn, &QAbstractButton::clicked, this, &CleanSysController::windowDidLoad);
    auto* const escape = new QShortcut(QKeySequence(Qt::Key_Escape), m_window.get());
    connect(escape, &QShortcut::activated, this, &CleanSysController::performClose);
    m_window->center();
}

void CleanSysController::windowDidLoad() {
    if (m_state != State::Idle) return;
    registerNotification();
    resetStatus();
    m_views.delProgress->setIndeterminate(true);
    readSettings();
    m_runFolders = foldersArr;
    m_browse = std::make_unique<BrowseFolderOperation>(
        m_runFolders, m_parts.clean,
        CleanPosts{m_parts.pages.notifications, m_parts.pages.mainQueue});
    m_isWorking = true;
    enter(State::Measuring);
    m_drawTimer.start(drawInterval);
    m_browse->main();
}

void CleanSysController::showWindow() {
    makeWindow();
    windowDidLoad();
    bringForward();
}

void CleanSysController::showWindowWaiting() {
    makeWindow();
    if (m_state == State::Idle) curDeleteFile = fmt::format("{}", fmt::join(foldersArr, ", "));
    draw();
    bringForward();
}

void CleanSysController::bringForward() {
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
    fitFastCleanWindow(*m_window, true);
    m_parts.pages.dialogs->alert(m_window.get(), goodbyeQuestion(m_category, fileCount, totalSize),
                                 [self = QPointer(this)](int button) {
                                     if (self == nullptr || self->m_state != State::Measuring)
                                         return;
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
    const bool isAsking =
        m_state == State::Measuring && m_removal == nullptr && !m_listing.rows.empty();
    progressVal = 100.0;
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
    if (m_removal != nullptr) m_removal->cancel();
    else if (m_browse != nullptr) m_browse->cancel();
    if (m_window != nullptr) m_window->hide();
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
    if (m_state == State::Reporting)
        return countAndSizeLines(m_endCount, m_endBytes).join(QStringLiteral("  ·  "));
    if (m_removal != nullptr && m_removal->isWaiting())
        return tr("Waiting for another removal to end");
    return showFixedText;
}

QString CleanSysController::pictureName() const {
    const bool hasRun = m_state == State::Reporting && m_removal != nullptr;
    if (hasRun && m_removal->outcome().failed > 0) return QStringLiteral("warning");
    return hasRun && m_removal->hasRemoved() ? QStringLiteral("success")
                                             : QStringLiteral("fast_clean");
}

void CleanSysController::draw() {
    if (m_window == nullptr) return;
    const bool isRunning = m_state == State::Measuring || m_state == State::Deleting;
    const bool hasFurther = m_state == State::Reporting && !m_further.isEmpty();
    m_views.startBtn->setVisible(m_state == State::Idle);
    m_views.cancelBtn->setVisible(isRunning);
    m_views.fixedText->setText(doingText());
    m_views.fastCleanImage->setPicture(pictureName());
    m_views.delProgress->setVisible(m_state != State::Idle);
    m_views.delProgress->changeProgressValue(
        std::isfinite(progressVal) ? static_cast<float>(std::clamp(progressVal, 0.0, 100.0)) : 0);
    const std::string inHand = m_removal != nullptr && isRunning ? m_removal->inHand() : "";
    m_views.curFileName->setText(
        onOneLine(QString::fromStdString(inHand.empty() ? curDeleteFile : inHand)));
    m_views.curFileName->setVisible(!hasFurther);
    m_views.further->setVisible(hasFurther);
    m_views.further->setText(m_further);
    m_views.further->setToolTip(m_furtherTip);
    if (hasFurther) fitFastCleanWindow(*m_window);
}

}  // namespace orrinvale
