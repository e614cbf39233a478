// UninstallAppsController: the question before a removal. UninstallAppsRemoval.cpp carries it out.
#include <algorithm>
#include <utility>

#include "services/foundation/runAside.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/uninstall/UninstallAppsController.h"
#include "ui/uninstall/UninstallAppsViews.h"
#include "ui/uninstall/UninstallQuestion.h"

namespace orrinvale {
namespace {

// A look reads all processes, and a list of packages: the longer it takes, the rarer.
constexpr std::chrono::milliseconds firstRunningPause{1000}, longestRunningPause{8000};

}  // namespace

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
// All answers are for the question that asked: it may be closed, and another one open, before they
// come.
void UninstallAppsController::askForForecast(const AppItemsArray& items) {
    std::vector<AppItems> copies;
    for (const auto& each : items) copies.push_back(*each);
    UninstallQuestion* const question = m_question;
    const auto stop = std::make_shared<std::atomic<bool>>(false);
    connect(question, &QObject::destroyed, this, [stop] { *stop = true; });
    const auto worker = runAside(
        question, "forecast of a removal",
        [work = m_parts.work, copies = std::move(copies), stop] {
            return work->forecast(copies, *stop);
        },
        [question, stop](const UninstallOutlook& outlook) {
            *stop = true;
            question->showForecast(outlook);
        });
    QTimer::singleShot(m_parts.forecastPatience, question, [question, stop] {
        if (!stop->exchange(true))
            question->showSilence(tr("What would go along could not be found out in time."));
    });
    if (worker == nullptr) question->showSilence(tr("What would go along is not known."));
}

void UninstallAppsController::quitRunning(std::size_t number) {
    UninstallQuestion* const question = m_question;
    if (question == nullptr) return;
    runAside(
        question, "quit an application",
        [work = m_parts.work, record = question->record(number)] {
            return work->askToQuit(*record);
        },
        [self = QPointer(this), question, number](bool isAsked) {
            if (!isAsked) question->showCannotQuit(number);
            if (self != nullptr && question->beginsToLook(number))
                self->lookAtRunning(question, number, firstRunningPause);
        });
}

// It may ask its person to save before it goes, so it is looked at until it has. What nobody can
// tell now is not known a second later either.
void UninstallAppsController::lookAtRunning(UninstallQuestion* question, std::size_t number,
                                            std::chrono::milliseconds pause) {
    if (question != m_question) return;
    runAside(
        question, "a running application",
        [work = m_parts.work, record = question->record(number)] { return work->running(*record); },
        [self = QPointer(this), question, number, pause](RunState state) {
            question->showRunning(number, state);
            if (state == RunState::No) return;
            const auto wait = state == RunState::Unknown ? longestRunningPause : pause;
            QTimer::singleShot(wait, question, [self, question, number, wait] {
                if (self != nullptr)
                    self->lookAtRunning(question, number, std::min(2 * wait, longestRunningPause));
            });
        });
}

void UninstallAppsController::alertEnded_code(int code) {
    if (m_alert == nullptr || m_question == nullptr) return;
    const bool isAgreed =
        code == 1 && m_question->uninstallYes->isEnabled() && m_question->plan() != nullptr;
    std::vector<UninstallRequest> requests;
    if (isAgreed) requests = m_question->requests();
    const auto plan = m_question->plan();
    const bool isListOld = m_question->isListOld();
    m_alert->close([] {});
    m_alert.clear();
    m_question.clear();
    if (isAgreed) beginRemoval(plan, std::move(requests));
    else if (isListOld) refresh();
}

}  // namespace orrinvale
