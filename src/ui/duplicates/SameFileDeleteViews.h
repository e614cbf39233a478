// SameFileDeleteViews: the three views of the duplicate page with their controls, and nothing of
// what they do. SameFileDeleteViewController.h is what they do.
#pragma once

#include <QCoreApplication>
#include <QPointer>
#include <array>

#include "ui/duplicates/DuplicationLeftCell.h"

class QLabel;
class QStackedWidget;
class QWidget;

namespace orrinvale {

class Animation;
class AnimationHoverImageView;
class DragView;
class ElidedLabel;
class HoverButton;
class NotificationCenter;
class PictureView;
class ResultOutline;
class TCImageButton;
class TextImageButton;
class TickBox;

/// What a person reads on a row of the list of types.
[[nodiscard]] QString resultRowTitle(std::size_t row);

/// Each control has an object name equal to its field's. The views that nobody has put into a
/// window are deleted with this. Main thread only.
class SameFileDeleteViews final {
    Q_DECLARE_TR_FUNCTIONS(SameFileDeleteViews)

public:
    explicit SameFileDeleteViews(const NotificationCenter& notifications);
    ~SameFileDeleteViews();
    SameFileDeleteViews(const SameFileDeleteViews&) = delete;
    SameFileDeleteViews& operator=(const SameFileDeleteViews&) = delete;

    /// Puts the view of the entry in hand where a search shows it, or over the list, where a
    /// removal does.
    void showLoadPathInProgress();
    void showLoadPathInDetail();

    QPointer<QWidget> fristView;
    QPointer<QWidget> progressageView;
    QPointer<QWidget> detailView;

    // The first view.
    DragView* dragView = nullptr;
    AnimationHoverImageView* animationHoverImageView = nullptr;
    TextImageButton* pathChoseBtn = nullptr;
    TextImageButton* searchBtn = nullptr;
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
    DragView* resultDragView = nullptr;  ///< holds all of it
    ElidedLabel* onlyOneNote = nullptr;  ///< what onlyOneLabel said during the search
    QWidget* leftView = nullptr;
    std::array<DuplicationLeftCell*, 7> leftCells{};
    TCImageButton* backButton = nullptr;
    PictureView* rightImageView = nullptr;
    ElidedLabel* titleLabel = nullptr;
    QWidget* btnBgView = nullptr;
    TCImageButton* openBtn = nullptr;
    TCImageButton* RevealFinder = nullptr;
    TCImageButton* lockButton = nullptr;
    QStackedWidget* content = nullptr;  ///< the list, or what stands in its place
    ResultOutline* outline = nullptr;
    TickBox* button = nullptr;  ///< the header box
    QWidget* emptyView = nullptr;
    QLabel* emptyLabel = nullptr;
    TextImageButton* otherFolderBtn = nullptr;
    QWidget* removalView = nullptr;
    QWidget* bottomBgView = nullptr;
    HoverButton* quietLine = nullptr;
    QLabel* removedLine = nullptr;  ///< what the last removal took
    HoverButton* failureLine = nullptr;
    QLabel* gainLabel =
        nullptr;  ///< what the removal of the ticked copies gives back; hidden while there are none
    PictureView* trashBtn = nullptr;
    TextImageButton* stopRemoveBtn = nullptr;
    TextImageButton* stopBtn = nullptr;

private:
    void makeFirstView();
    void makeProgressView(const NotificationCenter& notifications);
    void makeLoadPathView();
    void makeDetailView(const NotificationCenter& notifications);
    [[nodiscard]] QWidget* makeLeftView(const NotificationCenter& notifications);
    [[nodiscard]] QWidget* makeTopBar();
    [[nodiscard]] QWidget* makeContent();
    [[nodiscard]] QWidget* makeBottomBar();
};

}  // namespace orrinvale
