// HouseStyle: what Fusion draws otherwise than the rest of the windows: scroll bars, menus
// (menuLook.h), fields, choices and sliders (fieldLook.h), and the frames of lists.
#pragma once

#include <QProxyStyle>

namespace orrinvale {

/// Scroll bars are a rounded bar without arrows; where the pointer is on it, it is darker. Frames
/// are a rounded hairline. Main thread only.
class HouseStyle final : public QProxyStyle {
public:
    HouseStyle();

    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    [[nodiscard]] QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                       SubControl part, const QWidget* widget) const override;
    [[nodiscard]] QSize sizeFromContents(ContentsType type, const QStyleOption* option,
                                         const QSize& contents,
                                         const QWidget* widget) const override;
    [[nodiscard]] int pixelMetric(PixelMetric metric, const QStyleOption* option,
                                  const QWidget* widget) const override;
};

}  // namespace orrinvale
