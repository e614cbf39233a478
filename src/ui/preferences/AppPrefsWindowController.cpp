// A page is a descriptor until it is first shown; makeView() makes it then.
#include "ui/preferences/AppPrefsWindowController.h"

#include <QCoreApplication>
#include <algorithm>
#include <utility>

#include "engine/base/Log.h"
#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/SettingsKeys.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/preferences/ToolbarItem.h"

namespace orrinvale {

AppPrefsWindowController& AppPrefsWindowController::sharedPrefsWindowController() {
    static QPointer<AppPrefsWindowController> shared;
    if (shared.isNull()) {
        shared = new AppPrefsWindowController;
        connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, shared.data(),
                [] { delete shared.data(); });
    }
    return *shared;
}

AppPrefsWindowController::AppPrefsWindowController(QObject* parent)
    : DBPrefsWindowController(parent) {
    registerPreferencesWindowDefaults();
    readSettings();
    followSetting(fadeKey);
    followSetting(shiftSlowsAnimationKey);
}

AppPrefsWindowController::~AppPrefsWindowController() = default;

// A setting may change on any thread, and after this object's end on the way here.
void AppPrefsWindowController::followSetting(const char* key) {
    m_observations.push_back(defaults().addObserver(key, [self = QPointer(this)] {
        QMetaObject::invokeMethod(QCoreApplication::instance(), [self] {
            if (self) self->readSettings();
        });
    }));
}

void AppPrefsWindowController::readSettings() {
    setCrossFade(defaults().boolForKey(fadeKey));
    setShiftSlowsAnimation(defaults().boolForKey(shiftSlowsAnimationKey));
}

void AppPrefsWindowController::registerPage(PageDescriptor page) {
    if (hasPage(page.identifier)) {
        Log::line("The page \"" + page.identifier.toStdString() + "\" is there already.");
        return;
    }
    m_descriptors.push_back(std::move(page));
    if (isToolbarSetUp()) insertPage(static_cast<int>(m_descriptors.size()) - 1);
}

bool AppPrefsWindowController::hasPage(const QString& identifier) const {
    return std::ranges::any_of(
        m_descriptors, [&](const PageDescriptor& each) { return each.identifier == identifier; });
}

bool AppPrefsWindowController::hasPagesBeside(const QString& identifier) const {
    return std::ranges::any_of(
        m_descriptors, [&](const PageDescriptor& each) { return each.identifier != identifier; });
}

Page* AppPrefsWindowController::page(const QString& identifier) const {
    const QWidget* const view = toolbarViews().value(identifier);
    const auto found = std::ranges::find_if(
        m_pages, [view](const auto& each) { return view != nullptr && each->view() == view; });
    return found == m_pages.end() ? nullptr : found->get();
}

void AppPrefsWindowController::insertPage(int place) {
    const PageDescriptor& page = m_descriptors[static_cast<std::size_t>(place)];
    insertView(place, nullptr, page.identifier, page.picture);
    toolbarItems().value(page.identifier)->setLabel(page.label);
}

void AppPrefsWindowController::setupToolbar() {
    for (int place = 0; place < static_cast<int>(m_descriptors.size()); ++place) insertPage(place);
    if (!opensAddress() && !opensHelp()) return;
    addView(nullptr, {});
    if (opensAddress()) {
        addView(nullptr, QStringLiteral("websit"));
        toolbarItems().value(QStringLiteral("websit"))->setLabel(tr("Web Site"));
    }
    if (opensHelp()) {
        addView(nullptr, QStringLiteral("Help"));
        toolbarItems().value(QStringLiteral("Help"))->setLabel(tr("Help"));
    }
}

QWidget* AppPrefsWindowController::makeView(const QString& identifier) {
    for (PageDescriptor& each : m_descriptors) {
        if (each.identifier != identifier || !each.make) continue;
        m_pages.push_back(std::exchange(each.make, nullptr)());
        m_pages.back()->setMainWindow(window());
        return m_pages.back()->view();
    }
    return nullptr;
}

}  // namespace orrinvale
