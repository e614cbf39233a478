// MAAttachedWindow: a dark, round window that is attached to a point of the screen or of another
// window, with an arrow to it. attachedGeometry.h says where it stands.
#pragma once

#include <QColor>
#include <QPainterPath>
#include <QPointer>
#include <QWidget>
#include <memory>

#include "ui/bubbles/attachedGeometry.h"

namespace orrinvale {

/// Who wants to know of the pointer.
class MAAttachedWindowDelegate {
public:
    virtual ~MAAttachedWindowDelegate() = default;
    virtual void mouseEnterAction() {}
    virtual void mouseExitAction() {}

protected:
    MAAttachedWindowDelegate() = default;
    MAAttachedWindowDelegate(const MAAttachedWindowDelegate&) = default;
    MAAttachedWindowDelegate& operator=(const MAAttachedWindowDelegate&) = default;
};

/// Without a window it is one of its own above all others, which never takes the keyboard, placed
/// by the window system: an X server does that, a Wayland compositor does not. With a window it
/// lies within that one. A change of a look value moves and draws it anew. Main thread only.
class MAAttachedWindow final : public QWidget {
    Q_OBJECT
public:
    /// Hidden until show(). The point counts from the lower left corner of the main screen, or of
    /// `inWindow`, with y growing upwards. Takes the view over. Null for no view.
    [[nodiscard]] static std::unique_ptr<MAAttachedWindow> initWithView(
        std::unique_ptr<QWidget> view, AttachedPoint attachedToPoint, QWidget* inWindow = nullptr,
        AttachedSide onSide = AttachedSide::Automatic, float atDistance = 0);

    /// Not owned, outlives the window or is taken away.
    void setDelegate(MAAttachedWindowDelegate* delegate) { m_delegate = delegate; }

    [[nodiscard]] QColor borderColor() const { return m_borderColor; }
    void setBorderColor(const QColor& color);
    [[nodiscard]] float borderWidth() const { return m_borderWidth; }
    void setBorderWidth(float width);
    [[nodiscard]] float viewMargin() const { return static_cast<float>(m_look.viewMargin); }
    void setViewMargin(float margin);
    [[nodiscard]] float arrowBaseWidth() const { return static_cast<float>(m_look.arrowBaseWidth); }
    void setArrowBaseWidth(float width);
    [[nodiscard]] float arrowHeight() const { return static_cast<float>(m_look.arrowHeight); }
    void setArrowHeight(float height);
    [[nodiscard]] bool hasArrow() const { return m_hasArrow; }
    void setHasArrow(bool has);
    [[nodiscard]] float cornerRadius() const { return static_cast<float>(m_look.cornerRadius); }
    void setCornerRadius(float radius);
    [[nodiscard]] bool drawsRoundCornerBesideArrow() const {
        return m_look.drawsRoundCornerBesideArrow;
    }
    void setDrawsRoundCornerBesideArrow(bool draws);
    [[nodiscard]] QColor MABackgroundColor() const { return m_MABackgroundColor; }
    void setMABackgroundColor(const QColor& color);

    /// The side that it stands on, never Automatic.
    [[nodiscard]] AttachedSide side() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    MAAttachedWindow(std::unique_ptr<QWidget> view, AttachedPoint point, QWidget* inWindow,
                     AttachedSide side, float distance);

    void _updateGeometry();
    [[nodiscard]] AttachedSide _bestSideForAutomaticPosition() const;
    [[nodiscard]] double _arrowInset() const { return attachedArrowInset(m_look); }
    /// Cuts the window to its shape where nobody blends half transparent pixels.
    void _updateBackground();
    /// In the window's own coordinates, half the border within its edge.
    [[nodiscard]] QPainterPath _backgroundPath() const;
    void _appendArrowToPath(QPainterPath& path, const QRectF& body) const;

    [[nodiscard]] QRect frameOfPoint() const;
    [[nodiscard]] AttachedTo placing() const;

    AttachedLook m_look;
    QColor m_borderColor = Qt::white;
    float m_borderWidth = 2;
    bool m_hasArrow = true;
    QColor m_MABackgroundColor = QColor::fromRgbF(0.1F, 0.1F, 0.1F, 0.75F);
    QWidget* const m_view;  // a child
    const QPointer<QWidget> m_window;
    const AttachedPoint m_point;
    const AttachedSide m_side;
    const double m_distance;
    MAAttachedWindowDelegate* m_delegate = nullptr;
};

}  // namespace orrinvale
