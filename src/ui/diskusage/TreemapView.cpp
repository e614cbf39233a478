// Entries point to nodes of the tree, which stay where they are for as long as the scan is held.
#include "ui/diskusage/TreemapView.h"

#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <utility>

#include "services/foundation/runAside.h"
#include "ui/kit/chrome/buttonLook.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/look/accessibleRole.h"

namespace orrinvale {
namespace {

// A window that is being resized asks many times.
constexpr std::chrono::milliseconds settleTime{30};

// The tree is the main thread's, which is where this is used.
FSNode* mutableNode(const FSNode* node) { return const_cast<FSNode*>(node); }

}  // namespace

TreemapView::TreemapView(QWidget* parent) : QWidget(parent) {
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleTraits(*this, {.role = QAccessible::Graphic});
    m_timer.setSingleShot(true);
    m_timer.setInterval(settleTime);
    connect(&m_timer, &QTimer::timeout, this, &TreemapView::draw);
    connect(&Theme::shared(), &Theme::changed, this, &TreemapView::reload);
}

void TreemapView::setFolder(std::shared_ptr<const ShownScan> scan, FSNode* folder) {
    if (folder == m_folder && scan == m_scan) return;
    m_scan = std::move(scan);
    m_folder = folder;
    m_current = nullptr;
    m_pressed = nullptr;
    hover(nullptr);
    m_picture.reset();
    reload();
}

void TreemapView::reload() {
    m_isStale = m_folder != nullptr;
    update();
    if (isVisible() && !m_timer.isActive()) m_timer.start();
}

void TreemapView::setCurrent(FSNode* node) {
    m_current = node;
    update();
}

void TreemapView::draw() {
    if (m_isDrawing || !m_isStale || size().isEmpty()) return;
    m_isStale = false;
    m_isDrawing = true;
    const auto worker = runAside(
        this, "drawTreemap",
        [order = treemapOrder(m_scan, *m_folder, size(), devicePixelRatioF())]() mutable {
            return std::make_unique<TreemapPicture>(drawTreemap(std::move(order)));
        },
        [this](std::unique_ptr<TreemapPicture> picture) { drawn(std::move(picture)); });
    if (worker == nullptr) m_isDrawing = false;
}

void TreemapView::drawn(std::unique_ptr<TreemapPicture> picture) {
    m_isDrawing = false;
    if (picture->folder == m_folder && picture->scan == m_scan) m_picture = std::move(picture);
    update();
    draw();
}

const TreemapEntry* TreemapView::entryAt(QPointF place) const {
    return m_picture ? m_picture->entryAt(place) : nullptr;
}

void TreemapView::hover(const TreemapEntry* entry) {
    const FSNode* const node = entry != nullptr ? entry->node : nullptr;
    const bool isLeftOut = entry != nullptr && entry->isLeftOut();
    if (node == m_hovered && isLeftOut == m_isOverLeftOut) return;
    m_hovered = node;
    m_isOverLeftOut = isLeftOut;
    update();
    Q_EMIT hovered(entry);
}

bool TreemapView::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QWidget::event(event);
    const auto& help = static_cast<const QHelpEvent&>(*event);
    const TreemapEntry* const entry = entryAt(help.pos());
    if (entry == nullptr) QToolTip::hideText();
    else
        QToolTip::showText(help.globalPos(),
                           entry->isLeftOut()
                               ? asToolTip(QStringLiteral("%1: %2").arg(
                                     restWords(*entry, m_scan->limit), bytesWords(entry->size)))
                               : entryTip(*entry->node, *m_scan),
                           this);
    return true;
}

void TreemapView::drawFrame(QPainter& painter, const FSNode* node, Theme::Color color) const {
    const TreemapRectangle* const place = node != nullptr ? m_picture->placeOf(*node) : nullptr;
    if (place == nullptr || place->width() <= 0) return;
    painter.setPen(QPen(Theme::shared().color(color), 2));
    painter.drawRect(
        QRectF(place->left, place->top, place->width(), place->height()).adjusted(1, 1, -1, -1));
}

void TreemapView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), Theme::shared().color(Theme::Color::Window));
    if (!m_picture) return;
    painter.drawImage(rect(), m_picture->image);
    if (!m_isOverLeftOut) drawFrame(painter, m_hovered, Theme::Color::TextSecondary);
    drawFrame(painter, m_current, Theme::Color::Text);
    if (hasFocus()) drawFocusRing(painter, QRectF(rect()), 0);
}

void TreemapView::resizeEvent(QResizeEvent* /*event*/) { reload(); }

void TreemapView::showEvent(QShowEvent* /*event*/) {
    if (m_isStale) m_timer.start();
}

void TreemapView::mouseMoveEvent(QMouseEvent* event) { hover(entryAt(event->position())); }

void TreemapView::leaveEvent(QEvent* /*event*/) { hover(nullptr); }

void TreemapView::mousePressEvent(QMouseEvent* event) {
    const TreemapEntry* const entry = entryAt(event->position());
    m_pressed =
        entry != nullptr && event->button() == Qt::LeftButton ? mutableNode(entry->node) : nullptr;
}

void TreemapView::mouseReleaseEvent(QMouseEvent* event) {
    const TreemapEntry* const entry = entryAt(event->position());
    FSNode* const pressed = std::exchange(m_pressed, nullptr);
    if (pressed != nullptr && entry != nullptr && entry->node == pressed) Q_EMIT goWanted(pressed);
}

void TreemapView::contextMenuEvent(QContextMenuEvent* event) {
    if (event->reason() == QContextMenuEvent::Keyboard) {
        if (m_current != nullptr) Q_EMIT menuWanted(m_current, mapToGlobal(rect().center()));
        return;
    }
    const TreemapEntry* const entry = entryAt(event->pos());
    if (entry != nullptr) Q_EMIT menuWanted(mutableNode(entry->node), event->globalPos());
}

void TreemapView::step(int by) {
    if (m_folder == nullptr || m_folder->children().empty()) return;
    const auto children = m_folder->children();
    const auto found = std::ranges::find(children, m_current);
    const auto last = std::ptrdiff_t(children.size()) - 1;
    const std::ptrdiff_t next = found == children.end() ? 0
                                                        : std::clamp(found - children.begin() + by,
                                                                     std::ptrdiff_t{0}, last);
    setCurrent(children[std::size_t(next)]);
    Q_EMIT chosen(m_current);
}

void TreemapView::keyPressEvent(QKeyEvent* event) {
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    switch (event->key()) {
        case Qt::Key_Right: step(isMirrored ? -1 : 1); return;
        case Qt::Key_Left: step(isMirrored ? 1 : -1); return;
        case Qt::Key_Down: step(1); return;
        case Qt::Key_Up: step(-1); return;
        case Qt::Key_Backspace: Q_EMIT upWanted(); return;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (m_current != nullptr) Q_EMIT goWanted(m_current);
            return;
        case Qt::Key_Space:
            if (m_current != nullptr && !event->isAutoRepeat()) Q_EMIT tickWanted(m_current);
            return;
        default: QWidget::keyPressEvent(event);
    }
}

}  // namespace orrinvale
