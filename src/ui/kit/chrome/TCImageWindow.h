// TCImageWindow: the window of the program, with a title bar of its own. The pieces: TitleBarView,
// ResizeGrip, WindowDrag, WindowShadow, frameGeometry; desktopFrame decides who draws the frame.
#pragma once

#include <QList>
#include <QMargins>
#include <QPointer>
#include <QWidget>

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "ui/kit/chrome/SheetHost.h"
#include "ui/kit/chrome/WindowDrag.h"
#include "ui/kit/chrome/desktopFrame.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {

class ResizeGrip;
class TitleBarView;
class WindowButton;
class WindowCorner;

/// Sizes and frames here are those that the user sees: with the title bar, without the shadow. The
/// widget itself is larger by shadowMargins(). Where the desktop insists on its own frame (see
/// chooseFrame) that one stands around the title bar, which then has no buttons; everything else
/// works alike. Main thread only.
class TCImageWindow final : public QWidget, public SheetHost {
    Q_OBJECT
public:
    using DoubleClick = TitleDoubleClick;

    explicit TCImageWindow(QWidget* parent = nullptr);

    [[nodiscard]] TitleBarView* titleBarView() const { return m_titleBar; }
    void setTitleBarHeight(int height);
    [[nodiscard]] int titleBarHeight() const { return m_titleBarHeight; }
    void setTopButtonShift(int shift);
    void setLeftMargin(int margin);
    void setHeaderImage(const QString& name);
    /// What a double click on the title bar does in this window, in place of what the desktop's
    /// setting says.
    void setDoubleClickAction(DoubleClick action) { m_doubleClick = action; }

    /// The area below the title bar. The window takes the view over, and deletes the one before.
    void setContentView(QWidget* view);
    [[nodiscard]] QWidget* contentView() const { return m_content; }
    /// Makes the window as large as it takes to give its content view this size, within the bounds.
    void setContentSize(QSize size);

    /// Bounds of the window; they hold for the user, the desktop and zooming.
    void setMinSize(QSize size);
    void setMaxSize(QSize size);

    [[nodiscard]] QRect frame() const;
    void setFrame(const QRect& frame);
    /// To the middle of the screen that it is on. On Wayland the compositor places windows.
    void center();

    /// 0 closes, 1 minimises, 2 zooms; null for other numbers. An action that is set on the first
    /// takes part wherever the user asks to close: by the button, by the keys, by the window
    /// manager.
    [[nodiscard]] WindowButton* standardWindowButton(int index) const;

    /// As the close button: runs its action, which closes the window if nobody has set another.
    void performClose();
    void miniaturize() { showMinimized(); }
    /// Fills the screen, or its middle if the maximum size is smaller than the screen; and back.
    void zoom();
    [[nodiscard]] bool isZoomed() const;

    /// The frame as text, to be kept between two runs, and back. A frame that lies off the screens
    /// of today is brought into view. False for a text that is none, which changes nothing.
    [[nodiscard]] std::string stringWithSavedFrame() const;
    bool setFrameFromString(std::string_view text);

    [[nodiscard]] FrameKind frameKind() const { return m_kind; }
    /// What the widget has around the frame, for the shadow. None while maximised.
    [[nodiscard]] QMargins shadowMargins() const;

    /// Sheets come out from under the title bar.
    [[nodiscard]] QRect sheetArea() const override;
    void sheetRaised() override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void makeFrame();
    void applyKind(FrameKind kind);
    [[nodiscard]] bool isFramedAllTheSame() const;
    void followDesktop();
    void useSystemFrame();
    void applyBounds();
    void layOut();
    void layOutFrame(const QRect& frame);
    /// What the Tab key goes through: the contents first, then the title bar, the window buttons
    /// last.
    [[nodiscard]] QList<QWidget*> focusOrder() const;
    void boundMaximised();
    [[nodiscard]] QRect zoomTarget() const;
    [[nodiscard]] QRect normalFrame() const;

    FrameKind m_kind;
    bool m_isRefused = false;  // the desktop has put its frame around us all the same
    WindowDrag m_drag;
    TitleBarView* m_titleBar;
    QPointer<QWidget> m_content;
    QPointer<QWidget> m_unaskedFocus;  // that the window itself gave the keyboard when it came up
    std::array<ResizeGrip*, 8> m_grips{};
    std::array<WindowCorner*, 4> m_corners{};
    int m_titleBarHeight = 36;
    std::optional<DoubleClick> m_doubleClick;
    QSize m_minSize;
    QSize m_maxSize{QWIDGETSIZE_MAX, QWIDGETSIZE_MAX};
    std::optional<QRect> m_frameBeforeZoom;
};

}  // namespace orrinvale
