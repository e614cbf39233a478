// TCImageButton: a push button that is a picture: the padlock, back, reveal.
#pragma once

#include <QIcon>
#include <QString>

#include "ui/kit/chrome/DrawnButton.h"

namespace orrinvale {

/// One picture for each look of a button. Only the first is needed: a missing hover or pressed
/// picture is the normal one with a tint behind it, a missing disabled one is the normal one made
/// faint.
struct ButtonPictures {
    QIcon normal;
    QIcon hover;
    QIcon pressed;
    QIcon disabled;

    /// The picture of that name with its companions "_hover", "_press" and "_disable", as far as
    /// they exist.
    [[nodiscard]] static ButtonPictures named(const QString& name);

    [[nodiscard]] const QIcon& forLook(ButtonLook look) const;
};

/// Draws its picture in the middle, at iconSize(). Space and Enter click it. When it is checkable
/// it may have a second set of pictures for its state on. The accessible name is, until one is set,
/// the tool tip, since there is no text to read.
class TCImageButton : public DrawnButton<QAbstractButton> {
    Q_OBJECT
public:
    explicit TCImageButton(QWidget* parent = nullptr);

    /// The pictures and the size that the normal one was drawn for.
    void setImage(const QString& name);
    void setAlternateImage(const QString& name);
    /// Pictures that are not in the program's own collection; iconSize() stays.
    void setPictures(ButtonPictures pictures);
    /// Shown while the button is on. Without them the button shows its state by a tint.
    void setAlternatePictures(ButtonPictures pictures);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

private:
    [[nodiscard]] const ButtonPictures& pictures() const;

    ButtonPictures m_pictures;
    ButtonPictures m_alternatePictures;
    QString m_nameFromToolTip;  // the accessible name that this class has set
};

}  // namespace orrinvale
