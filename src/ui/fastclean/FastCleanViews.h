// FastCleanViews: the controls of the small window of Fast Clean, and how they lie.
#pragma once

#include <QString>

class QLabel;
class QWidget;

namespace orrinvale {

struct Alert;
class ElidedLabel;
class PictureView;
class QnProgressView;
class TCImageWindow;
class TextImageButton;

/// The controls belong to the window.
struct FastCleanViews {
    PictureView* fastCleanImage = nullptr;
    QLabel* title = nullptr;      ///< the category
    QLabel* fixedText = nullptr;  ///< what is being done
    QnProgressView* delProgress = nullptr;
    ElidedLabel* curFileName = nullptr;
    QLabel* further = nullptr;  ///< what there is to say at the end
    TextImageButton* startBtn = nullptr;
    TextImageButton* cancelBtn = nullptr;
};

/// Gives the window its title bar, its contents and its one size.
[[nodiscard]] FastCleanViews makeFastCleanViews(TCImageWindow& window);

/// Makes the window as high as its contents want to be, or as high as a sheet with this question
/// wants.
void fitFastCleanWindow(TCImageWindow& window, const Alert* question = nullptr);

}  // namespace orrinvale
