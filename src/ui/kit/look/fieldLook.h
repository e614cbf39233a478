// fieldLook: how HouseStyle draws what is typed into, chosen from and dragged: fields, choices and
// sliders.
#pragma once

class QPainter;
class QStyle;
class QStyleOption;
class QStyleOptionComboBox;
class QStyleOptionSlider;
class QWidget;

namespace orrinvale {

/// The ground and the edge of a field; the ring of keyboard focus in the place of the edge.
void drawField(QPainter& painter, const QStyleOption& field);

/// A field with a chevron at its end; the words in it are drawn elsewhere.
void drawChoice(QPainter& painter, const QStyleOptionComboBox& choice, const QStyle& style,
                const QWidget* widget);

/// A line, accented up to the handle, with its marks below.
void drawSlider(QPainter& painter, const QStyleOptionSlider& slider, const QStyle& style,
                const QWidget* widget);

}  // namespace orrinvale
