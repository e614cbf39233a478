// AppPrefsWindowController: the one toolbar window of the program, and the pages that stand in it.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "engine/settings/UserDefaults.h"
#include "ui/preferences/DBPrefsWindowController.h"

namespace orrinvale {

/// A page as its subsystem describes it.
struct PageDescriptor {
    QString identifier;
    QString label;
    QString picture;  ///< a name for picture()
    /// Makes the page, when it is first shown. What the view needs to live becomes a child of
    /// `owner`, which ends before the view does; the window takes the view over.
    std::function<QWidget*(QObject* owner)> makeView;
};

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

private:
    void setupToolbar() override;
    [[nodiscard]] QWidget* makeView(const QString& identifier) override;
    void insertPage(int place);
    void followSetting(const char* key);
    void readSettings();

    std::vector<PageDescriptor> m_pages;
    std::vector<UserDefaults::Observation> m_observations;
    std::unique_ptr<QObject> m_pageOwner;  // ends first
};

}  // namespace orrinvale
