// ElidedLabel: one line of text that is cut where there is no room, and whole in its tool tip.
#pragma once

#include <QLabel>

namespace orrinvale {

/// text() is always the whole text. Plain text only: a file name must not be read as markup. Main
/// thread only.
class ElidedLabel final : public QLabel {
    Q_OBJECT
public:
    explicit ElidedLabel(Qt::TextElideMode mode = Qt::ElideRight, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Qt::TextElideMode m_mode;
};

}  // namespace orrinvale
