// Sheet: a panel that slides from the title bar of a window and keeps the rest of it out of reach
// until it is answered.
#pragma once

#include <QPointer>
#include <QVariantAnimation>
#include <QWidget>

#include <functional>

namespace orrinvale {

/// Lies over a window, its title bar left free (see SheetHost.h), and dims it. Inside, Tab goes
/// round, Escape calls cancelled(), a held-down Enter or space bar does nothing, and no shortcut of
/// the window gets through. At the end the keyboard goes back to where it was, and the sheet
/// deletes itself. A second sheet of the window lies over the first. Main thread only.
class Sheet final : public QWidget {
    Q_OBJECT
public:
    /// A child of the window that `widget` lies in; owns `content`, which has the size that its
    /// layout asks for, less where the window is smaller.
    Sheet(QWidget& widget, QWidget* content);
    ~Sheet() override;

    /// Slides in and gives the keyboard to `first`, a child of the content.
    void open(QWidget* first);

    /// Slides out, gives the keyboard back, runs `ended` and ends the sheet. Only the first call
    /// counts.
    void close(std::function<void()> ended);

    [[nodiscard]] QWidget* content() const { return m_content; }

    /// Nothing is asked: what comes next may take the sheet away, by cancelled().
    void setOnlyTells(bool onlyTells) { m_onlyTells = onlyTells; }
    [[nodiscard]] bool onlyTells() const { return m_onlyTells; }

Q_SIGNALS:
    /// The user pressed Escape.
    void cancelled();

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool focusNextPrevChild(bool isNext) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void slide(qreal from, qreal to, std::function<void()> ended);
    void layOut();
    void keepFocus(QWidget* now);
    void takeFocus();
    void giveFocusBack();
    [[nodiscard]] bool isUnderOther() const;
    [[nodiscard]] QRect panelRect() const;

    QWidget* const m_content;
    QPointer<QWidget> m_first;
    QPointer<QWidget> m_focusBefore;
    QVariantAnimation m_slide;
    std::function<void()> m_slideEnded;
    qreal m_shown = 0.0;  // how much of the way in
    bool m_isClosing = false;
    bool m_onlyTells = false;
};

}  // namespace orrinvale
