// ListFileViews: the two views of the large file page with their controls, and nothing of what they
// do. ListFileViewController.h is what they do.
#pragma once

#include <QCoreApplication>
#include <QPointer>
#include <QWidget>

class QHBoxLayout;
class QLabel;
class QStackedWidget;

namespace orrinvale {

class AnimationHoverImageView;
class DragView;
class ElidedLabel;
class HoverButton;
class NewOutlineView;
class QnProgressView;
class TCImageButton;
class TextImageButton;
class TickBox;

/// Each control has an object name equal to its field's. A view that nobody has put into a window
/// is deleted with this. Main thread only.
class ListFileViews final {
    Q_DECLARE_TR_FUNCTIONS(ListFileViews)

public:
    ListFileViews();
    ~ListFileViews();
    ListFileViews(const ListFileViews&) = delete;
    ListFileViews& operator=(const ListFileViews&) = delete;

    /// The bar of a scan and its percent, at 0. Does nothing when it is there.
    void showProgress();
    void removeProgress();

    QPointer<QWidget> aLoadView;
    QPointer<QWidget> listView;

    // The start page.
    DragView* dragView = nullptr;
    AnimationHoverImageView* animationHoverImageView = nullptr;
    TextImageButton* selectFileButton = nullptr;

    // The result page.
    DragView* resultDragView = nullptr;  ///< holds all of it
    ElidedLabel* onlyOneNote =
        nullptr;  ///< of several folders one is shown; hidden where there was one
    TCImageButton* backHomeButton = nullptr;
    ElidedLabel* titleLabel = nullptr;
    QStackedWidget* content = nullptr;  ///< the list, or what stands in its place
    NewOutlineView* outlineView = nullptr;
    TickBox* selectAllButton = nullptr;
    QWidget* emptyView = nullptr;
    QLabel* emptyLabel = nullptr;
    HoverButton* quietLine = nullptr;
    QLabel* removedLabel = nullptr;
    HoverButton* failureLine = nullptr;
    QnProgressView* progressView = nullptr;  ///< null unless a scan runs
    QLabel* progressLabel = nullptr;
    TextImageButton* stopScanButton = nullptr;
    TextImageButton* deleteButton = nullptr;

private:
    void makeStartPage();
    void makeResultPage();
    [[nodiscard]] QWidget* makeTopBar();
    [[nodiscard]] QWidget* makeContent();
    [[nodiscard]] QWidget* makeBottomBar();

    QHBoxLayout* m_bottom = nullptr;
};

}  // namespace orrinvale
