// QnProgressView: a thin bar on its track.
#pragma once

#include <QProgressBar>
#include <QVariantAnimation>

namespace orrinvale {

/// A progress bar to screen readers. Main thread only.
class QnProgressView final : public QProgressBar {
    Q_OBJECT
public:
    explicit QnProgressView(QWidget* parent = nullptr);

    /// Percent, 0 to 100.
    void changeProgressValue(float percent);

    /// While nobody knows how much there is: a piece of the bar goes to and fro, or lies still
    /// where nothing may move.
    void setIndeterminate(bool isIndeterminate);

    /// How wide the bar is on a view of that width, in points: never so narrow that nobody sees it.
    [[nodiscard]] static qreal barWidth(qreal viewWidth, float percent);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void animate();

    float m_percent = 0;
    bool m_isIndeterminate = false;
    QVariantAnimation m_motion;  // runs while the piece is to be seen
};

}  // namespace orrinvale
