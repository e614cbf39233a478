// ControlSheet: every control of the kit in every state, on one sheet. Portrait.h holds states that
// need a pointer or a keyboard.
#pragma once

#include <QWidget>

class QVBoxLayout;

namespace orrinvale {

class NotificationCenter;

/// The first column of a row is the live control. Main thread only.
class ControlSheet final : public QWidget {
    Q_OBJECT
public:
    /// The centre outlives the sheet.
    explicit ControlSheet(NotificationCenter& notifications, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void addSection(const QString& title, QWidget* content);
    [[nodiscard]] QWidget* buttons() const;
    [[nodiscard]] QWidget* tickBoxes() const;
    [[nodiscard]] QWidget* tickRows() const;
    [[nodiscard]] QWidget* leftRows() const;
    [[nodiscard]] QWidget* strips() const;
    [[nodiscard]] QWidget* dropAreas() const;
    [[nodiscard]] QWidget* alerts() const;

    NotificationCenter& m_notifications;
    QVBoxLayout* m_column;
};

}  // namespace orrinvale
