// BubbleContent: the inside of a bubble: up to three lines, white and bold.
#pragma once

#include <QStringList>
#include <QWidget>

namespace orrinvale {

/// 50 points high; 280 wide for several lines, else 220, unless one line has to be broken and needs
/// more room. Main thread only.
class BubbleContent final : public QWidget {
    Q_OBJECT
public:
    static constexpr int height = 50, wide = 280, narrow = 220;

    /// Plain texts, of which what does not fit is cut.
    explicit BubbleContent(QStringList lines, QWidget* parent = nullptr);

    [[nodiscard]] const QStringList& lines() const { return m_lines; }

    /// The letters of all bubbles: bold, of this size in pixels.
    [[nodiscard]] static QFont font(int pixels = 13);

private:
    const QStringList m_lines;
};

}  // namespace orrinvale
