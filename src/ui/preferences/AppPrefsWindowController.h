// AppPrefsWindowController: the one toolbar window of the program, and the pages that stand in it.
#pragma once

#include <memory>
#include <vector>

#include "engine/settings/UserDefaults.h"
#include "ui/page/Page.h"
#include "ui/preferences/DBPrefsWindowController.h"

namespace orrinvale {

/// Follows the settings "fade" and "shiftSlowsAnimation". Main thread only.
class AppPrefsWindowController final : public DBPrefsWindowController {
    Q_OBJECT
public:
    /// Made at the first call. It ends when the application is about to quit, since pages use what
    /// ends with it.
    [[nodiscard]] static AppPrefsWindowController& sharedPrefsWindowController();

    explicit AppPrefsWindowController(QObject* parent = nullptr);
    ~AppPrefsWindowController() override;

    /// Adds a page behind those that are registered, now or when the window is first shown. An
    /// identifier that is taken is logged and leaves the page that has it.
    void registerPage(PageDescriptor page);
    [[nodiscard]] bool hasPage(const QString& identifier) const;
    /// Whether a page of another identifier is registered.
    [[nodiscard]] bool hasPagesBeside(const QString& identifier) const;

    /// Those that have been shown. None is null.
    [[nodiscard]] const std::vector<std::unique_ptr<Page>>& pages() const { return m_pages; }
    /// Null where it is not registered, or has not been shown.
    [[nodiscard]] Page* page(const QString& identifier) const;

private:
    void setupToolbar() override;
    [[nodiscard]] QWidget* makeView(const QString& identifier) override;
    void insertPage(int place);
    void followSetting(const char* key);
    void readSettings();

    std::vector<PageDescriptor> m_descriptors;
    std::vector<UserDefaults::Observation> m_observations;
    std::vector<std::unique_ptr<Page>> m_pages;  // they end before their views do
};

}  // namespace orrinvale
