// usagePictures: how full a disk is, as the numbered pictures show it. picture() reaches them by
// the names that SpaceLevel.h (engine/volumes) puts together.
#pragma once

#include "ui/kit/look/Theme.h"

class QPainter;
class QRectF;

namespace orrinvale {

enum class UsageForm {
    Disc,  ///< a disc that fills, for the panel of the desktop, which is light or dark whatever our
           ///< scheme is: it looks the same in both
    Bar    ///< a bar as wide as the rectangle, with round ends
};

/// A per cent runs from 0 to 100. A disc that warns is amber and bears a mark, for eyes that see no
/// colour; a bar that warns is red. The painter's state is the caller's to keep.
void drawUsage(QPainter& painter, const QRectF& rectangle, UsageForm form, int percent, bool warns,
               Theme::Scheme scheme);

}  // namespace orrinvale
