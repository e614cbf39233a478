// FolderStart: the first view of a page that scans a folder: a place to drop one, the large picture
// to press, a few words.
#pragma once

#include <QString>

class QVBoxLayout;
class QWidget;

namespace orrinvale {

class AnimationHoverImageView;
class DragView;
class TextImageButton;

struct FolderStartTexts {
    const char* viewName;    ///< object name of the view
    const char* buttonName;  ///< object name of the button
    QString dropName;        ///< for screen readers: the place to drop
    QString pictureName;     ///< for screen readers: the picture to press
    QString heading;
    QString hint;
};

/// The view is the caller's; the rest are its children, under the names of their fields but for the
/// button.
struct FolderStart {
    QWidget* view = nullptr;
    DragView* dragView = nullptr;
    AnimationHoverImageView* animationHoverImageView = nullptr;
    TextImageButton* button = nullptr;
    QVBoxLayout* column =
        nullptr;  ///< what else the page has goes to its end, below the free space
};

/// Main thread only.
[[nodiscard]] FolderStart makeFolderStart(const FolderStartTexts& texts);

}  // namespace orrinvale
