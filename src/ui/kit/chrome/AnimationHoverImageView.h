// AnimationHoverImageView: the large control of a start page that is one picture, and fades into
// another under the pointer.
#pragma once

#include <QIcon>
#include <QPixmap>
#include <QVariantAnimation>

#include "ui/kit/chrome/DrawnButton.h"

namespace orrinvale {

/// Three pictures, for rest, hover and press; each change takes fadeMilliseconds, or none at all on
/// a desktop without animations. clicked() comes from the mouse, the space bar and Enter. What is
/// dropped on it goes to the view behind it, whose business it is to call setDropTarget() while
/// something hangs over it.
class AnimationHoverImageView final : public DrawnButton<QAbstractButton> {
    Q_OBJECT
public:
    /// Long enough to be seen as one movement, short enough not to be waited for.
    static constexpr int fadeMilliseconds = 150;

    explicit AnimationHoverImageView(QWidget* parent = nullptr);

    /// Pictures of the program's collection; the size is that of the first.
    void setImages(const QString& normal, const QString& hover, const QString& pressed);
    void setImages(const QIcon& normal, const QIcon& hover, const QIcon& pressed);

    /// The look of "let go here".
    void setDropTarget(bool isDropTarget);
    [[nodiscard]] bool isDropTarget() const { return m_isDropTarget; }

    /// 0 where the old picture is seen, 1 where the new one is; in between while it fades.
    [[nodiscard]] double fadeProgress() const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

private:
    [[nodiscard]] ButtonLook dueLook() const;
    [[nodiscard]] QPixmap pixmapFor(ButtonLook look) const;
    [[nodiscard]] QPixmap shownPixmap() const;
    void followLook();

    QIcon m_normal;
    QIcon m_hover;
    QIcon m_pressed;
    bool m_isDropTarget = false;
    ButtonLook m_look = ButtonLook::Normal;
    QPixmap m_before;  // what was seen when the fade began; null at rest
    QVariantAnimation m_fade;
};

}  // namespace orrinvale
