// CleanMemoryViews: the widgets of the page "Memory", without what they do.
// CleanMemoryController.h drives them.
#pragma once

#include <QCoreApplication>
#include <QPointer>
#include <QWidget>

class QGridLayout;
class QLabel;

namespace orrinvale {

class ElidedLabel;
class PictureView;
class PieChartView;
class ProgramList;
class TextImageButton;

/// The object names are those of the fields. A view that nobody has put into a window is deleted
/// with it. Main thread only.
class CleanMemoryViews final {
    Q_DECLARE_TR_FUNCTIONS(CleanMemoryViews)

public:
    static constexpr int programRows = 10;

    CleanMemoryViews();
    ~CleanMemoryViews();
    CleanMemoryViews(const CleanMemoryViews&) = delete;
    CleanMemoryViews& operator=(const CleanMemoryViews&) = delete;

    /// A figure, and what screen readers hear of it.
    static void showFigure(QLabel& field, const QString& figure);
    /// The text, in amber where it warns.
    void showTitle(const QString& text, bool warns) const;

    QPointer<QWidget> customView;
    QWidget* topView = nullptr;
    PictureView* topImageView = nullptr;
    ElidedLabel* titleLabel = nullptr;
    QWidget* bodyView = nullptr;
    PieChartView* chartView = nullptr;
    PictureView *freeColor = nullptr, *activeColor = nullptr;
    PictureView *inactiveColor = nullptr, *wiredColor = nullptr;
    QLabel *freeMemTF = nullptr, *activeMemTF = nullptr, *inactiveMemTF = nullptr;
    QLabel *wiredMemTF = nullptr, *usedMemTF = nullptr, *totalMemTF = nullptr;
    QLabel* stateLine = nullptr;  ///< swap and pressure
    ProgramList* programList = nullptr;
    QWidget* bottomView = nullptr;
    QLabel* LastCleanText = nullptr;
    QLabel* noteTipText = nullptr;
    QLabel* noteCleaning = nullptr;
    TextImageButton* clearMemBtn = nullptr;

private:
    void makeTop();
    void makeBody();
    void makeBottom();
    [[nodiscard]] QWidget* makeMemory();
    [[nodiscard]] QWidget* makePrograms();
    void makeFigures(QGridLayout& grid);
    static void colourLastClean(QLabel& line);
};

}  // namespace orrinvale
