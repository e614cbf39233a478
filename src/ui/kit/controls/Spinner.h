// Spinner: a turning arc, for work of which nobody knows how far it is.
#pragma once

#include <QTimer>
#include <QWidget>

namespace orrinvale {

/// Stands still where the desktop wants no animations. Main thread only.
class Spinner final : public QWidget {
    Q_OBJECT
public:
    static constexpr int side = 32;

    explicit Spinner(QWidget* parent = nullptr);

    void start();
    void stop();
    [[nodiscard]] bool isTurning() const { return m_isTurning; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void turn();

    QTimer m_timer;
    int m_angle = 0;  // degrees
    bool m_isTurning = false;
};

}  // namespace orrinvale
