// Animation: the moving strip that pages show as their progress, and the blinking padlock. Its
// screen reader side stands in AccessibleAnimation.cpp.
#pragma once

#include <QPointer>
#include <QString>
#include <QTimer>
#include <QWidget>

#include <cstdint>
#include <functional>

#include "ui/kit/look/picture.h"

namespace orrinvale {

class NotificationCenter;

/// Whoever knows how far the work is. Asked with each tick after startUpdatePrograss().
class AnimationTarget {
public:
    virtual ~AnimationTarget() = default;
    virtual void getPrograss() {}

protected:
    AnimationTarget() = default;
    AnimationTarget(const AnimationTarget&) = default;
    AnimationTarget& operator=(const AnimationTarget&) = default;
};

/// A progress picture that slides over a bottom picture. Positions are offsets of its left edge in
/// points: 0 shows the strip in full, minus the width of the bottom picture nothing of it.
/// Right-to-left layouts show the mirror image. Main thread only.
class Animation final : public QWidget {
    Q_OBJECT
public:
    /// A picture by its name, and where it lies; of `prograssView` relative to `bottomView`, which
    /// cuts it off.
    struct ImageView {
        QString image;
        QRectF frame;
    };

    /// "allThreadFinishCallBack" is posted to the centre, which outlives the strip.
    explicit Animation(const NotificationCenter& notifications, QWidget* parent = nullptr);

    [[nodiscard]] AnimationTarget* target() const { return m_target; }
    void setTarget(AnimationTarget* target) { m_target = target; }  ///< not owned
    /// The position of the run that start() begins; not touched by what places the strip for a
    /// share of the work.
    [[nodiscard]] std::int32_t goPrograss() const { return m_goPrograss; }
    [[nodiscard]] std::int32_t prograssMax() const { return m_prograssMax; }
    void setPrograssMax(std::int32_t steps) { m_prograssMax = steps; }
    [[nodiscard]] std::int32_t addNumber() const { return m_addNumber; }
    void setAddNumber(std::int32_t steps) { m_addNumber = steps; }
    [[nodiscard]] float timeSize() const { return m_timeSize; }
    void setTimeSize(float seconds) { m_timeSize = seconds; }  ///< holds from the next start on
    [[nodiscard]] bool isAdd() const { return m_isAdd; }
    void setIsAdd(bool isAdd) { m_isAdd = isAdd; }
    [[nodiscard]] bool isFinished() const { return m_isFinished; }
    void setIsFinished(bool isFinished) { m_isFinished = isFinished; }
    [[nodiscard]] const QString& bottomImage() const { return m_bottomView.image; }
    [[nodiscard]] const QString& prograssImage() const { return m_prograssView.image; }
    [[nodiscard]] const ImageView& bottomView() const { return m_bottomView; }
    [[nodiscard]] const ImageView& prograssView() const { return m_prograssView; }

    /// Pictures by name, see picture(). Each resizes its view to the picture, at the origin.
    void setBottomImage(const QString& name);
    void setPrograssImage(const QString& name);
    /// Lays a third picture over both.
    void showStyle(const QString& name);

    /// Starts the timer of updateprograss(), unless the strip's timer runs already; the second one
    /// that of the target.
    void start();
    void startUpdatePrograss();
    void updateprograss();
    /// Ends the timer and shows the strip in full; does nothing when no timer runs.
    void stop();
    void stopTimer();
    [[nodiscard]] bool isRunning() const { return m_timer.isActive(); }

    void baseNumberSetPrograss(std::int32_t percent);
    void baseNumberSetPrograssMax(std::int32_t max, std::int32_t index);
    /// Adds steps. At prograssMax the count returns to 0 and "allThreadFinishCallBack" is posted.
    void prograssShowDependChangeSize(std::int32_t steps);
    void minishPrograss();
    void initZeroPrograss();

    /// Lets the padlock blink until stopUnlockAnimation(), which leaves it closed. The button may
    /// die meanwhile. It shows a picture by setImage(name) when it has that, and otherwise by its
    /// icon.
    template <class Button> void startUnlockAnimation(Button* button) {
        startBlinking(button, [button](const QString& name) { showImage(*button, name); });
    }
    template <class Button> void stopUnlockAnimation(Button* button) {
        m_unlockTimer.stop();
        if (button != nullptr) showImage(*button, QStringLiteral("Lock.png"));
    }
    void changeUnlockImage();

    /// What of the strip is to be seen, 0 to 100.
    [[nodiscard]] int shownPercent() const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    using Tick = void (Animation::*)();

    template <class Button> static void showImage(Button& button, const QString& name) {
        if constexpr (requires { button.setImage(name); }) button.setImage(name);
        else button.setIcon(picture(name));
    }

    void startBlinking(QObject* button, std::function<void(const QString& name)> show);
    void startTimer(Tick tick);
    [[nodiscard]] int stripWidth() const;
    void placeStrip(double offset);
    void askTarget();

    const NotificationCenter& m_notifications;
    AnimationTarget* m_target = nullptr;
    std::int32_t m_goPrograss = -310;
    std::int32_t m_prograssMax = 0;
    std::int32_t m_addNumber = 0;
    float m_timeSize = 0.02F;
    bool m_isAdd = true;
    bool m_isFinished = false;
    ImageView m_bottomView, m_prograssView, m_styleView;
    QTimer m_timer, m_unlockTimer;
    Tick m_tick = &Animation::updateprograss;
    QPointer<QObject> m_unlockButton;
    std::function<void(const QString& name)> m_showUnlockImage;  // while m_unlockButton lives
    bool m_isUnlockLit = false;
};

}  // namespace orrinvale
