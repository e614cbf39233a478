// CleanViews: the two views of the cleaning page with their controls, and nothing of what they do.
// MainViewController.h is what they do.
#pragma once

#include <QCoreApplication>
#include <QPointer>
#include <array>

#include "ui/cleaning/CustomTableView.h"
#include "ui/cleaning/FigureLabel.h"
#include "ui/cleaning/V3MainListView.h"
#include "ui/page/ResultFrame.h"

class QLineEdit;
class QVBoxLayout;

namespace orrinvale {

class DiskRing;
class ElidedLabel;
class NotificationCenter;
class Padlock;
class QnProgressView;
class ScanListView;
class TCImageButton;
class TextImageButton;

/// Each control has an object name equal to its field's. The views that nobody has put into a
/// window are deleted with this. Main thread only.
class CleanViews final : public ResultFrame {
    Q_DECLARE_TR_FUNCTIONS(CleanViews)

public:
    explicit CleanViews(NotificationCenter& notifications);
    ~CleanViews();

    using ResultFrame::bottom;

    QPointer<QWidget> startView;

    // The start.
    DiskRing* diskRing = nullptr;
    QLabel* startHeading = nullptr;
    FigureLabel* startNote = nullptr;
    TextImageButton* startButton = nullptr;
    HoverButton* forwardButton = nullptr;  ///< to what was found; hidden before

    // The result view, row by row.
    CustomTableView* customTableView = nullptr;
    QWidget* noteBar = nullptr;
    FigureLabel* noteTextField = nullptr;
    QnProgressView* totalProgress = nullptr;
    QLineEdit* filterField = nullptr;
    HoverButton* outlineButton = nullptr;  ///< from the overview to the outline
    TCImageButton* rescanButton = nullptr;
    Padlock* lockButton = nullptr;
    QWidget* v3MainView = nullptr;
    QVBoxLayout* myMacPlace = nullptr;  ///< at the top of the overview
    std::array<V3MainListView*, 6> allNewViewArr{};
    std::array<ScanListView*, 6> lists{};
    QWidget* diskSizePlace = nullptr;  ///< filled by the page
    QWidget* emptyView = nullptr;
    QLabel* emptyLabel = nullptr;

    // Below.
    FigureLabel* stateTextField = nullptr;
    ElidedLabel* gainLabel = nullptr;
    HoverButton* gainReason = nullptr;  ///< why that is less than was promised
    ElidedLabel* keptReason = nullptr;  ///< behind the quiet line, as far as there is room
    TextImageButton* stopButton = nullptr;
    TextImageButton* cleanButton = nullptr;
    TextImageButton* oneListCleanButton = nullptr;

private:
    void makeStartView();
    [[nodiscard]] QLayout* makeResultLine();
    [[nodiscard]] QWidget* makeNoteBar();
    void fillHead(NotificationCenter& notifications);
    void fillContent(NotificationCenter& notifications);
    void fillBottom();
};

}  // namespace orrinvale
