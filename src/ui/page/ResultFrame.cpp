// ResultFrame: built in code from the controls of the kit; FolderStart.h is the view before it.
#include "ui/page/ResultFrame.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/DragView.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/Panel.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

constexpr const char* wholeWords = "wholeWords";
constexpr const char* fewWords = "fewWords";
constexpr const char* widthBefore = "widthBefore";  // least and most, of what is away

// What came of the page's work is worth more room than the note about what could not be read, which
// says the same in fewer words where not all fits, and than what is said elsewhere too.
class RoomForResult final : public QObject {
public:
    /// `elided` has what is left.
    RoomForResult(QWidget& bar, HoverButton& note, const ElidedLabel& elided)
        : QObject(&bar), m_bar(bar), m_note(note), m_elided(elided) {
        bar.installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        const bool isMoved =
            event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest;
        if (isMoved && watched == &m_bar) fit();
        return QObject::eventFilter(watched, event);
    }

private:
    // By what would stand there in full, so that it comes out the same whatever stands there now.
    void fit() {
        QWidgetList givingWay = m_bar.findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
        erase_if(givingWay, [](const QWidget* each) {
            return each->isHidden() || !each->property("givesWay").isValid();
        });
        std::sort(givingWay.begin(), givingWay.end(), [](const QWidget* one, const QWidget* other) {
            return one->property("givesWay").toInt() < other->property("givesWay").toInt();
        });
        int missing = m_bar.layout()->sizeHint().width() - m_bar.width() + missingOfNote();
        if (!m_elided.isHidden()) missing -= m_elided.sizeHint().width();
        for (const QWidget* const each : givingWay)
            if (isAway(*each)) missing += fullWidth(*each);
        missing = fitNote(missing);
        for (QWidget* const each : givingWay) {
            const bool goes = missing > 0;
            if (goes) missing -= fullWidth(*each);
            if (goes != isAway(*each)) setAway(*each, goes);
        }
    }

    [[nodiscard]] int widthOf(const char* words) const {
        return m_note.fontMetrics().horizontalAdvance(m_note.property(words).toString());
    }
    [[nodiscard]] bool isNote(const char* words) const {
        return !m_note.isHidden() && m_note.text() == m_note.property(words).toString();
    }
    [[nodiscard]] int missingOfNote() const {
        return isNote(fewWords) ? widthOf(wholeWords) - widthOf(fewWords) : 0;
    }

    int fitNote(int missing) {
        if (!isNote(wholeWords) && !isNote(fewWords)) return missing;
        const bool isWhole = missing <= 0;
        const char* const words = isWhole ? wholeWords : fewWords;
        if (!isNote(words)) {
            const QString whole = m_note.property(wholeWords).toString();
            m_note.setText(m_note.property(words).toString());
            m_note.setToolTip(isWhole ? QString() : whole);
            m_note.setAccessibleName(isWhole ? QString() : whole);
        }
        return isWhole ? missing : missing - widthOf(wholeWords) + widthOf(fewWords);
    }

    static bool isAway(const QWidget& each) { return each.property(widthBefore).isValid(); }
    static int fullWidth(const QWidget& each) {
        const int least =
            isAway(each) ? each.property(widthBefore).toSize().width() : each.minimumWidth();
        return std::max(least, each.sizeHint().width());
    }
    static void setAway(QWidget& each, bool isAway) {
        if (isAway) {
            each.setProperty(widthBefore, QSize(each.minimumWidth(), each.maximumWidth()));
            each.setFixedWidth(0);
            return;
        }
        const QSize before = each.property(widthBefore).toSize();
        each.setProperty(widthBefore, QVariant());
        each.setMinimumWidth(before.width());
        each.setMaximumWidth(before.height());
    }

    QWidget& m_bar;
    HoverButton& m_note;
    const ElidedLabel& m_elided;
};

}  // namespace

ResultFrame::ResultFrame(const ResultFrameParts& parts) {
    resultView = named(new Panel(Theme::Color::Window), parts.viewName);
    resultDragView = named(new DragView(resultView), "resultDragView", parts.dropName);
    resultDragView->setFrameAtRest(false);
    auto* const around = new QVBoxLayout(resultView);
    around->setContentsMargins({});
    around->addWidget(resultDragView);
    resultDragView->setInvitation(parts.invitation);
    makeHead(parts);
    content = named(new QStackedWidget, "content");
    makeBottom(parts);
}

void ResultFrame::putTogether(QWidget* rail, QWidget* note) {
    auto* const row = new QHBoxLayout(resultDragView);
    row->setContentsMargins({});
    row->setSpacing(0);
    if (rail != nullptr) row->addWidget(rail);
    auto* const column = new QVBoxLayout;
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(m_headBar);
    if (note != nullptr) column->addWidget(note);
    column->addWidget(content, 1);
    column->addWidget(m_bottomBar);
    row->addLayout(column, 1);
}

ResultFrame::~ResultFrame() {
    if (resultView != nullptr && resultView->parentWidget() == nullptr) delete resultView.data();
}

void ResultFrame::makeHead(const ResultFrameParts& parts) {
    m_headBar = new Panel(Theme::Color::Surface, Qt::BottomEdge);
    m_headBar->setFixedHeight(barHeight);
    backButton = makeImageButton(parts.backName, QStringLiteral("arrow_left"), parts.backTip);
    rightImageView = named(new PictureView(parts.picture, {20, 20}), "rightImageView");
    titleLabel = named(new ElidedLabel(Qt::ElideMiddle), "titleLabel");
    titleLabel->setFont(Theme::shared().font(Theme::Text::BodyStrong));
    head = new QHBoxLayout(m_headBar);
    head->setContentsMargins(Theme::gapSmall, 0, Theme::gap, 0);
    head->setSpacing(Theme::gapSmall);
    head->addWidget(backButton);
    head->addWidget(rightImageView);
    head->addWidget(titleLabel, 1);
}

void ResultFrame::makeBottom(const ResultFrameParts& parts) {
    m_bottomBar = named(new Panel(Theme::Color::Surface, Qt::TopEdge), "bottomBgView");
    m_bottomBar->setFixedHeight(barHeight);
    quietLine = named(new HoverButton, "quietLine");
    removedLine = makeLabel(parts.removedName, Theme::Text::Body, QPalette::PlaceholderText);
    failureLine = named(new HoverButton, "failureLine");
    onlyOneNote = named(new ElidedLabel(Qt::ElideMiddle), "onlyOneNote");
    onlyOneNote->setFont(Theme::shared().font(Theme::Text::Caption));
    onlyOneNote->setForegroundRole(QPalette::PlaceholderText);
    bottom = new QHBoxLayout(m_bottomBar);
    bottom->setContentsMargins(Theme::gap, 0, Theme::gap, 0);
    bottom->setSpacing(parts.bottomSpacing);
    for (QWidget* const line :
         {static_cast<QWidget*>(quietLine), static_cast<QWidget*>(removedLine),
          static_cast<QWidget*>(failureLine), static_cast<QWidget*>(onlyOneNote)}) {
        line->hide();
        bottom->addWidget(line, line == onlyOneNote ? 1 : 0);
    }
    bottom->addStretch();
    new RoomForResult(*m_bottomBar, *quietLine, *onlyOneNote);
}

void ResultFrame::showLine(QLabel& line, const QString& text) {
    line.setText(text);
    line.setVisible(!text.isEmpty());
}

void ResultFrame::showLine(QAbstractButton& line, const QString& text) {
    line.setText(text);
    line.setVisible(!text.isEmpty());
}

void ResultFrame::showSkipped(std::size_t count) const {
    const QString whole =
        count == 0   ? QString()
        : count == 1 ? tr("1 entry could not be read")
                     : tr("%Ln entries could not be read", nullptr, static_cast<int>(count));
    quietLine->setProperty(wholeWords, whole);
    quietLine->setProperty(fewWords, tr("%Ln not read", nullptr, static_cast<int>(count)));
    showLine(*quietLine, whole);
}

EmptyView makeEmptyView(const QString& picture, bool withOtherFolder) {
    EmptyView made;
    made.view = named(new Panel(Theme::Color::Surface), "emptyView");
    made.label = makeLabel("emptyLabel", Theme::Text::Heading);
    made.label->setWordWrap(true);
    auto* const column = new QVBoxLayout(made.view);
    column->addStretch();
    column->addWidget(new PictureView(picture), 0, Qt::AlignHCenter);
    column->addWidget(made.label);
    if (withOtherFolder) {
        made.otherFolder =
            named(new TextImageButton(ResultFrame::tr("Choose Another Folder")), "otherFolderBtn");
        made.view->setFocusProxy(made.otherFolder);
        column->addSpacing(Theme::gapSmall);
        column->addWidget(made.otherFolder, 0, Qt::AlignHCenter);
    }
    column->addStretch();
    return made;
}

}  // namespace orrinvale
