// See FastClean.h.
#include "ui/fastclean/FastClean.h"

#include <algorithm>
#include <utility>

#include "engine/base/UtilityObject.h"
#include "engine/cleaning/ParseFileLog.h"
#include "engine/cleaning/QnAuthorization.h"
#include "engine/cleaning/ScanViewController.h"
#include "ui/bubbles/BubbleContent.h"

namespace orrinvale {

std::unique_ptr<RemovalDoor> fastCleanDoor(CleanCategory category) {
    const bool mayTakeFolders =
        category == CleanCategory::UserTrash || category == CleanCategory::UserDownloads;
    return mayTakeFolders ? QnAuthorization::makeDoor() : QnAuthorization::makeDoorForFiles();
}

FastClean::FastClean(FastCleanParts parts, std::function<void()> changed)
    : m_parts(std::move(parts)), m_changed(std::move(changed)) {
    ParseFileLog::setMessages([dialogs = m_parts.pages.dialogs](const std::string& text) {
        Alert message;
        message.title = QString::fromStdString(text);
        dialogs->alert(nullptr, message, [](int) {});
    });
}

FastClean::~FastClean() { ParseFileLog::setMessages({}); }

void FastClean::cleaningFile() {
    if (m_controller == nullptr && !makeController()) return;
    m_controller->resetStatus();
    m_controller->showWindow();
}

void FastClean::open() {
    // Whoever asks from outside sees no entry of a menu that is greyed.
    if (m_controller == nullptr && !canStart())
        return tell({tr("Another clean has not ended yet. Try again in a moment.")});
    if (m_controller == nullptr && !makeController()) return;
    m_controller->showWindowWaiting();
}

bool FastClean::makeController() {
    if (!canStart()) return false;
    m_controller =
        CleanSysController::init(m_parts, [this](const QStringList& lines) { tell(lines); });
    if (m_controller == nullptr) return false;
    connect(m_controller.get(), &CleanSysController::rested, this, [this] { m_changed(); });
    connect(m_controller.get(), &CleanSysController::gone, this,
            [this, controller = m_controller.get()] { release(controller); });
    return true;
}

void FastClean::tell(const QStringList& lines) {
    m_note.reset();
    m_note = std::make_unique<BubbleView>(std::make_unique<BubbleContent>(lines), m_parts.bubbles);
    m_note->gone = [this] { m_note.reset(); };
}

void FastClean::handleCloseCleanWindow() {
    if (m_controller != nullptr)
        m_leaving.emplace_back(std::move(m_controller))->close();  // may be gone by it
    runAsMain();
}

// In a later turn, since its own code is still at work.
void FastClean::release(CleanSysController* controller) {
    const auto found = std::ranges::find_if(
        m_leaving, [controller](const auto& each) { return each.get() == controller; });
    if (found == m_leaving.end()) return;
    found->release()->deleteLater();
    m_leaving.erase(found);
}

void FastClean::runAsMain() {
    UtilityObject::getMyObject().setIsCanBeAction(true);
    m_changed();
}

bool FastClean::canStart() const {
    return UtilityObject::getMyObject().isCanBeAction && !ScanViewController::isAnyCleaning() &&
           std::ranges::none_of(m_leaving, [](const auto& each) {
               return each->isWorking() || each->isRemoving();  // another one's gain would be its
           });
}

bool FastClean::isRemoving() const {
    return (m_controller != nullptr && m_controller->isRemoving()) ||
           std::ranges::any_of(m_leaving, [](const auto& each) { return each->isRemoving(); });
}

void FastClean::giveUp() {
    if (m_controller != nullptr) m_controller->giveUp();
    for (const auto& each : m_leaving) each->giveUp();
}

}  // namespace orrinvale
