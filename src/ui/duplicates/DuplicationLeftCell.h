// DuplicationLeftCell: one row of the list of types beside the result.
#pragma once

#include <QWidget>
#include <cstdint>

namespace orrinvale {

class NotificationCenter;

/// A click, or space and Enter with the focus on it, posts "refViewBgColor" with a UserInfo as
/// object that holds the row, an std::int32_t, under "rowNum". Up and down go to the rows beside
/// it. Main thread only.
class DuplicationLeftCell final : public QWidget {
    Q_OBJECT
public:
    static constexpr int cellHeight = 28;

    /// The centre outlives the row.
    DuplicationLeftCell(std::int32_t rowViewNum, const QString& title, const QString& picture,
                        const NotificationCenter& notifications, QWidget* parent = nullptr);

    [[nodiscard]] std::int32_t rowViewNum() const { return m_rowViewNum; }
    void setRowViewNum(std::int32_t row) { m_rowViewNum = row; }
    [[nodiscard]] bool isSelected() const { return m_isSelected; }
    [[nodiscard]] const QString& title() const { return m_title; }
    [[nodiscard]] const QString& sizeF() const { return m_size; }

    void setHiglightImage(bool isSelected);
    void setSizeTextFieldString(const QString& text);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void choose();

    std::int32_t m_rowViewNum;
    QString m_title;
    QString m_picture;
    QString m_size;
    bool m_isSelected;
    const NotificationCenter& m_notifications;
};

}  // namespace orrinvale
