// From the top to the bottom: the sentence, the pie with its figures beside the programs, and the
// bar with the one button.
#include "ui/memory/CleanMemoryViews.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QScrollArea>
#include <QVBoxLayout>

#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/Panel.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/memory/PieChartView.h"
#include "ui/memory/ProgramList.h"
#include "ui/page/ResultFrame.h"

namespace orrinvale {
namespace {

constexpr QSizeF pieFrame(400, 300);

// The body's background with its faint picture in the lower corner.
class Body final : public Panel {
public:
    Body() : Panel(Theme::Color::Window) {}

protected:
    void paintEvent(QPaintEvent* event) override {
        Panel::paintEvent(event);
        const QString background = QStringLiteral("memory_bg.png");
        const QSize size = pictureSize(background);
        QPainter painter(this);
        picture(background)
            .paint(&painter, QRect(QPoint(width() - size.width(), height() - size.height()), size));
    }
};

QLabel* quiet(const char* name) {
    QLabel* const made = makeLabel(name, Theme::Text::Caption, QPalette::PlaceholderText);
    made->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    made->setWordWrap(true);
    return made;
}

}  // namespace

CleanMemoryViews::CleanMemoryViews() : customView(new Panel(Theme::Color::Window)) {
    named(customView.data(), "customView");
    makeTop();
    makeBody();
    makeBottom();
    auto* const column = new QVBoxLayout(customView);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(topView);
    column->addWidget(bodyView, 1);
    column->addWidget(bottomView);
    colourLastClean(*LastCleanText);
    // The view outlives this object where a window has it.
    QObject::connect(&Theme::shared(), &Theme::changed, LastCleanText,
                     [line = LastCleanText] { colourLastClean(*line); });
}

CleanMemoryViews::~CleanMemoryViews() {
    if (customView != nullptr && customView->parentWidget() == nullptr) delete customView.data();
}

void CleanMemoryViews::makeTop() {
    topView = named(new Panel(Theme::Color::Surface, Qt::BottomEdge), "topView");
    topView->setFixedHeight(ResultFrame::barHeight);
    topImageView = named(new PictureView(QStringLiteral("memory"), {20, 20}), "topImageView");
    titleLabel = named(new ElidedLabel, "titleLabel");
    titleLabel->setFont(Theme::shared().font(Theme::Text::BodyStrong));
    auto* const row = new QHBoxLayout(topView);
    row->setContentsMargins(Theme::gapLarge, 0, Theme::gapLarge, 0);
    row->setSpacing(Theme::gapSmall);
    row->addWidget(topImageView);
    row->addWidget(titleLabel, 1);
}

void CleanMemoryViews::makeBody() {
    bodyView = named(new Body, "bodyView");
    auto* const inside = new QWidget;
    auto* const row = new QHBoxLayout(inside);
    row->setContentsMargins(Theme::gapHuge, Theme::gapLarge, Theme::gapHuge, Theme::gapLarge);
    row->setSpacing(Theme::gapSection + Theme::gapSmall);
    row->addWidget(makeMemory());
    row->addWidget(makePrograms(), 1);
    auto* const scroll = new QScrollArea;
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidget(inside);
    scroll->viewport()->setAutoFillBackground(false);
    inside->setAutoFillBackground(false);
    auto* const all = new QVBoxLayout(bodyView);
    all->setContentsMargins({});
    all->addWidget(scroll);
}

QWidget* CleanMemoryViews::makeMemory() {
    auto* const made = new QWidget;
    auto* const column = new QVBoxLayout(made);
    column->setContentsMargins({});
    column->setSpacing(Theme::gapLarge);
    chartView = named(new PieChartView(pieFrame), "chartView",
                      tr("What the memory is used for, as a pie; the figures follow"));
    auto* const grid = new QGridLayout;
    grid->setHorizontalSpacing(Theme::gapSmall);
    grid->setVerticalSpacing(Theme::gapSmall);
    makeFigures(*grid);
    stateLine = quiet("stateLine");
    column->addWidget(chartView, 0, Qt::AlignHCenter);
    column->addLayout(grid);
    column->addWidget(stateLine);
    column->addStretch(1);
    return made;
}

// Two columns of three; the four that the pie shows have their colour.
void CleanMemoryViews::makeFigures(QGridLayout& grid) {
    int place = 0;
    const auto add = [&](QLabel*& field, const char* name, const QString& title,
                         const QString& meaning, const char* key = nullptr,
                         PictureView** colour = nullptr) {
        const int row = place % 3;
        const int column = place++ / 3 * 4;
        QLabel* const what = quiet("");
        what->setWordWrap(false);
        what->setText(title);
        what->setToolTip(meaning);
        field = named(new QLabel, name);
        field->setFont(Theme::shared().font(Theme::Text::BodyStrong));
        field->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        field->setToolTip(meaning);
        field->setProperty("title", title);
        if (colour != nullptr) {
            *colour = new PictureView(QLatin1String(key), {14, 14});
            grid.addWidget(*colour, row, column);
        }
        grid.addWidget(what, row, column + 1);
        grid.addWidget(field, row, column + 2);
    };
    add(freeMemTF, "freeMemTF", tr("Free"), tr("Nothing is in it"), "free.png", &freeColor);
    add(activeMemTF, "activeMemTF", tr("Active"), tr("What programs work on"), "active.png",
        &activeColor);
    add(inactiveMemTF, "inactiveMemTF", tr("Inactive"),
        tr("Copies of files, given up when memory is wanted"), "inactive.png", &inactiveColor);
    add(wiredMemTF, "wiredMemTF", tr("Wired"), tr("The system's own"), "wired.png", &wiredColor);
    add(usedMemTF, "usedMemTF", tr("Used"), tr("All but the free"));
    add(totalMemTF, "totalMemTF", tr("Total"), tr("What this computer has"));
    named(freeColor, "freeColor");
    named(activeColor, "activeColor");
    named(inactiveColor, "inactiveColor");
    named(wiredColor, "wiredColor");
    grid.setColumnMinimumWidth(3, Theme::gapLarge);
    grid.setColumnStretch(2, 1);
    grid.setColumnStretch(6, 1);
}

QWidget* CleanMemoryViews::makePrograms() {
    auto* const made = new QWidget;
    auto* const column = new QVBoxLayout(made);
    column->setContentsMargins({});
    column->setSpacing(Theme::gapSmall);
    QLabel* const title = makeLabel("programsTitle", Theme::Text::BodyStrong);
    title->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    title->setText(tr("Programs that hold most"));
    programList = new ProgramList(programRows);
    column->addWidget(title);
    column->addWidget(programList);
    column->addStretch(1);
    return made;
}

void CleanMemoryViews::makeBottom() {
    bottomView = named(new Panel(Theme::Color::Surface, Qt::TopEdge), "bottomView");
    bottomView->setMinimumHeight(ResultFrame::barHeight);
    LastCleanText = named(new QLabel, "LastCleanText");
    QFont bold = Theme::shared().font(Theme::Text::Caption);
    bold.setBold(true);
    LastCleanText->setFont(bold);
    LastCleanText->hide();
    noteTipText = quiet("noteTipText");
    noteCleaning = quiet("noteCleaning");
    noteCleaning->setText(tr("Freeing memory ..."));
    noteCleaning->hide();
    clearMemBtn = named(new TextImageButton(tr("clean memory"), TextImageButton::Role::Primary),
                        "clearMemBtn");
    auto* const row = new QHBoxLayout(bottomView);
    row->setContentsMargins(Theme::gapLarge, Theme::gapSmall, Theme::gapLarge, Theme::gapSmall);
    row->setSpacing(Theme::gap);
    row->addWidget(LastCleanText);
    row->addWidget(noteCleaning);
    row->addWidget(noteTipText, 1);
    row->addWidget(clearMemBtn);
}

// The light blue of the line is written for a dark ground.
void CleanMemoryViews::colourLastClean(QLabel& line) {
    QPalette palette = line.palette();
    palette.setColor(QPalette::WindowText, Theme::shared().scheme() == Theme::Scheme::Dark
                                               ? QColor::fromRgbF(0.2863F, 0.8196F, 0.9412F)
                                               : Theme::shared().color(Theme::Color::Accent));
    line.setPalette(palette);
}

void CleanMemoryViews::showFigure(QLabel& field, const QString& figure) {
    if (field.text() == figure) return;
    field.setText(figure);
    field.setAccessibleName(
        QStringLiteral("%1: %2").arg(field.property("title").toString(), figure));
}

void CleanMemoryViews::showTitle(const QString& text, bool warns) const {
    titleLabel->setText(text);
    QPalette palette = titleLabel->palette();
    palette.setColor(QPalette::WindowText,
                     Theme::shared().color(warns ? Theme::Color::Warning : Theme::Color::Text));
    titleLabel->setPalette(palette);
}

}  // namespace orrinvale
