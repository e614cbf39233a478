// DiskUsageViews: the views of the disk usage page with their controls, and nothing of what they
// do. DiskUsageAppController.h is what they do.
#pragma once

#include <QCoreApplication>
#include <QPointer>
#include <QWidget>

#include "ui/page/ResultFrame.h"

class QLabel;
class QScrollArea;

namespace orrinvale {

class Animation;
class AnimationHoverImageView;
class ColumnBrowser;
class FileSystem;
class ItemFacts;
class LeftRail;
class NotificationCenter;
class Padlock;
class PageStack;
class TCImageButton;
class TreemapView;

/// Each control has an object name equal to its field's. Main thread only.
class DiskUsageViews final : public ResultFrame {
    Q_DECLARE_TR_FUNCTIONS(DiskUsageViews)

public:
    DiskUsageViews(NotificationCenter& notifications, const FileSystem& files);
    ~DiskUsageViews();

    /// In place of the rail before, which goes.
    void setRail(LeftRail* rail);

    QPointer<QWidget> page;           ///< the places on the left, beside them one of the two views
    QScrollArea* leftView = nullptr;  ///< holds the rail
    PageStack* stack = nullptr;

    // The start view.
    QWidget* diskUsageView = nullptr;
    DragView* dragView = nullptr;
    AnimationHoverImageView* animationHoverImageView = nullptr;
    TextImageButton* chooseButton = nullptr;

    // The result view.
    TCImageButton* columnsBtn = nullptr;  ///< of the three one is on
    TCImageButton* mapBtn = nullptr;
    TCImageButton* changesBtn = nullptr;
    TextImageButton* compareBtn = nullptr;
    TCImageButton* scanBtn = nullptr;
    TCImageButton* openFinderBtn = nullptr;
    TCImageButton* revealFinderBtn = nullptr;
    Padlock* lockButton = nullptr;
    QWidget* stripBar = nullptr;  ///< of what runs
    Animation* animation = nullptr;
    QLabel* stripLabel = nullptr;
    TextImageButton* stopBtn = nullptr;
    QStackedWidget* shown = nullptr;  ///< columns, map, or what stands in their place
    ColumnBrowser* browser = nullptr;
    ColumnBrowser* changes = nullptr;  ///< since an earlier scan
    ItemFacts* itemFacts = nullptr;    ///< behind the last column
    QWidget* mapView = nullptr;
    TCImageButton* mapUpBtn = nullptr;
    ElidedLabel* mapLine = nullptr;  ///< what the pointer is over, else the folder
    TreemapView* map = nullptr;
    QWidget* emptyView = nullptr;
    QLabel* emptyLabel = nullptr;
    TextImageButton* otherFolderBtn = nullptr;
    HoverButton* grownLine = nullptr;  ///< how much more there is than an earlier scan found
    QLabel* tickedLabel = nullptr;
    PictureView* trashBtn = nullptr;
    TextImageButton* removeBtn = nullptr;

private:
    void makeStart();
    void fillHead(NotificationCenter& notifications);
    void fillContent(const NotificationCenter& notifications, const FileSystem& files);
    void makeMap();
    void makeStrip(const NotificationCenter& notifications);
    void fillBottom();
};

}  // namespace orrinvale
