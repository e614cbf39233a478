// DuplicateMainWindowController: the list of tabs is filled by addPages(), everything else goes
// over it. The delegates' operations at the end say which view each page shows.
#include "ui/shell/DuplicateMainWindowController.h"

#include <QAbstractButton>
#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QShortcut>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>
#include <variant>

#include "engine/settings/UserDefaults.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/chrome/TitleBarView.h"
#include "ui/kit/chrome/ToplineView.h"
#include "ui/kit/chrome/WindowButton.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/accessibleRole.h"
#include "ui/kit/look/picture.h"
#include "ui/shell/ApplicationMenu.h"
#include "ui/shell/PreviewWindow.h"
#include "ui/shell/TitleTab.h"

namespace orrinvale {
namespace {

// A sheet with one button says something too; nobody has to decide anything before the next thing
// is done.
bool isQuestion(const Sheet* sheet) {
    return !sheet->onlyTells() && sheet->content()->findChildren<QAbstractButton*>().size() != 1;
}

constexpr int topButtonShift = 15;
constexpr int titleBarHeight = 62;
constexpr int leftMargin = 8;
constexpr int menuSide = 20;
constexpr QSize smallest{800, 506};
constexpr QSize largest{1200, 900};
constexpr std::string_view frameKey = "MainWindowFrame";

}  // namespace

DuplicateMainWindowController::DuplicateMainWindowController(PageServices services,
                                                             FileIcons& icons, QObject* parent)
    : QObject(parent),
      m_icons(icons),
      m_defaults(*services.defaults),
      m_aWindow(std::make_unique<TCImageWindow>()),
      m_services(std::move(services)) {
    windowDidLoad();
}

DuplicateMainWindowController::~DuplicateMainWindowController() = default;

void DuplicateMainWindowController::windowDidLoad() {
    TCImageWindow& window = *m_aWindow;
    window.setObjectName(QStringLiteral("aWindow"));
    window.setWindowTitle(QStringLiteral("Orrinvale"));
    window.setTopButtonShift(topButtonShift);
    window.setTitleBarHeight(titleBarHeight);
    window.setLeftMargin(leftMargin);
    window.setMinSize(smallest);
    window.setMaxSize(largest);
    window.setHeaderImage(QStringLiteral("wheader"));
    new ToplineView(window.titleBarView());
    addTitleBar();

    auto* const content = new QWidget;
    auto* const around = new QVBoxLayout(content);
    around->setContentsMargins({});
    addPages(*content);
    window.setContentView(content);
    window.setContentSize(smallest);
    window.standardWindowButton(0)->setAction([this] { closeWindow(); });

    addShortcuts();
    select(0);
}

void DuplicateMainWindowController::addPages(QWidget& content) {
    m_duplicateView = new PageStack("duplicateView", &content);
    addTab(startAction::duplicates, m_duplicateButton, m_duplicateView, [this] {
        auto made = std::make_unique<SameFileDeleteViewController>(m_services);
        m_sameFileDeleteVC = made.get();
        m_sameFileDeleteVC->setDelegate(this);
        return made;
    });
    m_diskView = new PageStack("diskView", &content);
    addTab(startAction::largeFiles, m_fileListButton, m_diskView, [this] {
        auto made = std::make_unique<ListFileViewController>(m_services);
        m_listFileVC = made.get();
        m_listFileVC->setDetagate(this);
        return made;
    });
    for (const Tab& each : m_tabs) content.layout()->addWidget(each.stack);
}

void DuplicateMainWindowController::addTab(std::string_view identifier, TitleTab* button,
                                           PageStack* stack,
                                           std::function<std::unique_ptr<Page>()> make) {
    const std::size_t place = m_tabs.size();
    m_tabs.push_back({identifier, button, stack, std::move(make), nullptr});
    connect(button, &QAbstractButton::clicked, this, [this, place] { select(place); });
}

void DuplicateMainWindowController::addTitleBar() {
    TitleBarView& bar = *m_aWindow->titleBarView();
    m_titleLabel = new QLabel(QStringLiteral("Orrinvale"), &bar);
    m_titleLabel->setObjectName(QStringLiteral("titleLabel"));
    m_titleLabel->setFont(Theme::shared().font(Theme::Text::Heading));
    m_duplicateButton = named(new TitleTab(tr("Duplicate File Finder"), &bar), "duplicateButton");
    m_fileListButton = named(new TitleTab(tr("Large File Finder"), &bar), "fileListButton");
    // The three window buttons stand on the left; as much is left free on the right, so that the
    // tabs are in the middle.
    constexpr int buttonsWidth = leftMargin + 3 * WindowButton::side + 2 * Theme::gapSmall;
    constexpr int rightMargin = Theme::gapLarge;
    auto* const row = new QHBoxLayout(&bar);
    row->setContentsMargins(buttonsWidth, 0, rightMargin, 0);
    row->setSpacing(0);
    row->addWidget(m_titleLabel);
    row->addStretch(1);
    auto* const tabs = new QWidget(&bar);
    tabs->setAccessibleName(tr("Pages"));
    setAccessibleTraits(*tabs, {.role = QAccessible::PageTabList});
    auto* const inTabs = new QHBoxLayout(tabs);
    inTabs->setContentsMargins({});
    inTabs->setSpacing(0);
    inTabs->addWidget(m_duplicateButton);
    inTabs->addWidget(m_fileListButton);
    row->addWidget(tabs, 0, Qt::AlignBottom);
    row->addStretch(1);
    // What stands left of the tabs is as wide as what stands right of them.
    m_menuButton = new HoverButton(&bar);
    m_menuButton->setObjectName(QStringLiteral("menuButton"));
    m_menuButton->setIcon(picture(QStringLiteral("menu")));
    m_menuButton->setIconSize({menuSide, menuSide});
    m_menuButton->setAccessibleName(tr("Menu"));
    m_menuButton->setToolTip(tr("Menu (F10)"));
    m_menuButton->hide();
    row->addSpacing(m_titleLabel->sizeHint().width() + buttonsWidth - rightMargin -
                    m_menuButton->sizeHint().width());
    row->addWidget(m_menuButton);
}

void DuplicateMainWindowController::setApplicationMenu(ApplicationMenu& menu) {
    const auto open = [this, &menu] {
        const QSize size = menu.menu()->sizeHint();
        menu.menu()->popup(m_menuButton->mapToGlobal(
            QPoint(m_menuButton->width() - size.width(), m_menuButton->height())));
    };
    connect(m_menuButton, &QAbstractButton::clicked, this, open);
    connect(new QShortcut(QKeySequence(Qt::Key_F10), m_aWindow.get()), &QShortcut::activated, this,
            open);
    menu.addKeysTo(*m_aWindow);
    m_menuButton->show();
}

void DuplicateMainWindowController::addShortcuts() {
    const auto on = [this](const QKeySequence& keys, auto action) {
        connect(new QShortcut(keys, m_aWindow.get()), &QShortcut::activated, this, action);
    };
    for (std::size_t tab = 0; tab < m_tabs.size(); ++tab)
        on(QKeySequence(QKeyCombination(Qt::CTRL, Qt::Key(Qt::Key_1 + tab))),
           [this, tab] { select(tab); });
    // The window itself has the keys that close it: a second shortcut would make them ambiguous,
    // and neither would act.
    on(QKeySequence(QKeySequence::Open), [this] { shownPage().chooseFolder(); });
}

void DuplicateMainWindowController::showWindow() {
    if (!std::exchange(m_isPlaced, true)) placeWindow();
    m_aWindow->setWindowState(m_aWindow->windowState() & ~Qt::WindowMinimized);
    m_aWindow->show();
    m_aWindow->raise();
    // A dialog keeps the keyboard: what is behind it could do nothing with it.
    QWidget* const dialog = QApplication::activeModalWidget();
    if (dialog != nullptr) dialog->raise();
    (dialog != nullptr ? dialog : m_aWindow.get())->activateWindow();
}

// Never shown before that: a window manager brings one back that asks for the keyboard as it comes.
void DuplicateMainWindowController::showMinimised() {
    if (!std::exchange(m_isPlaced, true)) placeWindow();
    m_aWindow->showMinimized();
}

void DuplicateMainWindowController::placeWindow() {
    const SettingObject kept = m_defaults.objectForKey(frameKey);
    const auto* const text = kept ? std::get_if<std::string>(&*kept) : nullptr;
    if (text == nullptr || !m_aWindow->setFrameFromString(*text)) m_aWindow->center();
}

void DuplicateMainWindowController::keepFrame() {
    const SettingValue now = m_aWindow->stringWithSavedFrame();
    if (m_isPlaced && m_defaults.objectForKey(frameKey) != now) m_defaults.setValue(now, frameKey);
}

bool DuplicateMainWindowController::isAsking() const {
    const auto sheets = m_aWindow->findChildren<Sheet*>(QString(), Qt::FindDirectChildrenOnly);
    return QApplication::activeModalWidget() != nullptr ||
           std::any_of(sheets.begin(), sheets.end(), isQuestion);
}

void DuplicateMainWindowController::dismissMessages() {
    for (Sheet* const sheet :
         m_aWindow->findChildren<Sheet*>(QString(), Qt::FindDirectChildrenOnly))
        if (sheet->onlyTells()) Q_EMIT sheet->cancelled();
        else if (!isQuestion(sheet)) sheet->content()->findChild<QAbstractButton*>()->click();
}

void DuplicateMainWindowController::closeWindow() {
    if (m_delegate != nullptr && !m_delegate->mayCloseMainWindow()) return;
    if (m_delegate != nullptr) m_delegate->closeMainWindow();
    if (m_previewPanel) m_previewPanel->close();
    keepFrame();
    // Without the action of the button, which is this very operation.
    m_aWindow->hide();
}

std::vector<Page*> DuplicateMainWindowController::pages() const {
    std::vector<Page*> made;
    for (const Tab& each : m_tabs)
        if (each.page) made.push_back(each.page.get());
    return made;
}

bool DuplicateMainWindowController::selectPage(std::string_view identifier) {
    const auto found = std::ranges::find(m_tabs, identifier, &Tab::identifier);
    if (found != m_tabs.end()) select(static_cast<std::size_t>(found - m_tabs.begin()));
    return found != m_tabs.end();
}

void DuplicateMainWindowController::select(std::size_t tab) {
    Tab& chosen = m_tabs[tab];
    if (!chosen.page) {
        chosen.page = chosen.make();
        chosen.page->setMainWindow(m_aWindow.get());
        chosen.stack->showView(chosen.page->view());
    }
    m_shownTab = tab;
    for (const Tab& each : m_tabs) {
        each.button->setOn(&each == &chosen);
        each.stack->setVisible(&each == &chosen);
    }
}

void DuplicateMainWindowController::changeToProgressView() {
    m_duplicateView->showView(m_sameFileDeleteVC->progressageView());
}

void DuplicateMainWindowController::changeToDetailView() {
    m_duplicateView->showView(m_sameFileDeleteVC->detailView());
}

void DuplicateMainWindowController::backButtonAction() {
    m_duplicateView->showView(m_sameFileDeleteVC->view());
}

void DuplicateMainWindowController::showDetailPage() {
    m_diskView->showView(m_listFileVC->listView());
}

void DuplicateMainWindowController::listFileBackButtonAction() {
    m_diskView->showView(m_listFileVC->aLoadView());
}

void DuplicateMainWindowController::quickLookWithPath(const std::string& path) {
    if (m_previewPanel && m_previewPanel->isVisible()) {
        m_previewPanel->close();
        return;
    }
    m_filePath = path;
    if (!m_previewPanel) {
        m_previewPanel = new PreviewWindow(m_icons, m_aWindow.get());
        connect(m_previewPanel, &PreviewWindow::otherWanted, this,
                &DuplicateMainWindowController::showBeside);
    }
    m_previewPanel->showPath(path);
    const QRect frame = m_aWindow->frame();
    m_previewPanel->move(frame.center() - m_previewPanel->rect().center());
    m_previewPanel->show();
    m_previewPanel->raise();
    m_previewPanel->activateWindow();
}

void DuplicateMainWindowController::showBeside(int step) {
    const std::string path = shownPage().previewBeside(step);
    if (path.empty()) return;  // there is no further one
    m_filePath = path;
    m_previewPanel->showPath(path);
}

}  // namespace orrinvale
