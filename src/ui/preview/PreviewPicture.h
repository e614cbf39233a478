// PreviewPicture: one picture, as large as its place or larger. PreviewZoom.h is what several
// share.
#pragma once

#include <QImage>
#include <QPointF>
#include <QSize>
#include <QWidget>
#include <cstdint>

namespace orrinvale {

class PreviewZoom;

/// The wheel and the keys + and - make it larger and smaller, 0 shows all of it; dragging and the
/// arrows move it. Main thread only.
class PreviewPicture final : public QWidget {
    Q_OBJECT
public:
    /// The zoom outlives it.
    explicit PreviewPicture(PreviewZoom& zoom, QWidget* parent = nullptr);

    /// `stored` is its size as it stands in the file, of which `image` may be a smaller copy.
    void setPicture(QImage image, QSize stored);
    /// How many pixels a side are worth having at this size and zoom; a power of two.
    [[nodiscard]] std::uint32_t wantedSide() const;
    /// More pixels would be seen, and the file has more.
    [[nodiscard]] bool wantsMore() const;
    /// Where the picture lies; parts of it may be outside of the widget.
    [[nodiscard]] QRectF place() const;

Q_SIGNALS:
    void sharperWanted();

protected:
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void tellFit();
    /// Points on the screen for a pixel of the file.
    [[nodiscard]] double scale() const;
    void zoomBy(double factor, QPointF around);
    void moveBy(QPointF points);
    void tellZoom();

    PreviewZoom& m_zoom;
    QImage m_image;
    QSize m_stored;
    QPointF m_grabbed;
};

}  // namespace orrinvale
