// LeftRow: one row of a LeftRail: a picture, a title, a size at its end, and a box where a page
// ticks by it.
#pragma once

#include <QWidget>
#include <optional>

#include "ui/kit/lists/paintTickBox.h"

namespace orrinvale {

class TickBox;

/// A click, Enter, and the space bar choose it; with a box the space bar ticks. Up and down go to
/// the rows beside it. Main thread only.
class LeftRow : public QWidget {
    Q_OBJECT
public:
    struct Content {
        QString title;
        QString picture;  ///< its name, see picture.h
        bool isStrong = false;
        int height = 36;
    };

    explicit LeftRow(const Content& content, QWidget* parent = nullptr);

    [[nodiscard]] const QString& title() const { return m_content.title; }
    [[nodiscard]] const QString& sizeText() const { return m_size; }
    void setSizeText(const QString& text);
    /// Whether the title can be read in full with this size beside it, in a row of this width.
    [[nodiscard]] bool hasRoomFor(const QString& size, int width) const;
    /// The size stands below the title; beside it at first.
    void setSizeBelow(bool isBelow);

    [[nodiscard]] bool isSelected() const { return m_isSelected; }
    void setSelected(bool isSelected);

    /// A box before the picture; none to begin with. What a click makes of it is the page's to say.
    void setBox(TickState state);
    /// None where there is no box.
    [[nodiscard]] std::optional<TickState> box() const;

    [[nodiscard]] QSize sizeHint() const override { return {188, m_content.height}; }

Q_SIGNALS:
    void chosen();
    void boxClicked();

protected:
    /// What lies behind the words: whether the row is chosen, under the pointer, has the keyboard.
    void drawGround(QPainter& painter) const;

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    [[nodiscard]] int startOfIcon() const;
    [[nodiscard]] QFont titleFont() const;
    void placeBox();
    void clickBox();
    void drawWords(QPainter& painter, QRect place) const;

    const Content m_content;
    QString m_size;
    bool m_isSelected = false;
    bool m_isSizeBelow = false;
    TickBox* m_box = nullptr;
    TickState m_state = TickState::Nothing;
};

}  // namespace orrinvale
