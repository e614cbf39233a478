// TitleBarView: the title bar of a TCImageWindow: header picture, window buttons, and whatever the
// owner puts on it.
#pragma once

#include <QPoint>
#include <QString>
#include <QWidget>

#include <array>
#include <functional>
#include <optional>

namespace orrinvale {

class WindowButton;
class WindowDrag;

/// Its empty places move the window and take the double click. Labels on it let the pointer
/// through, buttons do not.
class TitleBarView final : public QWidget {
    Q_OBJECT
public:
    /// `drag` outlives the bar.
    TitleBarView(WindowDrag& drag, QWidget* window);

    /// A picture of the program's collection that fills the bar, behind everything on it. An empty
    /// name takes it away.
    void setHeaderImage(const QString& name);

    /// Where the window buttons begin: points from the left, and from the top.
    void setLeftMargin(int margin);
    void setTopButtonShift(int shift);
    /// Without them the system's frame has its own.
    void setHasButtons(bool hasButtons);

    /// What the buttons leave free.
    [[nodiscard]] QRect contentRect() const;

    /// In the order of WindowButton::Kind.
    [[nodiscard]] const std::array<WindowButton*, 3>& buttons() const { return m_buttons; }

    void setDoubleClickAction(std::function<void()> action);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void childEvent(QChildEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    void placeChildren();

    WindowDrag& m_drag;
    std::array<WindowButton*, 3> m_buttons{};
    QString m_headerImage;
    int m_leftMargin = 8;
    int m_topButtonShift = 4;
    bool m_hasButtons = true;
    std::function<void()> m_doubleClickAction;
    std::optional<QPoint> m_press;  // global, until it has become a drag
};

}  // namespace orrinvale
