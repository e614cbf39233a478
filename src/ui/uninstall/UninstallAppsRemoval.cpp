// UninstallAppsController: the question, the attempts with their rights, and what is told of them.
#include <QCoreApplication>
#include <QLabel>
#include <QLocale>
#include <algorithm>
#include <utility>

#include "engine/base/Log.h"
#include "engine/base/UtilityObject.h"
#include "engine/cleaning/FolderUtilities.h"
#include "engine/cleaning/QnAuthorization.h"
#include "engine/text/UtilityFunction.h"
#include "engine/uninstall/uninstallNotices.h"
#include "services/foundation/runAside.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/dialogs/LineList.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/uninstall/UninstallAppsController.h"
#include "ui/uninstall/UninstallAppsViews.h"
#include "ui/uninstall/UninstallQuestion.h"

namespace orrinvale {
namespace {

constexpr std::chrono::milliseconds runningPause{1000};

bool hasRight() {
    QnAuthorization& right = QnAuthorization::shareQnAuthorization();
    const AuthorizationRef reference = right.getAuthorizationRet();
    if (reference == AuthorizationRef::null) return false;
    static_cast<void>(FolderUtilities::DeleteAuthoration(reference));
    return true;
}

}  // namespace

/// One removal, from the person's yes to its end.
struct UninstallAppsController::Batch {
    struct Row {
        std::shared_ptr<AppItems> item;
        UninstallRequest request;
        UninstallResult result;
    };
    std::vector<Row> rows;
    std::vector<std::size_t> attempt;  // the rows that the attempt under way is at
    ProgressBox progress;
    std::atomic<bool> stop{false};
    bool hasNeverRemoved = false;  // the record that stays was ticked too

    [[nodiscard]] bool isEverythingGone() const {
        return !hasNeverRemoved &&
               std::ranges::all_of(rows, [](const Row& row) { return row.result.isGone; });
    }
};

void UninstallAppsController::uninstallButtonAction() {
    if (m_views->uninstallButton->isEnabled() && m_alert == nullptr && m_parts.work)
        showAlertForUninstall();
}

void UninstallAppsController::showAlertForUninstall() {
    m_asked = m_list.getAllSelectApp().value_or(AppItemsArray());
    const QString said = m_list.hasSelectedSystemApp()
                             ? tr("System application(s),Do you want to uninstall it?")
                             : tr("Uninstall the selected application(s)?");
    QWidget* const window =
        m_mainWindow != nullptr ? m_mainWindow.data() : m_views->resultView.data();
    m_question = new UninstallQuestion(m_asked, said);
    m_alert = new Sheet(*window, m_question);  // ends itself
    connect(m_alert, &Sheet::cancelled, this, [this] { alertEnded_code(0); });
    connect(m_question->cancelButton, &QAbstractButton::clicked, this,
            [this] { alertEnded_code(0); });
    connect(m_question->uninstallYes, &QAbstractButton::clicked, this,
            [this] { alertEnded_code(1); });
    connect(m_question, &UninstallQuestion::quitWanted, this,
            &UninstallAppsController::quitRunning);
    m_alert->open(m_question->cancelButton);
    askForForecast(m_asked);
}

// What asks a service gets its time; what is known by then is shown, and the rest is told to stay.
void UninstallAppsController::askForForecast(const AppItemsArray& items) {
    std::vector<AppItems> copies;
    for (const auto& each : items) copies.push_back(*each);
    const auto stop = std::make_shared<std::atomic<bool>>(false);
    connect(m_question, &QObject::destroyed, this, [stop] { *stop = true; });
    const auto worker = runAside(
        m_question.data(), "forecast of a removal",
        [work = m_parts.work, copies = std::move(copies), stop] {
            return work->forecast(copies, *stop);
        },
        [this, stop](const std::vector<UninstallForecast>& forecast) {
            takeForecast(stop, forecast);
        });
    QTimer::singleShot(m_parts.forecastPatience, m_question.data(), [this, stop] {
        if (!stop->exchange(true))
            m_question->showSilence(tr("What would go along could not be found out in time."));
    });
    if (worker == nullptr) m_question->showSilence(tr("What would go along is not known."));
}

void UninstallAppsController::takeForecast(const std::shared_ptr<std::atomic<bool>>& stop,
                                           const std::vector<UninstallForecast>& forecast) {
    *stop = true;
    if (m_question != nullptr) m_question->showForecast(forecast);
}

void UninstallAppsController::quitRunning(std::size_t number) {
    runAside(
        m_question.data(), "quit an application",
        [work = m_parts.work, record = m_asked.at(number)->record] {
            return work->askToQuit(*record);
        },
        [this, number](bool isAsked) {
            if (!isAsked) m_question->showCannotQuit(number);
            lookAtRunning(number);
        });
}

// It may ask its person to save before it goes, so it is looked at until it has.
void UninstallAppsController::lookAtRunning(std::size_t number) {
    runAside(
        m_question.data(), "a running application",
        [work = m_parts.work, record = m_asked.at(number)->record] {
            return work->running(*record);
        },
        [this, number](RunState state) {
            m_question->showRunning(number, state);
            if (state == RunState::Yes)
                QTimer::singleShot(runningPause, m_question.data(),
                                   [this, number] { lookAtRunning(number); });
        });
}

void UninstallAppsController::alertEnded_code(int code) {
    if (m_alert == nullptr || m_question == nullptr) return;
    const bool isAgreed = code == 1 && m_question->uninstallYes->isEnabled();
    std::vector<UninstallRequest> requests;
    if (isAgreed) requests = m_question->requests();
    m_alert->close([] {});
    m_alert.clear();
    m_question.clear();
    if (!isAgreed) return;
    m_batch = std::make_shared<Batch>();
    for (UninstallRequest& request : requests) {
        const auto item = std::ranges::find(m_asked, request.item.record, &AppItems::record);
        if (isNeverRemoved(request.item)) m_batch->hasNeverRemoved = true;
        else m_batch->rows.push_back({*item, std::move(request), {}});
    }
    m_views->uninstallTextField->show();
    m_sizes.stop();
    enter(State::Removing);
    goOn(firstUninstallStep(rights()));
}

// Of those that are still there.
UninstallRights UninstallAppsController::rights() const {
    return {.isSystemRow = nowSelectRow() == UninstallList::SystemProgram,
            .hasDoorItems = std::ranges::any_of(m_batch->rows,
                                                [](const Batch::Row& row) {
                                                    return !row.result.isGone &&
                                                           goesThroughDoor(row.request.item);
                                                }),
            .mayAsk = !UtilityObject::getMyObject().isOpenLocked && !hasRight()};
}

void UninstallAppsController::goOn(UninstallStep step) {
    using enum UninstallStep;
    switch (step) {
        case AskBefore:
        case AskAfter: askForRight(step); break;
        case FirstAttempt:
        case SecondAttempt: uninstallActionfromBottomButton(step); break;
        case Succeeded:
        case Failed: endUninstall(step == Succeeded); break;
    }
}

// The answer is the whole program's, also when this page has gone meanwhile.
void UninstallAppsController::askForRight(UninstallStep asked) {
    m_views->uninstallTextField->setText(tr("Waiting for your password ..."));
    const auto worker = runAside(
        QCoreApplication::instance(), "allocAuthorization",
        [] { return QnAuthorization::shareQnAuthorization().allocAuthorization(); },
        [self = QPointer(this), center = m_services.notifications, asked](bool isGranted) {
            if (isGranted) {
                UtilityObject::getMyObject().setIsOpenLocked(true);
                notice::changeLockState.post(*center);
            }
            if (self == nullptr || !self->m_batch) return;
            if (!isGranted) self->showResult(false);
            self->goOn(self->m_batch->stop ? UninstallStep::Failed
                                           : uninstallStepAfterAsking(asked, isGranted));
        });
    if (worker == nullptr) endUninstall(false);
}

void UninstallAppsController::uninstallActionfromBottomButton(UninstallStep attempt) {
    m_views->selectButton->setState(TickState::Nothing);
    std::vector<UninstallRequest> requests;
    m_batch->attempt.clear();
    for (std::size_t i = 0; i < m_batch->rows.size(); ++i) {
        const Batch::Row& row = m_batch->rows[i];
        const bool isDue = attempt == UninstallStep::FirstAttempt ||
                           (!row.result.isGone && goesThroughDoor(row.request.item));
        if (!isDue) continue;
        m_batch->attempt.push_back(i);
        requests.push_back(row.request);
    }
    m_progressTimer.start();
    const auto worker = runAside(
        this, "uninstall",
        [work = m_parts.work, batch = m_batch, requests = std::move(requests)] {
            return work->remove(requests, batch->progress, batch->stop);
        },
        [this, attempt](const std::vector<UninstallResult>& results) {
            attemptEnded(attempt, results);
        });
    if (worker == nullptr) endUninstall(false);
}

void UninstallAppsController::attemptEnded(UninstallStep attempt,
                                           const std::vector<UninstallResult>& results) {
    m_progressTimer.stop();
    AppItemsArray removed;
    for (std::size_t i = 0; i < m_batch->attempt.size() && i < results.size(); ++i) {
        Batch::Row& row = m_batch->rows[m_batch->attempt[i]];
        row.result = results[i];
        if (row.result.isGone) removed.push_back(row.item);
        else Log::line("uninstall can not work!");
    }
    m_list.takeOut(removed);
    showLeftRows();
    showRows();
    goOn(m_batch->stop ? m_batch->isEverythingGone() ? UninstallStep::Succeeded  //
                                                     : UninstallStep::Failed
                       : uninstallStepAfterAttempt(attempt, m_batch->isEverythingGone(), rights()));
}

void UninstallAppsController::endUninstall(bool isEverythingGone) {
    m_progressTimer.stop();
    const std::shared_ptr<Batch> batch = std::exchange(m_batch, nullptr);
    enter(State::Ready);
    showResult(isEverythingGone);
    m_failures.clear();
    std::size_t gone = 0;
    std::uint64_t gained = 0;
    for (const Batch::Row& row : batch->rows) {
        gone += row.result.isGone ? 1 : 0;
        gained += row.result.gained;
        if (!row.result.isGone && !row.result.reason.empty())
            m_failures.push_back(QStringLiteral("%1: %2").arg(
                onOneLine(QString::fromStdString(row.item->name)), inWords(row.result.reason)));
        for (const auto& [path, reason] : row.result.leftovers)
            m_failures.push_back(QStringLiteral("%1: %2").arg(
                onOneLine(QString::fromStdString(path)), inWords(reason)));
    }
    ResultFrame::showLine(*m_views->removedLine,
                          gone == 0
                              ? QString()
                              : tr("%1 removed, %2")
                                    .arg(QLocale().toString(qulonglong(gone)),
                                         shownSize(UtilityFunction::convertVolSpace(gained))));
    ResultFrame::showLine(*m_views->failureLine, m_failures.isEmpty() ? QString() : tr("Why?"));
    notice::uninstallShowSelectNumInBottom.post(*m_services.notifications,
                                                notice::uninstalledObject);
    m_sizes.fillIn(m_list.searchAllAppArr());
    m_views->tableView->setFocus();
}

void UninstallAppsController::showResult(bool isEverythingGone) {
    m_views->uninstallTextField->show();
    m_views->uninstallTextField->setText(
        isEverythingGone ? tr("Selected application(s) were uninstalled successfully.")
                         : tr("Failed to uninstall the selected application(s). Please refer to "
                              "Help for more info."));
}

void UninstallAppsController::showRemoving() {
    const std::string current = m_batch ? m_batch->progress.copy().current : std::string();
    if (!current.empty())
        m_views->uninstallTextField->setText(
            tr("Removing %1 ...").arg(onOneLine(QString::fromStdString(current))));
}

void UninstallAppsController::showFailures() {
    showLineList(m_mainWindow, tr("Could not be removed"), m_failures);
}

void UninstallAppsController::giveUp() {
    if (m_batch) m_batch->stop = true;
}

}  // namespace orrinvale
