// ResultFrame: the view in which every page shows what it has found: a bar that says what this is,
// the list or what stands in its place, a bar with what is told quietly and with the buttons.
#pragma once

#include <QCoreApplication>
#include <QPointer>
#include <QString>
#include <QWidget>
#include <cstddef>

class QAbstractButton;
class QHBoxLayout;
class QLabel;
class QStackedWidget;

namespace orrinvale {

class DragView;
class ElidedLabel;
class HoverButton;
class PictureView;
class TCImageButton;
class TextImageButton;

/// The object names are those of the fields, but for those that are given here.
struct ResultFrameParts {
    const char* viewName;
    const char* backName;
    const char* removedName;  ///< of what the last removal took
    QString dropName;         ///< for screen readers: all of it takes folders
    QString invitation;       ///< shown while a folder is held over it
    QString backTip;
    QString picture;  ///< at the beginning of the head
    int bottomSpacing;
};

/// The views of a page derive from it and fill `head`, `content` and `bottom`. A view that nobody
/// has put into a window is deleted with it. Main thread only.
class ResultFrame {
    Q_DECLARE_TR_FUNCTIONS(ResultFrame)

public:
    static constexpr int barHeight = 52;

    ResultFrame(const ResultFrame&) = delete;
    ResultFrame& operator=(const ResultFrame&) = delete;

    /// A button shows its text, or is not there where the text is empty; a label alike.
    static void showLine(QLabel& line, const QString& text);
    static void showLine(QAbstractButton& line, const QString& text);
    /// How many entries a scan could not read, on the quiet line.
    void showSkipped(std::size_t count) const;

    QPointer<QWidget> resultView;
    DragView* resultDragView = nullptr;  ///< holds all of it
    TCImageButton* backButton = nullptr;
    PictureView* rightImageView = nullptr;
    ElidedLabel* titleLabel = nullptr;
    QStackedWidget* content = nullptr;  ///< the list, or what stands in its place
    HoverButton* quietLine = nullptr;
    QLabel* removedLine = nullptr;
    HoverButton* failureLine = nullptr;
    ElidedLabel* onlyOneNote = nullptr;  ///< of several folders one is worked on

protected:
    explicit ResultFrame(const ResultFrameParts& parts);
    ~ResultFrame();

    /// Once all three are filled, so that the Tab key goes from the top to the bottom. `rail` comes
    /// to the left of them, for pages with parts to choose from; `note` below the head.
    void putTogether(QWidget* rail = nullptr, QWidget* note = nullptr);

    QHBoxLayout* head = nullptr;    ///< further buttons go to its end
    QHBoxLayout* bottom = nullptr;  ///< what acts goes to its end, behind the free space

private:
    void makeHead(const ResultFrameParts& parts);
    void makeBottom(const ResultFrameParts& parts);

    QWidget* m_headBar = nullptr;
    QWidget* m_bottomBar = nullptr;
};

/// Words in the place of a list that is empty, and a way out of it.
struct EmptyView {
    QWidget* view = nullptr;                 ///< "emptyView"
    QLabel* label = nullptr;                 ///< "emptyLabel"
    TextImageButton* otherFolder = nullptr;  ///< "otherFolderBtn"; null where it was not wanted
};
[[nodiscard]] EmptyView makeEmptyView(const QString& picture, bool withOtherFolder);

}  // namespace orrinvale
