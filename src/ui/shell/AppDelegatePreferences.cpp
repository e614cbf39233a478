// Settings that change something at once, whoever changed them: the page, the terminal, an editor.
#include <QPointer>
#include <array>
#include <string>

#include "engine/base/Log.h"
#include "engine/base/MainQueue.h"
#include "engine/loginitems/launchAtLogin.h"
#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/SettingsKeys.h"
#include "services/foundation/runAside.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/look/Theme.h"
#include "ui/preferences/chosenLook.h"
#include "ui/shell/AppDelegate.h"
#include "ui/tray/Tray.h"

namespace orrinvale {

void AppDelegate::followSettings() {
    constexpr std::array keys{themeKey, logKey, logFileKey, ZvShowStatusItem};
    for (const char* const key : keys)
        m_settings.push_back(m_parts.pages.defaults->addObserver(
            key, [self = QPointer(this), queue = m_parts.pages.mainQueue] {
                queue->async([self] {
                    if (self != nullptr) self->takeSettings();
                });
            }));
    lookAtLogFile({});  // which was opened, or was not, before there was a window
}

void AppDelegate::takeSettings() {
    Theme::shared().setChosenScheme(chosenScheme());
    Log::setEngineEnabled(wantsEngineLog());
    followLogFile();
    const bool isHidden = PreferenceViewController::getHiddenStatusItem();
    if (m_tray && m_tray->isHidden() != isHidden) m_tray->setStatusBarHidden(isHidden);
}

// Where nothing shows the program a person would never find it.
void AppDelegate::openMinimisedWithoutTray() {
    if (m_duplicateMWC || m_isLeaving || (m_tray && m_tray->canBeFound())) return;
    m_isOpenWindow = true;
    makeMainWindow();
    m_duplicateMWC->showMinimised();
}

void AppDelegate::launchAppWhenLogin(int state) {
    writeFileOfLaunchAppWhenLogin(std::to_string(state));
    // The entry lies in a home that may be slow to answer.
    runAside(
        this, "launchAppWhenLogin:", [state] { return launchAtLogin(state); }, [](bool) {});
}

void AppDelegate::writeFileOfLaunchAppWhenLogin(const std::string& state) {
    // A failure is logged there, and the value holds until the end.
    static_cast<void>(orrinvale::writeFileOfLaunchAppWhenLogin(state));
}

std::string AppDelegate::readeFileOfLaunchAppWhenLogin() const {
    return orrinvale::readeFileOfLaunchAppWhenLogin();
}

}  // namespace orrinvale
