// CustomStatusItemView: what the status item shows beside its picture: the boot volume's sizes.
// Trays of Linux take a picture and a tool tip and no view of a program: there it keeps the texts,
// and nobody sees it.
#pragma once

#include <QLabel>
#include <QString>
#include <QWidget>

namespace orrinvale {

class CustomStatusItemView final : public QWidget {
    Q_OBJECT
public:
    explicit CustomStatusItemView(QWidget* parent = nullptr);

    /// Another title changes the item's length to the title's width and 52, truncated.
    void setTitle(const QString& title);
    [[nodiscard]] const QString& title() const { return m_title; }
    [[nodiscard]] int length() const { return m_length; }

    void updateShowSizeWithFree(const QString& free, const QString& withTotalSpace);

    /// Red fields for true, white ones else.
    void setWarningStatusShowColor(bool warns);

    void menuWillOpen();
    void menuDidClose();

    QString u64FreeSpace;
    QString u64TotalSpace;
    bool isMenuVisible = false;
    QLabel* const textField;
    QLabel* const totolField;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void setFieldColour(const QColor& colour);

    QString m_title;
    int m_length = 0;
};

}  // namespace orrinvale
