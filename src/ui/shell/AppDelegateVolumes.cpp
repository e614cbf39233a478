// The volumes of AppDelegate: what is said and done when they come and go. See AppDelegate.h.
#include <QMenu>
#include <algorithm>

#include "engine/base/notices.h"
#include "engine/text/Localized.h"
#include "services/volumes/SystemWatch.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/preferences/AppPrefsWindowController.h"
#include "ui/shell/AppDelegate.h"
#include "ui/shell/ApplicationMenu.h"
#include "ui/tray/Tray.h"

namespace orrinvale {
namespace {

// A sentence has one field.
constexpr QRect fieldPlace(10, 5, 200, 40);

}  // namespace

void AppDelegate::ZvVolumeMountNotificationCall(const Notification& notification) {
    ZvCommVolumeNottification(notification, QT_TR_NOOP("mounted"));
}

void AppDelegate::ZvVolumeUnmountNotificationCall(const Notification& notification) {
    ZvCommVolumeNottification(notification, QT_TR_NOOP("unmounted"));
}

std::string AppDelegate::volumeSentence(const Notification& notification, const std::string& word) {
    const std::string name =
        Notice<ChangedVolume>::read(notification).value_or(ChangedVolume{}).name;
    const QString shown = name.empty() ? tr("You disk") : QString::fromStdString(name);
    return tr("%1 is %2 successfully!").arg(shown, tr(word.c_str())).toStdString();
}

void AppDelegate::ZvCommVolumeNottification(const Notification& notification,
                                            const std::string& withInfo) {
    bubbleViewWith(
        noteField(QString::fromStdString(volumeSentence(notification, withInfo)), fieldPlace));
    notice::refMenuItemWhenDeleteAndAdd.post(*m_parts.pages.notifications);
    notice::updateSizeView.post(*m_parts.pages.notifications);
}

void AppDelegate::rejestAllDisk() {
    m_menu->setCanEject(false);
    m_parts.ejections->ejectAll(
        [this](std::int32_t status, const std::vector<EjectFailure>& failures) {
            ejectionEnded(status, failures);
        });
}

// From outside: any program of this person may ask for it, and only the person may mean it.
void AppDelegate::askToEjectAll() {
    Alert question;
    question.title = tr("Eject all volumes?");
    question.text = tr("What can be ejected is unmounted and given back.");
    question.buttons = QStringList{tr("Eject All"), tr("Cancel")};
    question.cancelButton = 1;
    question.deafTime = std::chrono::milliseconds(700);
    m_parts.pages.dialogs->alert(window(), question, [this](int button) {
        if (button == 0) rejestAllDisk();
    });
}

void AppDelegate::ejectionEnded(std::int32_t status, const std::vector<EjectFailure>& failures) {
    if (status < 0 && failures.empty()) {
        static_cast<void>(
            noteField(QString::fromStdString(getLocalizedString("NO_HAVE_REMOVABLE")), fieldPlace));
        return;
    }
    refMenuItemWhenDeleteAndAdd();
    if (!failures.empty()) tellOfFailures(tr("Not every volume could be ejected."), failures);
}

void AppDelegate::tellOfFailures(const QString& title, const std::vector<EjectFailure>& failures) {
    QStringList lines;
    for (EjectFailure each : failures) {
        each.dissent.reason = inWords(each.dissent.reason).toStdString();
        lines.push_back(onOneLine(QString::fromStdString(ejectFailureText(each))));
    }
    Alert alert;
    alert.title = title;
    alert.text = lines.join(QLatin1Char('\n'));
    alert.severity = Alert::Severity::Warning;
    tell(alert);
}

void AppDelegate::refMenuItemWhenDeleteAndAdd() {
    refApplicationMenu();
    if (m_tray) m_tray->refMenuItemWhenDeleteAndAdd();
}

void AppDelegate::refApplicationMenu() {
    const auto& pages = AppPrefsWindowController::sharedPrefsWindowController();
    m_menu->setHasPreferences(pages.hasPage(preferencesIdentifier));
    m_menu->setPages(pages.hasPage(scanIdentifier), pages.hasPage(freeSpaceIdentifier),
                     pages.hasPage(uninstallIdentifier));
    m_menu->setHasMemory(pages.hasPage(memoryIdentifier));
    m_menu->setHasLoginItems(pages.hasPage(loginItemsIdentifier));
    m_menu->setHasDiskUsage(pages.hasPage(diskUsageIdentifier));
    m_menu->setHasPages(pages.hasPagesBeside(QStringLiteral("duplicates_file")));
    refFastCleanItem();
    refEjectAll();
}

// By what the watch saw last: a walk of its own would wait for a server that is gone.
void AppDelegate::refEjectAll() {
    const auto seen = m_parts.systemWatch != nullptr ? m_parts.systemWatch->latest() : nullptr;
    const bool has = seen && std::ranges::any_of(seen->volumes, [](const SeenVolume& each) {
                         return each.record->bCanEject;
                     });
    m_menu->setCanEject(has && !m_parts.ejections->isEjectingAll());
}

void AppDelegate::openFinderWhenClickItems(const Notification& notification) {
    if (m_tray) m_tray->cancelTracking();
    m_menu->menu()->close();  // which the volumes stand in where no tray shows them
    const auto path = Notice<std::string>::read(notification);
    if (!m_voluManager->openVolRootDir(path)) tellThatNothingOpens(path.value_or(std::string()));
}

void AppDelegate::tellThatNothingOpens(const std::string& path) {
    if (m_isLeaving) return;
    Alert alert;
    alert.text = onOneLine(QString::fromStdString(path));
    alert.title = QString::fromStdString(getLocalizedString("CANNOT_OPEN_FINDER"));
    alert.severity = Alert::Severity::Critical;
    tell(alert);
}

std::shared_ptr<ZvVolumeInfo> AppDelegate::getBootVolume() {
    m_volsInfo = m_voluInfo->getAllVolsInfo();
    const auto boot =
        std::ranges::find_if(m_volsInfo, [](const auto& each) { return each->bIsDefaultVol; });
    return boot == m_volsInfo.end() ? nullptr : *boot;
}

}  // namespace orrinvale
