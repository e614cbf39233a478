// The page that goes fades as a picture, so that the one that comes has the window at once.
#include "ui/preferences/DBPrefsWindowController.h"

#include <QGuiApplication>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "engine/settings/BundleResources.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/chrome/TitleBarView.h"
#include "ui/kit/chrome/ToplineView.h"
#include "ui/kit/chrome/WindowButton.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/look/motion.h"
#include "ui/preferences/PrefsToolbar.h"

namespace orrinvale {
namespace {

constexpr int titleHeight = 40;
constexpr int buttonShift = 6;
constexpr int toolbarMargin = 8;
constexpr QSize smallestPreferences{800, 550};
constexpr QSize largestPreferences{1200, 940};
constexpr int fadeTime = 250;  // milliseconds
constexpr int slowFadeTime = 1250;
const QString webPageItem = QStringLiteral("websit");
const QString helpItem = QStringLiteral("Help");

QString windowTitle() { return QStringLiteral("Orrinvale"); }

// The page that goes, as it looked, over the one that comes. A picture and not the page itself,
// which is off the window at once.
class FadingPicture final : public QWidget {
public:
    FadingPicture(QPixmap picture, QWidget* parent)
        : QWidget(parent), m_picture(std::move(picture)) {
        setObjectName(QStringLiteral("fadingPicture"));
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setGeometry(parent->rect());
    }
    void setOpacity(qreal opacity) {
        m_opacity = opacity;
        update();
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setOpacity(m_opacity);
        painter.drawPixmap(0, 0, m_picture);
    }

private:
    const QPixmap m_picture;
    qreal m_opacity = 1;
};

}  // namespace

DBPrefsWindowController::DBPrefsWindowController(QObject* parent)
    : QObject(parent),
      m_defaults(UserDefaults::standardUserDefaults()),
      m_window(std::make_unique<TCImageWindow>()),
      m_fade(this) {
    m_fade.setObjectName(QStringLiteral("crossFade"));
    m_fade.setStartValue(1.0);
    m_fade.setEndValue(0.0);
    m_fade.setEasingCurve(QEasingCurve::InOutQuad);
    connect(&m_fade, &QVariantAnimation::valueChanged, this, [this](const QVariant& opacity) {
        if (m_fadingPicture)
            static_cast<FadingPicture*>(m_fadingPicture.data())->setOpacity(opacity.toReal());
    });
    connect(&m_fade, &QVariantAnimation::finished, this, &DBPrefsWindowController::endFade);
    makeWindow();
}

DBPrefsWindowController::~DBPrefsWindowController() = default;

void DBPrefsWindowController::makeWindow() {
    TCImageWindow& window = *m_window;
    window.setObjectName(QStringLiteral("prefsWindow"));
    window.setWindowTitle(windowTitle());
    window.setTopButtonShift(buttonShift);
    window.setLeftMargin(toolbarMargin);
    window.setMinSize(smallestPreferences);
    window.setMaxSize(largestPreferences);
    window.setHeaderImage(QStringLiteral("wheader"));
    new ToplineView(window.titleBarView());
    makeTitleBar();

    auto* const content = new QWidget;
    auto* const around = new QVBoxLayout(content);
    around->setContentsMargins({});
    m_contentSubview = named(new QWidget, "contentSubview");
    auto* const column = new QVBoxLayout(m_contentSubview);
    column->setContentsMargins({});
    around->addWidget(m_contentSubview);
    m_shelf = named(new QWidget(content), "shelf");
    m_shelf->hide();
    window.setContentView(content);
    fitTitleBar();
    window.setFrame({QPoint(), smallestPreferences});
    window.standardWindowButton(0)->setAction([this] { closeWindow(); });
}

void DBPrefsWindowController::makeTitleBar() {
    TitleBarView& bar = *m_window->titleBarView();
    auto* const title = makeLabel("titleLabel", Theme::Text::BodyStrong);
    title->setText(windowTitle());
    title->setFixedHeight(titleHeight);
    m_toolbar = named(new PrefsToolbar, "DBPreferencesToolbar", tr("Pages"));
    connect(m_toolbar, &PrefsToolbar::itemClicked, this,
            &DBPrefsWindowController::toggleActivePreferenceView);
    connect(m_toolbar, &PrefsToolbar::displayChanged, this, &DBPrefsWindowController::keepDisplay);
    // The three window buttons stand on the left; as much is left free on the right, so that the
    // title is in the middle.
    constexpr int buttonsWidth = toolbarMargin + 3 * WindowButton::side + Theme::gapSmall;
    auto* const titleRow = new QHBoxLayout;
    titleRow->setContentsMargins(buttonsWidth, 0, buttonsWidth, 0);
    titleRow->addWidget(title);
    auto* const rows = new QVBoxLayout(&bar);
    rows->setContentsMargins({});
    rows->setSpacing(0);
    rows->addLayout(titleRow);
    rows->addWidget(m_toolbar);
    rows->addStretch(1);
}

void DBPrefsWindowController::fitTitleBar() {
    const int height = m_toolbar->sizeHint().height();
    m_toolbar->setFixedHeight(height);
    m_window->setTitleBarHeight(titleHeight + height);
}

void DBPrefsWindowController::keepDisplay(ToolbarDisplay display) {
    const int stored = static_cast<int>(display);
    if (m_defaults.integerForKey(DBPreferencesToolbarKey) != stored)
        m_defaults.setInteger(stored, DBPreferencesToolbarKey);
    fitTitleBar();
}

void DBPrefsWindowController::addView(QWidget* view, const QString& label, const QString& image) {
    insertView(static_cast<int>(m_toolbarIdentifiers.size()), view, label, image);
}

void DBPrefsWindowController::insertView(int place, QWidget* view, const QString& label,
                                         const QString& image) {
    if (view == nullptr && label.isEmpty()) {
        m_toolbar->insertFlexibleSpace(place);
        m_toolbar->insertSpace(place + 1);
        m_toolbarIdentifiers.insert(place, QStringLiteral("NSToolbarFlexibleSpaceItem"));
        m_toolbarIdentifiers.insert(place + 1, QStringLiteral("NSToolbarSpaceItem"));
        return;
    }
    const bool isPage = label != webPageItem && label != helpItem;
    auto* const item = new ToolbarItem(label, image, isPage);
    m_toolbar->insertItem(place, item);
    m_toolbarIdentifiers.insert(place, label);
    m_toolbarItems.insert(label, item);
    if (view == nullptr) return;
    view->setParent(m_shelf);
    m_toolbarViews.insert(label, view);
}

void DBPrefsWindowController::buildToolbarOnce() {
    if (std::exchange(m_isToolbarSetUp, true)) return;
    setupToolbar();
    const auto stored = m_defaults.integerForKey(DBPreferencesToolbarKey);
    for (const auto display : {ToolbarDisplay::IconOnly, ToolbarDisplay::TextOnly})
        if (stored == static_cast<int>(display)) m_toolbar->setDisplay(display);
    fitTitleBar();
    m_window->center();
}

// An item that opens something elsewhere is no page: nobody has chosen it at the start.
QString DBPrefsWindowController::storedIdentifier() const {
    const auto isPage = [this](const QString& identifier) {
        const ToolbarItem* const item = m_toolbarItems.value(identifier);
        return item != nullptr && item->isCheckable();
    };
    QString stored = m_toolbarIdentifiers.value(m_defaults.integerForKey(ZvToobarItem));
    if (isPage(stored)) return stored;
    const auto first =
        std::find_if(m_toolbarIdentifiers.begin(), m_toolbarIdentifiers.end(), isPage);
    return first == m_toolbarIdentifiers.end() ? QString() : *first;
}

void DBPrefsWindowController::showWindow() {
    buildToolbarOnce();
    displayViewForIdentifier(storedIdentifier(), false);
    bringToFront();
}

void DBPrefsWindowController::showWindowWith(const QString& identifier) {
    buildToolbarOnce();
    displayViewForIdentifier(identifier, m_window->isVisible());
    if (m_shown == nullptr) displayViewForIdentifier(storedIdentifier(), false);
    bringToFront();
}

void DBPrefsWindowController::bringToFront() {
    m_window->setWindowState(m_window->windowState() & ~Qt::WindowMinimized);
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
}

void DBPrefsWindowController::closeWindow() {
    endFade();
    // Without the action of the button, which is this very operation.
    m_window->hide();
}

void DBPrefsWindowController::toggleActivePreferenceView(const QString& identifier) {
    updatePreferenceView(identifier);
}

void DBPrefsWindowController::updatePreferenceView(const QString& identifier) {
    // Always the first page: the window opens with it, whichever was looked at last.
    m_defaults.setInteger(0, ZvToobarItem);
    displayViewForIdentifier(identifier, true);
}

QWidget* DBPrefsWindowController::viewForIdentifier(const QString& identifier) {
    if (QWidget* const known = m_toolbarViews.value(identifier)) return known;
    QWidget* const made = makeView(identifier);
    if (made == nullptr) return nullptr;
    made->setParent(m_shelf);
    m_toolbarViews.insert(identifier, made);
    return made;
}

void DBPrefsWindowController::displayViewForIdentifier(const QString& identifier, bool animate) {
    if (identifier == webPageItem) {
        if (m_openAddress) m_openAddress(QString::fromStdString(vendorAddress("WEB_SITE")));
        return;
    }
    if (identifier == helpItem) {
        if (m_openHelp) m_openHelp();
        return;
    }
    if (m_toolbarItems.contains(identifier)) m_toolbar->setSelectedItemIdentifier(identifier);
    QWidget* const view = viewForIdentifier(identifier);
    if (view == nullptr || view == m_shown) return;
    endFade();
    if (animate && fades()) crossFadeView(m_shown, view);
    else swapView(m_shown, view);
    m_window->setWindowTitle(windowTitle());
}

bool DBPrefsWindowController::fades() const {
    return m_crossFade && m_shown && m_window->isVisible() && mayAnimate(*m_window);
}

void DBPrefsWindowController::crossFadeView(QWidget* from, QWidget* withView) {
    auto* const fading = new FadingPicture(from->grab(), m_contentSubview);
    m_fadingPicture = fading;
    swapView(from, withView);
    fading->show();
    fading->raise();
    const bool isSlow =
        m_shiftSlowsAnimation && QGuiApplication::keyboardModifiers().testFlag(Qt::ShiftModifier);
    m_fade.setDuration(isSlow ? slowFadeTime : fadeTime);
    m_fade.start();
}

void DBPrefsWindowController::swapView(QWidget* from, QWidget* to) {
    if (from != nullptr) from->setParent(m_shelf);
    m_contentSubview->layout()->addWidget(to);
    to->show();
    m_shown = to;
}

void DBPrefsWindowController::endFade() {
    m_fade.stop();
    delete m_fadingPicture.data();
}

}  // namespace orrinvale
