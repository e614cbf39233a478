// DragView: the area of a page that takes a folder out of the file manager. FileUrl.h reads what
// was dropped.
#pragma once

#include <QWidget>

#include <string>

class QMimeData;

namespace orrinvale {

class DropInvitation;

class DragViewDelegate {
public:
    virtual ~DragViewDelegate() = default;

    /// The exact bytes of the path of an existing folder.
    virtual void viewDragAction(const std::string& path) { static_cast<void>(path); }

    /// The same, of the first of several that were dropped together. Whoever can tells that the
    /// others are left aside.
    virtual void viewDragActionOfSeveral(const std::string& path) { viewDragAction(path); }

protected:
    DragViewDelegate() = default;
    DragViewDelegate(const DragViewDelegate&) = default;
    DragViewDelegate& operator=(const DragViewDelegate&) = default;
};

/// Main thread only. Lists of files and images may be dragged in; only a folder leads to anything.
/// The page offers a button beside it that chooses a folder from the keyboard.
class DragView final : public QWidget {
    Q_OBJECT
public:
    explicit DragView(QWidget* parent = nullptr);

    [[nodiscard]] DragViewDelegate* delegate() const { return m_delegate; }
    /// Not owned; outlives the view or is taken out before.
    void setDelegate(DragViewDelegate* delegate) { m_delegate = delegate; }

    /// Without it the view shows its frame only while a folder hovers, for pages that draw a place
    /// to drop of their own.
    void setFrameAtRest(bool isShown);

    /// What is shown over everything in the view while a folder hovers, for views that are full.
    void setInvitation(const QString& text);

    /// True while a folder, and nothing else, hovers over the view.
    [[nodiscard]] bool isFolderOver() const { return m_isFolderOver; }

    /// What the source may be told: to copy, or else to link, and never to move, since it would
    /// then remove what it gave.
    [[nodiscard]] static Qt::DropAction draggingEntered(Qt::DropActions offered);
    [[nodiscard]] bool prepareForDragOperation(const QMimeData& dragged) const;
    /// Whether the drop was of use. Only the first path of several counts.
    [[nodiscard]] bool performDragOperation(const QMimeData& dragged);
    void concludeDragOperation();

    /// Hands the path to the delegate.
    void viewDragAction(const std::string& path);

Q_SIGNALS:
    void folderOverChanged(bool isOver);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void setFolderOver(bool isOver);

    DragViewDelegate* m_delegate = nullptr;
    DropInvitation* m_invitation = nullptr;  // a child; null without a text
    bool m_isFolderOver = false;
    bool m_hasFrameAtRest = true;
};

}  // namespace orrinvale
