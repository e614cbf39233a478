// UninstallAppInfo: one search for all applications of this machine.
#pragma once

#include "engine/uninstall/UninstallAppDelegate.h"

namespace orrinvale {

/// The search runs to its end while the object is made, on the thread that makes it.
class UninstallAppInfo final {
public:
    explicit UninstallAppInfo(const UninstallAppDelegate& search,
                              const UninstallAppDelegate::News& news = {}) {
        constexpr std::size_t usual = 100;
        m_allAppsInfo.reserve(usual);
        search.getAppInfo(&m_allAppsInfo, &m_rest, news);
    }

    [[nodiscard]] AppItemsArray& allAppsInfo() { return m_allAppsInfo; }
    /// Packages that are no applications, and what could not be read.
    [[nodiscard]] const ApplicationInventory& rest() const { return m_rest; }
    void setAllAppsInfo(AppItemsArray apps) { m_allAppsInfo = std::move(apps); }

private:
    AppItemsArray m_allAppsInfo;
    ApplicationInventory m_rest;
};

}  // namespace orrinvale
