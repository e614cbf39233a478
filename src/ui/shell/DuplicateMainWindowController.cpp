// DuplicateMainWindowController: see DuplicateMainWindowController.h.
#include "ui/shell/DuplicateMainWindowController.h"

#include <QAbstractButton>
#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QShortcut>
#include <QVBoxLayout>
#include <algorithm>
#include <string_view>
#include <utility>
#include <variant>

#include "engine/settings/UserDefaults.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/chrome/TitleBarView.h"
#include "ui/kit/chrome/ToplineView.h"
#include "ui/kit/chrome/WindowButton.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/accessibleRole.h"
#include "ui/kit/look/picture.h"
#include "ui/shell/ApplicationMenu.h"
#include "ui/shell/PreviewWindow.h"
#include "ui/shell/TitleTab.h"

namespace orrinvale {
namespace {

// A sheet with one button says something; nobody has to decide anything before the next thing is
// done.
bool isQuestion(const Sheet* sheet) {
    return sheet->content()->findChildren<QAbstractButton*>().size() != 1;
}

constexpr int topButtonShift = 15;
constexpr int titleBarHeight = 62;
constexpr int leftMargin = 8;
constexpr int menuSide = 20;
constexpr QSize smallest{800, 506};
constexpr QSize largest{1200, 900};
constexpr std::string_view frameKey = "MainWindowFrame";

QWidget* makeHolder(QWidget& content, const char* name) {
    auto* const made = new QWidget(&content);
    made->setObjectName(QLatin1String(name));
    auto* const column = new QVBoxLayout(made);
    column->setContentsMargins({});
    content.layout()->addWidget(made);
    return made;
}

}  // namespace

DuplicateMainWindowController::DuplicateMainWindowController(SameFileDeleteParts parts,
                                                             FileIcons& icons, QObject* parent)
    : QObject(parent),
      m_icons(icons),
      m_defaults(*parts.defaults),
      m_aWindow(std::make_unique<TCImageWindow>()),
      m_listFileParts{.files = parts.files, .dialogs = parts.dialogs, .icons = parts.icons},
      m_sameFileDeleteVC(std::make_unique<SameFileDeleteViewController>(std::move(parts))) {
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
    addTabs();

    auto* const content = new QWidget;
    auto* const around = new QVBoxLayout(content);
    around->setContentsMargins({});
    m_duplicateView = makeHolder(*content, "duplicateView");
    m_diskView = makeHolder(*content, "diskView");
    window.setContentView(content);
    window.setContentSize(smallest);
    window.standardWindowButton(0)->setAction([this] { closeWindow(); });

    m_sameFileDeleteVC->setMainWindow(&window);
    m_sameFileDeleteVC->setDelegate(this);
    swapView(*m_duplicateView, nullptr, m_sameFileDeleteVC->view());
    addShortcuts();
    selectDuplicateButtonAction();
}

void DuplicateMainWindowController::addTabs() {
    TitleBarView& bar = *m_aWindow->titleBarView();
    m_titleLabel = new QLabel(QStringLiteral("Orrinvale"), &bar);
    m_titleLabel->setObjectName(QStringLiteral("titleLabel"));
    m_titleLabel->setFont(Theme::shared().font(Theme::Text::Heading));
    using Self = DuplicateMainWindowController;
    m_duplicateButton =
        makeTab(tr("Duplicate File Finder"), "duplicateButton", &Self::selectDuplicateButtonAction);
    m_fileListButton =
        makeTab(tr("Large File Finder"), "fileListButton", &Self::selectFileListButtonAction);
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

TitleTab* DuplicateMainWindowController::makeTab(const QString& title, const char* name,
                                                 void (DuplicateMainWindowController::*chosen)()) {
    auto* const tab = new TitleTab(title, m_aWindow->titleBarView());
    tab->setObjectName(QLatin1String(name));
    connect(tab, &QAbstractButton::clicked, this, chosen);
    return tab;
}

void DuplicateMainWindowController::addShortcuts() {
    const auto on = [this](const QKeySequence& keys, auto action) {
        connect(new QShortcut(keys, m_aWindow.get()), &QShortcut::activated, this, action);
    };
    on(QKeySequence(Qt::CTRL | Qt::Key_1),
       &DuplicateMainWindowController::selectDuplicateButtonAction);
    on(QKeySequence(Qt::CTRL | Qt::Key_2),
       &DuplicateMainWindowController::selectFileListButtonAction);
    // The window itself has the keys that close it: a second shortcut would make them ambiguous,
    // and neither would act.
    on(QKeySequence(QKeySequence::Open), &DuplicateMainWindowController::chooseFolder);
}

void DuplicateMainWindowController::chooseFolder() {
    if (m_fileListButton->isOn()) m_listFileVC->selectFileButtonAction();
    else m_sameFileDeleteVC->clickScanBtn();
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
        if (!isQuestion(sheet)) sheet->content()->findChild<QAbstractButton*>()->click();
}

void DuplicateMainWindowController::closeWindow() {
    if (m_delegate != nullptr) m_delegate->closeMainWindow();
    if (m_previewPanel) m_previewPanel->close();
    keepFrame();
    // Without the action of the button, which is this very operation.
    m_aWindow->hide();
}

void DuplicateMainWindowController::selectDuplicateButtonAction() { showHolder(false); }

void DuplicateMainWindowController::selectFileListButtonAction() {
    addListFileView();
    showHolder(true);
}

void DuplicateMainWindowController::showHolder(bool isDiskView) {
    m_duplicateButton->setOn(!isDiskView);
    m_fileListButton->setOn(isDiskView);
    m_duplicateView->setVisible(!isDiskView);
    m_diskView->setVisible(isDiskView);
}

void DuplicateMainWindowController::addListFileView() {
    if (m_listFileVC) return;
    m_listFileVC = std::make_unique<ListFileViewController>(m_listFileParts);
    m_listFileVC->setMainWindow(m_aWindow.get());
    m_listFileVC->setDetagate(this);
    swapView(*m_diskView, nullptr, m_listFileVC->aLoadView());
}

void DuplicateMainWindowController::swapView(QWidget& holder, QWidget* removed, QWidget* added) {
    if (removed != nullptr) {
        holder.layout()->removeWidget(removed);
        removed->hide();
    }
    holder.layout()->addWidget(added);
    added->show();
    added->raise();
}

void DuplicateMainWindowController::changeToProgressView() {
    // The detail view too: a folder may be chosen from there.
    m_sameFileDeleteVC->detailView()->hide();
    m_duplicateView->layout()->removeWidget(m_sameFileDeleteVC->detailView());
    swapView(*m_duplicateView, m_sameFileDeleteVC->view(), m_sameFileDeleteVC->progressageView());
}

void DuplicateMainWindowController::changeToDetailView() {
    swapView(*m_duplicateView, m_sameFileDeleteVC->progressageView(),
             m_sameFileDeleteVC->detailView());
}

void DuplicateMainWindowController::backButtonAction() {
    // After a stopped search the progress view stands there, and the first view takes its place
    // too.
    m_sameFileDeleteVC->progressageView()->hide();
    m_duplicateView->layout()->removeWidget(m_sameFileDeleteVC->progressageView());
    swapView(*m_duplicateView, m_sameFileDeleteVC->detailView(), m_sameFileDeleteVC->view());
}

void DuplicateMainWindowController::showDetailPage() {
    swapView(*m_diskView, m_listFileVC->aLoadView(), m_listFileVC->listView());
}

void DuplicateMainWindowController::listFileBackButtonAction() {
    swapView(*m_diskView, m_listFileVC->listView(), m_listFileVC->aLoadView());
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
    const std::string path = m_fileListButton->isOn() ? m_listFileVC->previewBeside(step)
                                                      : m_sameFileDeleteVC->previewBeside(step);
    if (path.empty()) return;  // there is no further one
    m_filePath = path;
    m_previewPanel->showPath(path);
}

}  // namespace orrinvale
