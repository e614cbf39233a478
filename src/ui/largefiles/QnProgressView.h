// QnProgressView: the thin bar of the large file page, on its track.
#pragma once

#include <QProgressBar>

namespace orrinvale {

/// A progress bar to screen readers. Main thread only.
class QnProgressView final : public QProgressBar {
    Q_OBJECT
public:
    explicit QnProgressView(QWidget* parent = nullptr);

    /// Percent, 0 to 100.
    void changeProgressValue(float percent);

    /// How wide the bar is on a view of that width, in points: never so narrow that nobody sees it.
    [[nodiscard]] static qreal barWidth(qreal viewWidth, float percent);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    float m_percent = 0;
};

}  // namespace orrinvale
