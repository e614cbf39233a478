// PathAnimation: a picture that flies from a row to the button where it will be dealt with.
// motion.h says when nothing flies.
#pragma once

#include <QObject>
#include <QPixmap>
#include <QPointF>
#include <QPointer>
#include <QVariantAnimation>

class QLabel;
class QWidget;

namespace orrinvale {

class PathAnimationDelegate {
public:
    virtual ~PathAnimationDelegate() = default;

    /// The picture has arrived and is hidden.
    virtual void callBackDeleteItemWithIndex() {}

protected:
    PathAnimationDelegate() = default;
    PathAnimationDelegate(const PathAnimationDelegate&) = default;
    PathAnimationDelegate& operator=(const PathAnimationDelegate&) = default;
};

/// One flight at a time, of 1.0 second; a new one ends the one under way first, with its callback.
/// Where nothing may move, or the page is not on screen, a flight ends within the call that begins
/// it. Main thread only.
class PathAnimation final : public QObject {
    Q_OBJECT
public:
    /// Flies over `page`, which owns the picture.
    explicit PathAnimation(QWidget& page, QObject* parent = nullptr);
    ~PathAnimation() override;

    [[nodiscard]] PathAnimationDelegate* delegate() const { return m_delegate; }
    void setDelegate(PathAnimationDelegate* delegate) { m_delegate = delegate; }  ///< not owned
    [[nodiscard]] QLabel* animatedIconView() const;
    [[nodiscard]] bool isFly() const { return m_isFly; }

    /// Flies from the middle of a rectangle of the page to the middle of a button of the same
    /// window. Without a button the flight ends at once.
    void fly(const QPixmap& image, const QRect& start, const QWidget* endButton);

    /// Where the picture's middle is after a share of the flight, 0 to 1: a curve that rises above
    /// its ends.
    [[nodiscard]] static QPointF pointOfPath(QPointF start, QPointF end, qreal share);

private:
    void animationDidStart();
    void animationDidStop();
    void moveTo(qreal share);

    QPointer<QWidget> m_page;
    QPointer<QLabel> m_animatedIconView;
    PathAnimationDelegate* m_delegate = nullptr;
    QVariantAnimation m_flight;
    QPointF m_start, m_end;
    bool m_isFly = false;
};

}  // namespace orrinvale
