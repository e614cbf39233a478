// DBPrefsWindowController: a window with a toolbar that shows one page at a time.
// AppPrefsWindowController.h says which pages.
#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVariantAnimation>
#include <functional>
#include <memory>

class QWidget;

namespace orrinvale {

class PrefsToolbar;
class TCImageWindow;
class ToolbarItem;
class UserDefaults;
enum class ToolbarDisplay;

/// Works on UserDefaults::standardUserDefaults(). Closing hides the window. Main thread only.
class DBPrefsWindowController : public QObject {
    Q_OBJECT
public:
    ~DBPrefsWindowController() override;

    [[nodiscard]] TCImageWindow* window() const { return m_window.get(); }
    [[nodiscard]] PrefsToolbar* toolbar() const { return m_toolbar; }
    /// Holds the view on show, and no other.
    [[nodiscard]] QWidget* contentSubview() const { return m_contentSubview; }

    /// In the toolbar's order, spaces included.
    [[nodiscard]] const QStringList& toolbarIdentifiers() const { return m_toolbarIdentifiers; }
    /// Of the pages that have been made.
    [[nodiscard]] const QHash<QString, QPointer<QWidget>>& toolbarViews() const {
        return m_toolbarViews;
    }
    [[nodiscard]] const QHash<QString, ToolbarItem*>& toolbarItems() const {
        return m_toolbarItems;
    }

    /// Whether pages fade into each other, and whether that is slower while Shift is held down.
    [[nodiscard]] bool crossFade() const { return m_crossFade; }
    void setCrossFade(bool crossFade) { m_crossFade = crossFade; }
    [[nodiscard]] bool shiftSlowsAnimation() const { return m_shiftSlowsAnimation; }
    void setShiftSlowsAnimation(bool shiftSlowsAnimation) {
        m_shiftSlowsAnimation = shiftSlowsAnimation;
    }

    /// What opens a web page, and the program's help. Set before the window is first shown: only
    /// then has it items for them.
    void setOpenAddress(std::function<void(const QString& address)> openAddress) {
        m_openAddress = std::move(openAddress);
    }
    void setOpenHelp(std::function<void()> openHelp) { m_openHelp = std::move(openHelp); }

    /// Adds an item to the toolbar, whose identifier and first label is `label`. The window takes
    /// the view over. An image is a name for picture(). No view and no label adds a flexible and a
    /// fixed space.
    void addView(QWidget* view, const QString& label) { addView(view, label, label); }
    void addView(QWidget* view, const QString& label, const QString& image);

public Q_SLOTS:
    /// Brings the window to the front, with the page whose place in the toolbar is stored, or with
    /// the first one.
    void showWindow();
    /// The same with that page, and without the stored one before it, which nobody would see.
    void showWindowWith(const QString& identifier);
    void closeWindow();

    /// As a click on the item.
    void toggleActivePreferenceView(const QString& identifier);
    void updatePreferenceView(const QString& identifier);

    /// Shows the page and selects its item. An identifier without a page leaves the page that is
    /// there. "websit" opens the vendor's web page and "Help" the program's help; both change
    /// nothing here.
    void displayViewForIdentifier(const QString& identifier, bool animate);

    /// Shows the second view in place of the first, which fades within a quarter of a second, or
    /// within five quarters with Shift.
    void crossFadeView(QWidget* from, QWidget* withView);

protected:
    explicit DBPrefsWindowController(QObject* parent);

    /// Adds the items. Called once, before the window is first shown.
    virtual void setupToolbar() = 0;
    /// The view of a page that is asked for the first time; null when there is none. The window
    /// takes it over.
    [[nodiscard]] virtual QWidget* makeView(const QString& identifier) = 0;

    /// As addView(), in another place than the last.
    void insertView(int place, QWidget* view, const QString& label, const QString& image);
    [[nodiscard]] bool isToolbarSetUp() const { return m_isToolbarSetUp; }
    [[nodiscard]] bool opensAddress() const { return static_cast<bool>(m_openAddress); }
    [[nodiscard]] bool opensHelp() const { return static_cast<bool>(m_openHelp); }
    [[nodiscard]] UserDefaults& defaults() const { return m_defaults; }

private:
    void bringToFront();
    void makeWindow();
    void makeTitleBar();
    void buildToolbarOnce();
    void fitTitleBar();
    void keepDisplay(ToolbarDisplay display);
    [[nodiscard]] QString storedIdentifier() const;
    [[nodiscard]] QWidget* viewForIdentifier(const QString& identifier);
    [[nodiscard]] bool fades() const;
    void swapView(QWidget* from, QWidget* to);
    void endFade();

    UserDefaults& m_defaults;
    std::unique_ptr<TCImageWindow> m_window;
    PrefsToolbar* m_toolbar = nullptr;
    QWidget* m_contentSubview = nullptr;
    QWidget* m_shelf = nullptr;  // where views wait that are not shown
    QPointer<QWidget> m_shown;
    QStringList m_toolbarIdentifiers;
    QHash<QString, QPointer<QWidget>> m_toolbarViews;
    QHash<QString, ToolbarItem*> m_toolbarItems;
    std::function<void(const QString&)> m_openAddress;
    std::function<void()> m_openHelp;
    QVariantAnimation m_fade;
    QPointer<QWidget> m_fadingPicture;
    bool m_crossFade = false;
    bool m_shiftSlowsAnimation = false;
    bool m_isToolbarSetUp = false;
};

}  // namespace orrinvale
