// DuplicateMainWindowController: see DuplicateMainWindowController.h.
#include "ui/shell/DuplicateMainWindowController.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QShortcut>
#include <QVBoxLayout>

#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/chrome/TitleBarView.h"
#include "ui/kit/chrome/ToplineView.h"
#include "ui/kit/chrome/WindowButton.h"
#include "ui/kit/look/Theme.h"
#include "ui/shell/PreviewWindow.h"
#include "ui/shell/TitleTab.h"

namespace orrinvale {
namespace {

constexpr int topButtonShift = 15;
constexpr int titleBarHeight = 62;
constexpr int leftMargin = 8;
constexpr QSize smallest{800, 506};
constexpr QSize largest{1200, 900};

}  // namespace

DuplicateMainWindowController::DuplicateMainWindowController(SameFileDeleteParts parts, FileIcons& icons,
                                                             QObject* parent)
    : QObject(parent),
      m_icons(icons),
      m_aWindow(std::make_unique<TCImageWindow>()),
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
    m_duplicateView = new QWidget(content);
    m_duplicateView->setObjectName(QStringLiteral("duplicateView"));
    auto* const around = new QVBoxLayout(content);
    around->setContentsMargins({});
    around->addWidget(m_duplicateView);
    auto* const holder = new QVBoxLayout(m_duplicateView);
    holder->setContentsMargins({});
    window.setContentView(content);
    window.setContentSize(smallest);
    window.standardWindowButton(0)->setAction([this] { closeWindow(); });

    m_sameFileDeleteVC->setMainWindow(&window);
    m_sameFileDeleteVC->setDelegate(this);
    holder->addWidget(m_sameFileDeleteVC->view());
    m_sameFileDeleteVC->view()->show();
    addShortcuts();
    selectDuplicateButtonAction();
}

void DuplicateMainWindowController::addTabs() {
    TitleBarView& bar = *m_aWindow->titleBarView();
    m_titleLabel = new QLabel(QStringLiteral("Orrinvale"), &bar);
    m_titleLabel->setObjectName(QStringLiteral("titleLabel"));
    m_titleLabel->setFont(Theme::shared().font(Theme::Text::Heading));
    m_duplicateButton = new TitleTab(tr("Duplicate File Finder"), &bar);
    m_duplicateButton->setObjectName(QStringLiteral("duplicateButton"));
    connect(m_duplicateButton, &QAbstractButton::clicked, this,
            &DuplicateMainWindowController::selectDuplicateButtonAction);
    // The three window buttons stand on the left; as much is left free on the right, so that the tab is in the middle.
    constexpr int buttonsWidth = leftMargin + 3 * WindowButton::side + 2 * Theme::gapSmall;
    auto* const row = new QHBoxLayout(&bar);
    row->setContentsMargins(buttonsWidth, 0, buttonsWidth, 0);
    row->setSpacing(0);
    row->addWidget(m_titleLabel);
    row->addStretch(1);
    row->addWidget(m_duplicateButton, 0, Qt::AlignBottom);
    row->addStretch(1);
    row->addSpacing(m_titleLabel->sizeHint().width());
}

void DuplicateMainWindowController::addShortcuts() {
    const auto on = [this](const QKeySequence& keys, auto action) {
        connect(new QShortcut(keys, m_aWindow.get()), &QShortcut::activated, this, action);
    };
    on(QKeySequence(Qt::CTRL | Qt::Key_1), &DuplicateMainWindowController::selectDuplicateButtonAction);
    // The window itself has the keys that close it: a second shortcut would make them ambiguous, and neither would act.
    on(QKeySequence(QKeySequence::Open), [this] { m_sameFileDeleteVC->clickScanBtn(); });
}

void DuplicateMainWindowController::showWindow() {
    m_aWindow->show();
    m_aWindow->raise();
    m_aWindow->activateWindow();
}

void DuplicateMainWindowController::closeWindow() {
    if (m_delegate != nullptr) m_delegate->closeMainWindow();
    if (m_previewPanel) m_previewPanel->close();
    // Without the action of the button, which is this very operation.
    m_aWindow->hide();
}

void DuplicateMainWindowController::selectDuplicateButtonAction() {
    m_duplicateButton->setOn(true);
    m_duplicateView->show();
}

void DuplicateMainWindowController::swapView(QWidget* removed, QWidget* added) {
    QLayout& holder = *m_duplicateView->layout();
    if (removed != nullptr) {
        holder.removeWidget(removed);
        removed->hide();
    }
    holder.addWidget(added);
    added->show();
    added->raise();
}

void DuplicateMainWindowController::changeToProgressView() {
    // The detail view too: a folder may be chosen from there.
    m_sameFileDeleteVC->detailView()->hide();
    m_duplicateView->layout()->removeWidget(m_sameFileDeleteVC->detailView());
    swapView(m_sameFileDeleteVC->view(), m_sameFileDeleteVC->progressageView());
}

void DuplicateMainWindowController::changeToDetailView() {
    swapView(m_sameFileDeleteVC->progressageView(), m_sameFileDeleteVC->detailView());
}

void DuplicateMainWindowController::backButtonAction() {
    // After a stopped search the progress view stands there, and the first view takes its place too.
    m_sameFileDeleteVC->progressageView()->hide();
    m_duplicateView->layout()->removeWidget(m_sameFileDeleteVC->progressageView());
    swapView(m_sameFileDeleteVC->detailView(), m_sameFileDeleteVC->view());
}

void DuplicateMainWindowController::quickLookWithPath(const std::string& path) {
    if (m_previewPanel && m_previewPanel->isVisible()) {
        m_previewPanel->close();
        return;
    }
    m_filePath = path;
    if (!m_previewPanel) m_previewPanel = new PreviewWindow(m_icons, m_aWindow.get());
    m_previewPanel->showPath(path);
    const QRect frame = m_aWindow->frame();
    m_previewPanel->move(frame.center() - m_previewPanel->rect().center());
    m_previewPanel->show();
    m_previewPanel->raise();
    m_previewPanel->activateWindow();
}

}  // namespace orrinvale
