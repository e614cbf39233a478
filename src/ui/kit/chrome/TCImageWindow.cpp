// Two rectangles everywhere: the frame that the user sees, and the widget with the shadow.
#include "ui/kit/chrome/TCImageWindow.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QShortcut>
#include <QWindow>

#include <algorithm>
#include <iterator>
#include <utility>

#include "ui/kit/chrome/ResizeGrip.h"
#include "ui/kit/chrome/TitleBarView.h"
#include "ui/kit/chrome/WindowButton.h"
#include "ui/kit/chrome/WindowShadow.h"
#include "ui/kit/chrome/frameGeometry.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/accessibleRole.h"

namespace orrinvale {
namespace {

constexpr Qt::WindowFlags ownFrame = Qt::Window | Qt::FramelessWindowHint |
                                     Qt::WindowSystemMenuHint | Qt::WindowMinMaxButtonsHint |
                                     Qt::WindowCloseButtonHint;
constexpr Qt::WindowFlags systemFrame = Qt::Window;

// How far the grips reach into the window: hardly where the shadow offers room, enough to be hit
// where it does not.
constexpr int gripWithShadow = 2;
constexpr int gripWithout = 5;
// A frame with more than this at its top has a title bar in it; some managers keep a border of a
// point around any window.
constexpr int tallestBorder = 8;

}  // namespace

TCImageWindow::TCImageWindow(QWidget* parent)
    : QWidget(parent, ownFrame),
      m_kind(chooseFrame(desktopFacts())),
      m_drag(*this,
             [this] {
                 QMetaObject::invokeMethod(this, &TCImageWindow::useSystemFrame,
                                           Qt::QueuedConnection);
             }),
      m_titleBar(new TitleBarView(m_drag, this)),
      m_minSize(160, m_titleBarHeight) {
    setAccessibleTraits(*this, {.role = QAccessible::Window});
    // Asked for before the native window exists, whatever the desktop blends today: a compositor
    // may start later.
    setAttribute(Qt::WA_TranslucentBackground);
    makeFrame();
    applyKind(m_kind);
    setFrame({QPoint(), QSize(480, 320)});
    connect(&Theme::shared(), &Theme::changed, this, qOverload<>(&QWidget::update));
    auto* const closeKeys = new QShortcut(QKeySequence::Close, this);
    connect(closeKeys, &QShortcut::activated, this, &TCImageWindow::performClose);
}

void TCImageWindow::makeFrame() {
    const auto [close, miniaturizeButton, zoomButton] = m_titleBar->buttons();
    close->setAction([this] { this->close(); });
    miniaturizeButton->setAction([this] { miniaturize(); });
    zoomButton->setAction([this] { zoom(); });
    m_titleBar->setDoubleClickAction([this] {
        const DoubleClick action = m_doubleClick.value_or(Theme::shared().desktopDoubleClick());
        if (action == DoubleClick::Zoom) zoom();
        else if (action == DoubleClick::Miniaturize) miniaturize();
    });
    for (WindowCorner*& corner : m_corners) corner = new WindowCorner(this);
    constexpr std::array<Qt::Edges, 8> edges{Qt::LeftEdge,
                                             Qt::TopEdge,
                                             Qt::RightEdge,
                                             Qt::BottomEdge,
                                             Qt::LeftEdge | Qt::TopEdge,
                                             Qt::RightEdge | Qt::TopEdge,
                                             Qt::LeftEdge | Qt::BottomEdge,
                                             Qt::RightEdge | Qt::BottomEdge};
    std::transform(edges.begin(), edges.end(), m_grips.begin(),
                   [this](Qt::Edges each) { return new ResizeGrip(each, m_drag, this); });
}

void TCImageWindow::setTitleBarHeight(int height) {
    m_titleBarHeight = height;
    layOut();
}

void TCImageWindow::setTopButtonShift(int shift) { m_titleBar->setTopButtonShift(shift); }

void TCImageWindow::setLeftMargin(int margin) { m_titleBar->setLeftMargin(margin); }

void TCImageWindow::setHeaderImage(const QString& name) { m_titleBar->setHeaderImage(name); }

void TCImageWindow::setContentView(QWidget* view) {
    if (view == m_content) return;
    delete m_content.data();
    m_content = view;
    if (view != nullptr) {
        view->setParent(this);
        view->lower();
        view->show();
    }
    layOut();
}

void TCImageWindow::setContentSize(QSize size) {
    setFrame({frame().topLeft(), size + QSize(0, m_titleBarHeight)});
}

void TCImageWindow::setMinSize(QSize size) {
    m_minSize = size;
    applyBounds();
}

void TCImageWindow::setMaxSize(QSize size) {
    m_maxSize = size;
    applyBounds();
}

void TCImageWindow::applyBounds() {
    const QMargins margins = shadowMargins();
    setMinimumSize(m_minSize.grownBy(margins));
    // A frame that the desktop maximises may be larger until boundMaximised() has seen to it.
    setMaximumSize(m_maxSize.expandedTo(m_minSize).grownBy(margins).boundedTo(
        {QWIDGETSIZE_MAX, QWIDGETSIZE_MAX}));
    layOut();
}

QMargins TCImageWindow::shadowMargins() const {
    if (m_kind != FrameKind::Own || isMaximized() || isFullScreen()) return {};
    return {shadowMargin, shadowMargin, shadowMargin, shadowMargin};
}

QRect TCImageWindow::frame() const { return geometry().marginsRemoved(shadowMargins()); }

void TCImageWindow::setFrame(const QRect& frame) {
    const QRect bounded(frame.topLeft(), boundedSize(frame.size(), m_minSize, m_maxSize));
    setGeometry(bounded.marginsAdded(shadowMargins()));
}

void TCImageWindow::center() {
    QRect centred = frame();
    const QRect available = screen()->availableGeometry();
    centred.moveCenter(available.center());
    setFrame(rectInView(centred, {available}, m_minSize));
}

WindowButton* TCImageWindow::standardWindowButton(int index) const {
    const auto& buttons = m_titleBar->buttons();
    return index >= 0 && index < static_cast<int>(buttons.size())
               ? buttons.at(static_cast<std::size_t>(index))
               : nullptr;
}

void TCImageWindow::performClose() { standardWindowButton(0)->perform(); }

void TCImageWindow::closeEvent(QCloseEvent* event) {
    if (!event->spontaneous()) {
        QWidget::closeEvent(event);
        return;
    }
    // The window manager asks. The answer is the button's action, which may close us, and only
    // after this event is over.
    event->ignore();
    QMetaObject::invokeMethod(this, &TCImageWindow::performClose, Qt::QueuedConnection);
}

QRect TCImageWindow::zoomTarget() const {
    return zoomedRect(screen()->availableGeometry(), m_minSize, m_maxSize);
}

bool TCImageWindow::isZoomed() const {
    return isMaximized() ||
           (m_frameBeforeZoom.has_value() && frame().size() == zoomTarget().size());
}

void TCImageWindow::zoom() {
    const QSize available = screen()->availableGeometry().size();
    if (isMaximized()) {
        showNormal();
    } else if (isZoomed()) {
        setFrame(*std::exchange(m_frameBeforeZoom, std::nullopt));
    } else if (available.boundedTo(m_maxSize) == available) {
        showMaximized();
    } else {
        m_frameBeforeZoom = frame();
        setFrame(zoomTarget());
    }
}

void TCImageWindow::boundMaximised() {
    const QSize available = screen()->availableGeometry().size();
    if (!isMaximized() || available.boundedTo(m_maxSize) == available) return;
    const QRect before = normalFrame();
    showNormal();
    m_frameBeforeZoom = before;
    setFrame(zoomTarget());
}

QRect TCImageWindow::normalFrame() const {
    if (!isMaximized() && isZoomed()) return *m_frameBeforeZoom;
    if (!isMaximized() && !isFullScreen() && !isMinimized()) return frame();
    const QRect normal = normalGeometry();
    const int margin = m_kind == FrameKind::Own ? shadowMargin : 0;
    return normal.isEmpty() ? frame() : normal.marginsRemoved({margin, margin, margin, margin});
}

std::string TCImageWindow::stringWithSavedFrame() const {
    return SavedFrame{normalFrame(), isZoomed()}.text();
}

bool TCImageWindow::setFrameFromString(std::string_view text) {
    const auto saved = SavedFrame::fromText(text);
    if (!saved) return false;
    QList<QRect> screens{QGuiApplication::primaryScreen()->availableGeometry()};
    for (const QScreen* const each : QGuiApplication::screens())
        screens.append(each->availableGeometry());
    if (isZoomed()) zoom();
    setFrame(rectInView(saved->frame, screens, m_minSize));
    if (saved->isZoomed) zoom();
    return true;
}

void TCImageWindow::applyKind(FrameKind kind) {
    m_kind = kind;
    m_titleBar->setHasButtons(kind != FrameKind::System);
    const Qt::WindowFlags flags = kind == FrameKind::System ? systemFrame : ownFrame;
    if (windowFlags() != flags) {
        const bool wasVisible = isVisible();
        setWindowFlags(flags);
        if (wasVisible) show();
    }
    applyBounds();
}

void TCImageWindow::followDesktop() {
    const FrameKind kind = m_isRefused ? FrameKind::System : chooseFrame(desktopFacts());
    if (kind == m_kind) return;
    const QRect kept = frame();
    const bool fillsScreen = isMaximized();
    applyKind(kind);
    if (!fillsScreen) setFrame(kept);
}

void TCImageWindow::useSystemFrame() {
    m_isRefused = true;
    followDesktop();
}

QRect TCImageWindow::sheetArea() const {
    return rect().marginsRemoved(shadowMargins()).adjusted(0, m_titleBarHeight, 0, 0);
}

// The corners stay round, and the edges can be pulled while a question stands.
void TCImageWindow::sheetRaised() {
    for (WindowCorner* const corner : m_corners) corner->raise();
    for (ResizeGrip* const grip : m_grips) grip->raise();
}

void TCImageWindow::layOut() {
    const QRect frame = rect().marginsRemoved(shadowMargins());
    const int barHeight = std::min(m_titleBarHeight, frame.height());
    m_titleBar->setGeometry(frame.x(), frame.y(), frame.width(), barHeight);
    if (m_content) m_content->setGeometry(frame.adjusted(0, barHeight, 0, 0));
    m_titleBar->buttons().at(2)->setRestores(isZoomed());
    layOutFrame(frame);
    if (windowHandle() != nullptr) announceShadow(*windowHandle(), shadowMargins());
    update();
}

void TCImageWindow::layOutFrame(const QRect& frame) {
    const bool hasShadow = !shadowMargins().isNull();
    std::size_t index = 0;
    for (const auto corner :
         {Qt::TopLeftCorner, Qt::TopRightCorner, Qt::BottomLeftCorner, Qt::BottomRightCorner}) {
        WindowCorner* const cover = m_corners.at(index++);
        cover->place(frame, corner);
        cover->setVisible(hasShadow);
        cover->raise();
    }
    const bool isLoose = m_kind != FrameKind::System && !isMaximized() && !isFullScreen();
    const bool widens = m_minSize.width() < m_maxSize.width();
    const bool heightens = m_minSize.height() < m_maxSize.height();
    for (ResizeGrip* const grip : m_grips) {
        const bool pullsAcross = (grip->edges() & (Qt::LeftEdge | Qt::RightEdge)) != 0;
        const bool pullsDown = (grip->edges() & (Qt::TopEdge | Qt::BottomEdge)) != 0;
        grip->place(frame, hasShadow ? shadowMargin : 0, hasShadow ? gripWithShadow : gripWithout);
        grip->setLined(!hasShadow);
        grip->setVisible(isLoose);
        grip->setAttribute(Qt::WA_TransparentForMouseEvents,
                           (pullsAcross && !widens) || (pullsDown && !heightens));
        grip->raise();
    }
}

QList<QWidget*> TCImageWindow::focusOrder() const {
    QList<QWidget*> out;
    const auto& buttons = m_titleBar->buttons();
    const auto takesFocus = [](const QWidget* each) {
        return (each->focusPolicy() & Qt::TabFocus) == Qt::TabFocus && each->isVisible() &&
               each->isEnabled();
    };
    for (QWidget* each = nextInFocusChain(); each != this; each = each->nextInFocusChain())
        if (!each->isWindow() && takesFocus(each) &&
            std::find(buttons.begin(), buttons.end(), each) == buttons.end())
            out.append(each);
    std::stable_partition(out.begin(), out.end(), [this](const QWidget* each) {
        return m_content != nullptr && m_content->isAncestorOf(each);
    });
    std::copy_if(buttons.begin(), buttons.end(), std::back_inserter(out), takesFocus);
    return out;
}

bool TCImageWindow::focusNextPrevChild(bool next) {
    const QList<QWidget*> order = focusOrder();
    if (order.isEmpty()) return false;
    // Who has the keyboard without being asked for shows no ring; the first Tab shows where one is.
    QWidget* const unasked = std::exchange(m_unaskedFocus, nullptr);
    if (next && unasked != nullptr && unasked == focusWidget()) {
        unasked->clearFocus();
        unasked->setFocus(Qt::TabFocusReason);
        return true;
    }
    const qsizetype now = order.indexOf(focusWidget());
    const qsizetype count = order.size();
    const qsizetype then =
        now < 0 ? (next ? 0 : count - 1) : (now + (next ? 1 : count - 1)) % count;
    order.at(then)->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

void TCImageWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRect frame = rect().marginsRemoved(shadowMargins());
    if (!shadowMargins().isNull()) drawWindowShadow(painter, QRectF(frame), isActiveWindow());
    painter.fillRect(frame, Theme::shared().color(Theme::Color::Window));
}

void TCImageWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    layOut();
}

void TCImageWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    layOut();
}

void TCImageWindow::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange) {
        applyBounds();
        if (isMaximized())
            QMetaObject::invokeMethod(this, &TCImageWindow::boundMaximised, Qt::QueuedConnection);
    } else if (event->type() == QEvent::ActivationChange) {
        for (WindowCorner* const corner : m_corners) corner->setActive(isActiveWindow());
        m_titleBar->update();
        update();
    }
}

bool TCImageWindow::isFramedAllTheSame() const {
    const QWindow* const handle = windowHandle();
    return m_kind != FrameKind::System && handle != nullptr &&
           handle->frameMargins().top() > tallestBorder;
}

bool TCImageWindow::event(QEvent* event) {
    const bool out = QWidget::event(event);
    // The toolkit would give the first focus to the first that was made, the button that closes the
    // window.
    if (event->type() == QEvent::WindowActivate && focusWidget() == nullptr)
        if (const auto order = focusOrder(); !order.isEmpty()) {
            order.first()->setFocus(Qt::ActiveWindowFocusReason);
            m_unaskedFocus = order.first();
        }
    if (event->type() == QEvent::WindowActivate || event->type() == QEvent::Resize) {
        // Later, since it may make the native window anew.
        if (isFramedAllTheSame())
            QMetaObject::invokeMethod(this, &TCImageWindow::useSystemFrame, Qt::QueuedConnection);
        else if (event->type() == QEvent::WindowActivate) followDesktop();
    }
    return out;
}

}  // namespace orrinvale
