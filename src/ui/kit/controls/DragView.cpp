// The events of Qt's drag and drop are led through the four steps of a drag destination.
#include "ui/kit/controls/DragView.h"

#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QPainter>
#include <QPen>
#include <QUrl>

#include <filesystem>
#include <optional>
#include <system_error>

#include "engine/base/Log.h"
#include "platform/FileUrl.h"
#include "ui/kit/controls/DropInvitation.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

constexpr qreal outlineWidth = 1.5;

// What QMimeData::setImageData() files the picture under.
QString qtImageType() { return QStringLiteral("application/x-qt-image"); }
QString fileNamesType() { return QStringLiteral("text/uri-list"); }

// Images come first: a source that offers both drags the picture, and its list names where the
// picture came from.
std::optional<QString> availableType(const QMimeData& data) {
    for (const QString& format : data.formats())
        if (format.startsWith(QLatin1String("image/")) || format == qtImageType()) return format;
    if (data.hasFormat(fileNamesType())) return fileNamesType();
    return std::nullopt;
}

bool isImagePresent(const QMimeData& data, const QString& type) {
    return type == qtImageType() ? data.imageData().isValid() : !data.data(type).isEmpty();
}

std::optional<std::string> folderOf(const QMimeData& data) {
    const QByteArray list = data.data(fileNamesType());
    auto path = firstLocalPath({list.constData(), static_cast<std::size_t>(list.size())});
    std::error_code failure;
    if (path && !std::filesystem::is_directory(*path, failure)) path.reset();
    return path;
}

}  // namespace

DragView::DragView(QWidget* parent) : QWidget(parent) {
    setAcceptDrops(true);
    setAccessibleName(tr("Drop area"));
    setAccessibleDescription(tr("Takes a folder that is dragged here from the file manager"));
    connect(&Theme::shared(), &Theme::changed, this, [this] { update(); });
}

Qt::DropAction DragView::draggingEntered(Qt::DropActions offered) {
    if (offered.testFlag(Qt::CopyAction)) return Qt::CopyAction;
    return offered.testFlag(Qt::LinkAction) ? Qt::LinkAction : Qt::IgnoreAction;
}

bool DragView::prepareForDragOperation(const QMimeData& dragged) const {
    return availableType(dragged).has_value();
}

bool DragView::performDragOperation(const QMimeData& dragged) {
    const auto type = availableType(dragged);
    if (!type) {
        Log::line("Error MyNSView performDragOperation");
        return false;
    }
    if (*type != fileNamesType()) {
        const bool isPresent = isImagePresent(dragged, *type);
        if (isPresent) update();
        else Log::line("Error: MyNSView performDragOperation zPasteboardData == nil");
        return isPresent;
    }
    const auto folder = folderOf(dragged);
    if (!folder) return false;
    if (m_delegate != nullptr && dragged.urls().size() > 1)
        m_delegate->viewDragActionOfSeveral(*folder);
    else viewDragAction(*folder);
    return true;
}

void DragView::setFrameAtRest(bool isShown) {
    m_hasFrameAtRest = isShown;
    update();
}

void DragView::setInvitation(const QString& text) {
    delete m_invitation;
    m_invitation = new DropInvitation(text, *this);
}

void DragView::concludeDragOperation() { setFolderOver(false); }

void DragView::viewDragAction(const std::string& path) {
    if (m_delegate != nullptr) m_delegate->viewDragAction(path);
}

void DragView::dragEnterEvent(QDragEnterEvent* event) {
    const QMimeData& dragged = *event->mimeData();
    const auto action = draggingEntered(event->possibleActions());
    if (action == Qt::IgnoreAction || !prepareForDragOperation(dragged)) {
        event->ignore();
        return;
    }
    event->setDropAction(action);
    event->accept();
    // Looked at once, on the way in: a folder on a slow volume must not be asked for with every
    // move of the pointer.
    setFolderOver(availableType(dragged) == fileNamesType() && folderOf(dragged).has_value());
}

void DragView::dragMoveEvent(QDragMoveEvent* event) {
    // Modifier keys can take actions away while the drag is under way.
    const auto action = draggingEntered(event->possibleActions());
    event->setDropAction(action);
    event->setAccepted(action != Qt::IgnoreAction);
}

void DragView::dragLeaveEvent(QDragLeaveEvent* event) {
    event->accept();
    concludeDragOperation();
}

void DragView::dropEvent(QDropEvent* event) {
    const auto action = draggingEntered(event->possibleActions());
    // The look of hovering ends first: the delegate may bring another page on screen.
    concludeDragOperation();
    const bool isUsed = action != Qt::IgnoreAction && performDragOperation(*event->mimeData());
    event->setDropAction(isUsed ? action : Qt::IgnoreAction);
    event->setAccepted(isUsed);
}

void DragView::paintEvent(QPaintEvent* /*event*/) {
    if (!m_isFolderOver && !m_hasFrameAtRest) return;
    const Theme& theme = Theme::shared();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor fill = theme.color(Theme::Color::Accent);
    fill.setAlphaF(m_isFolderOver ? 0.10F : 0.0F);
    const auto outline = m_isFolderOver ? Theme::Color::Accent : Theme::Color::Outline;
    QPen pen(theme.color(outline), m_isFolderOver ? outlineWidth + 0.5 : outlineWidth);
    pen.setCapStyle(Qt::RoundCap);
    if (!m_isFolderOver) pen.setDashPattern({4.0, 4.0});
    painter.setPen(pen);
    painter.setBrush(fill);
    const QRectF inside =
        QRectF(rect()).adjusted(outlineWidth, outlineWidth, -outlineWidth, -outlineWidth);
    painter.drawRoundedRect(inside, Theme::radius, Theme::radius);
}

void DragView::setFolderOver(bool isOver) {
    if (m_isFolderOver == isOver) return;
    m_isFolderOver = isOver;
    if (m_invitation != nullptr) m_invitation->setShown(isOver);
    update();
    Q_EMIT folderOverChanged(isOver);
}

}  // namespace orrinvale
