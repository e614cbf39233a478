// SameFileDeleteViews: the three views of the duplicate page with their controls, and nothing of
// what they do. SameFileDeleteViewController.h is what they do.
#pragma once

#include <QCoreApplication>
#include <QPointer>
#include <array>

#include "ui/duplicates/DuplicationLeftCell.h"
#include "ui/page/ResultFrame.h"

class QLabel;
class QWidget;

namespace orrinvale {

class Animation;
class AnimationHoverImageView;
class DragView;
class ElidedLabel;
class HoverButton;
class LeftRail;
class NotificationCenter;
class Padlock;
class PictureView;
class PreviewHost;
class PreviewPane;
class ResultOutline;
class TCImageButton;
class TextImageButton;
class TickBox;

/// What a person reads on a row of the list of types.
[[nodiscard]] QString resultRowTitle(std::size_t row);

/// Each control has an object name equal to its field's. The views that nobody has put into a
/// window are deleted with this. Main thread only.
class SameFileDeleteViews final : public ResultFrame {
    Q_DECLARE_TR_FUNCTIONS(SameFileDeleteViews)

public:
    explicit SameFileDeleteViews(NotificationCenter& notifications);
    ~SameFileDeleteViews();
    SameFileDeleteViews& operator=(const SameFileDeleteViews&) = delete;

    /// Puts the view of the entry in hand where a search shows it, or over the list, where a
    /// removal does.
    void showLoadPathInProgress();
    void showLoadPathInDetail();

    /// Nothing is in hand any more.
    void clearLoadPath() const;

    QPointer<QWidget> fristView;
    QPointer<QWidget> progressageView;
    QWidget* const detailView;  ///< the result view

    // The first view.
    DragView* dragView = nullptr;
    AnimationHoverImageView* animationHoverImageView = nullptr;
    TextImageButton* pathChoseBtn = nullptr;
    TextImageButton* searchBtn = nullptr;
    TextImageButton* scopeBtn = nullptr;      ///< opens the sheet for several folders
    TextImageButton* firstMoreBtn = nullptr;  ///< the menu of plans and history
    HoverButton* logoButton = nullptr;

    // The progress view; loadPathView moves to the detail view during a removal.
    QWidget* loadPathView = nullptr;
    QLabel* imageView = nullptr;
    ElidedLabel* nameTextStr = nullptr;
    QLabel* countsLabel = nullptr;
    Animation* animation = nullptr;
    QLabel* progress = nullptr;
    QLabel* onlyOneLabel =
        nullptr;  ///< of several folders one is searched; hidden where there was one
    TextImageButton* stopScanBtn = nullptr;

    // The detail view.
    LeftRail* leftView = nullptr;
    std::array<DuplicationLeftCell*, 7> leftCells{};
    QWidget* btnBgView = nullptr;
    TextImageButton* keepBtn = nullptr;   ///< opens the menu of the rules that tick
    TCImageButton* previewBtn = nullptr;  ///< shows and hides the pane beside the list
    TCImageButton* openBtn = nullptr;
    TCImageButton* RevealFinder = nullptr;
    Padlock* lockButton = nullptr;
    ResultOutline* outline = nullptr;
    PreviewPane* previewPane = nullptr;
    PreviewHost* previewHost = nullptr;
    TickBox* button = nullptr;  ///< the header box
    QWidget* emptyView = nullptr;
    QLabel* emptyLabel = nullptr;
    TextImageButton* otherFolderBtn = nullptr;
    QWidget* removalView = nullptr;
    HoverButton* undoBtn = nullptr;   ///< behind removedLine, while that can be undone
    HoverButton* againBtn = nullptr;  ///< once it was
    QLabel* gainLabel =
        nullptr;  ///< what the removal of the ticked copies gives back; hidden while there are none
    HoverButton* otherWayBtn = nullptr;  ///< the menu of both ways out, plans and history
    PictureView* trashBtn = nullptr;
    TextImageButton* stopRemoveBtn = nullptr;
    TextImageButton* stopBtn = nullptr;

private:
    void makeFirstView();
    void makeProgressView(const NotificationCenter& notifications);
    void makeLoadPathView();
    [[nodiscard]] QWidget* makeLeftView(const NotificationCenter& notifications);
    void fillHead(NotificationCenter& notifications);
    void fillContent();
    void fillBottom();
};

}  // namespace orrinvale
