// ListFileViews: the two views of the large file page with their controls, and nothing of what they
// do. ListFileViewController.h is what they do.
#pragma once

#include <QCoreApplication>
#include <QPointer>
#include <QWidget>

#include "ui/page/ResultFrame.h"

class QLabel;

namespace orrinvale {

class AnimationHoverImageView;
class DragView;
class ElidedLabel;
class HoverButton;
class LargestFilesView;
class NewOutlineView;
class PreviewHost;
class PreviewPane;
class QnProgressView;
class SegmentedControl;
class TCImageButton;
class TextImageButton;
class TickBox;

/// Each control has an object name equal to its field's. A view that nobody has put into a window
/// is deleted with this. Main thread only.
class ListFileViews final : public ResultFrame {
    Q_DECLARE_TR_FUNCTIONS(ListFileViews)

public:
    ListFileViews();
    ~ListFileViews();

    /// The bar of a scan and its percent, at 0. Does nothing when it is there.
    void showProgress();
    void removeProgress();

    QPointer<QWidget> aLoadView;
    QWidget* const listView;  ///< the result view

    // The start page.
    DragView* dragView = nullptr;
    AnimationHoverImageView* animationHoverImageView = nullptr;
    TextImageButton* selectFileButton = nullptr;

    // The result page.
    TCImageButton* previewBtn = nullptr;  ///< shows and hides the pane beside the list
    NewOutlineView* outlineView = nullptr;
    PreviewPane* previewPane = nullptr;
    PreviewHost* previewHost = nullptr;
    TickBox* selectAllButton = nullptr;
    SegmentedControl* viewSwitch = nullptr;  ///< 0 the tree, 1 the list of files
    LargestFilesView* filesView = nullptr;
    QLabel* tickedLabel = nullptr;  ///< how much is ticked, of how much
    QWidget* emptyView = nullptr;
    QLabel* emptyLabel = nullptr;
    QnProgressView* progressView = nullptr;  ///< null unless a scan runs
    QLabel* progressLabel = nullptr;
    TextImageButton* stopScanButton = nullptr;
    TextImageButton* deleteButton = nullptr;

private:
    void makeStartPage();
    void makeSwitch();
    void fillContent();
    void fillBottom();
};

}  // namespace orrinvale
