// The modal run is the window's own modality, without an event loop of its own: what goes on in the
// program goes on.
#include "ui/updates/QnCheckUpdateWindowController.h"

#include <QApplication>
#include <QLabel>
#include <QPointer>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <utility>

#include "engine/settings/BundleResources.h"
#include "services/foundation/runAside.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/chrome/WindowButton.h"
#include "ui/kit/controls/Spinner.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/look/motion.h"

namespace orrinvale {
namespace {

constexpr int sheetFadeTime = 200;  // milliseconds

}  // namespace

QnCheckUpdateWindowController::QnCheckUpdateWindowController(Parts parts, QObject* parent)
    : QObject(parent),
      m_parts(std::move(parts)),
      aWindow(std::make_unique<TCImageWindow>()),
      m_views(makeUpdateViews(*aWindow, [this] { closeWindowAction(); })) {
    connect(&m_fade, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& alpha) { setAlpha(alpha.toDouble()); });
    connect(&m_fade, &QVariantAnimation::finished, this,
            &QnCheckUpdateWindowController::animationDidStop);
    connect(m_views.updateClickHere, &QAbstractButton::clicked, this,
            &QnCheckUpdateWindowController::updateClickHereAction);
    auto* const escape = new QShortcut(QKeySequence(Qt::Key_Escape), aWindow.get());
    connect(escape, &QShortcut::activated, this, &QnCheckUpdateWindowController::windowShouldClose);
    aWindow->setWindowModality(Qt::ApplicationModal);
}

QnCheckUpdateWindowController::~QnCheckUpdateWindowController() {
    if (m_worker) m_worker->markAsCancelled();
}

void QnCheckUpdateWindowController::showWindow() {
    if (m_isClosed) return;
    if (!aWindow->isVisible()) {
        windowDidLoad();
        aWindow->center();
        awakeFromNib();
        aWindow->show();
    }
    aWindow->raise();
    aWindow->activateWindow();
}

void QnCheckUpdateWindowController::awakeFromNib() {
    shuttingDown = false;
    if (aWindow->isVisible()) return;
    setAlpha(0);
    fadeTo(1);
}

void QnCheckUpdateWindowController::windowDidLoad() {
    m_views.progressBar->start();
    aWindow->standardWindowButton(0)->setAction([this] { closeWindow(); });
    enter(State::Checking);
    getVersionChange();
    m_views.changeValueScrollView->verticalScrollBar()->setValue(0);
}

void QnCheckUpdateWindowController::getVersionChange() {
    m_worker = runAside(
        this, "getVersionChange",
        [updates = m_parts.updates](ThreadWorker& worker) {
            return fetchUpdate(updates, [&worker] { return worker.cancelled(); });
        },
        [this](FetchedUpdate update) { take(std::move(update)); });
    if (!m_worker) whatIsNewVersionDiff(nullptr);
}

void QnCheckUpdateWindowController::take(FetchedUpdate update) {
    m_worker.reset();
    if (m_isClosed) return;
    switch (update.end) {
        case FetchedUpdate::End::Stopped: return;
        case FetchedUpdate::End::NoNetwork: return enter(State::NoNetwork);
        case FetchedUpdate::End::OtherRoad: return showNoUpdate(update.road);
        case FetchedUpdate::End::Fetched: break;
    }
    whatIsNewVersionDiff(update.description ? &*update.description : nullptr);
}

void QnCheckUpdateWindowController::whatIsNewVersionDiff(PropertyList* description) {
    const auto found = takeNewVersion(description, m_parts.updates.localNumber().value_or(0));
    if (!found) return showNoUpdate(UpdateRoad::Server);
    const QString version = onOneLine(QString::fromStdString(found->version));
    m_views.versionLabel->setText(tr("New features of Version %1:").arg(version));
    m_views.titleLable->setText(tr("Orrinvale %1 has been released.").arg(version));
    fillChanges(m_views, *found);
    enter(State::HaveUpdate);
}

void QnCheckUpdateWindowController::showNoUpdate(UpdateRoad road) {
    const QString own = tr("This is Orrinvale %1.").arg(QCoreApplication::applicationVersion());
    QString title;
    QString text = own;
    switch (road) {
        case UpdateRoad::Server: title = tr("No newer version was found."); break;
        case UpdateRoad::Package:
            title = tr("Newer versions come with your system.");
            text += QLatin1Char(' ') +
                    tr("It was installed as a package, and is updated together with the others.");
            break;
        case UpdateRoad::NoKeys:
            title = tr("This copy does not look for newer versions.");
            text += QLatin1Char(' ') +
                    tr("It was built without the keys by which a release is recognised. Newer "
                       "versions are where you got this one.");
            break;
    }
    m_views.noUpdateTitle->setText(title);
    m_views.noUpdateText->setText(text);
    enter(State::NoUpdate);
}

void QnCheckUpdateWindowController::enter(State state) {
    m_state = state;
    const std::pair<State, QWidget*> views[] = {{State::Checking, m_views.checkProgressView},
                                                {State::NoNetwork, m_views.noNetworkView},
                                                {State::NoUpdate, m_views.noUpdateView},
                                                {State::HaveUpdate, m_views.haveUpdateView}};
    // The new one first: the focus goes from button to button, without a ring that nobody asked
    // for.
    for (const auto& [each, view] : views) {
        if (each != state) continue;
        view->show();
        view->findChild<TextImageButton*>()->setFocus(Qt::ActiveWindowFocusReason);
    }
    for (const auto& [each, view] : views)
        if (each != state) view->hide();
    if (state != State::Checking) m_views.progressBar->stop();
    fitUpdateWindow(*aWindow);
}

void QnCheckUpdateWindowController::updateClickHereAction() {
    if (m_parts.openAddress)
        m_parts.openAddress(QString::fromStdString(vendorAddress("UPDATE_PAGE")));
}

void QnCheckUpdateWindowController::closeWindow() {
    if (std::exchange(m_isClosed, true)) return;
    m_fade.stop();
    if (m_worker) m_worker->markAsCancelled();
    aWindow->hide();
    // Who hears of it may end this object.
    const bool isEnding = shuttingDown;
    const auto terminate = m_parts.terminate;
    Q_EMIT closed();
    if (isEnding && terminate) terminate();
}

// --- The fade

bool QnCheckUpdateWindowController::windowShouldClose() {
    fadeTo(0);
    return false;
}

void QnCheckUpdateWindowController::animationDidStop() {
    if (m_alpha == 0) closeWindow();
}

QnCheckUpdateWindowController::TerminateReply
QnCheckUpdateWindowController::applicationShouldTerminate() {
    if (shuttingDown || m_isClosed || !aWindow->isVisible()) return TerminateReply::Now;
    shuttingDown = true;
    fadeTo(0);
    return TerminateReply::Cancel;
}

void QnCheckUpdateWindowController::fadeTo(double alpha) {
    m_fade.stop();
    if (!mayAnimate(*aWindow)) {
        setAlpha(alpha);
        return animationDidStop();
    }
    m_fade.setStartValue(m_alpha);
    m_fade.setEndValue(alpha);
    m_fade.setDuration(sheetFadeTime);
    m_fade.start();
}

// Elsewhere a window's opacity is nothing that a program can change.
void QnCheckUpdateWindowController::setAlpha(double alpha) {
    m_alpha = alpha;
    if (QGuiApplication::platformName() == QLatin1String("xcb")) aWindow->setWindowOpacity(alpha);
}

}  // namespace orrinvale
