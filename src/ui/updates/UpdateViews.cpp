// Each view is a picture or a turning arc beside a sentence, and one button below.
#include "ui/updates/UpdateViews.h"

#include <QApplication>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QTextLayout>
#include <QVBoxLayout>
#include <cmath>

#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/chrome/TitleBarView.h"
#include "ui/kit/chrome/ToplineView.h"
#include "ui/kit/chrome/WindowButton.h"
#include "ui/kit/controls/Panel.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/controls/Spinner.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/controls/viewParts.h"

namespace orrinvale {
namespace {

constexpr int listWidth = static_cast<int>(UpdateListPlaces::listWidth);
constexpr int listSight = 200;  // of a long list
constexpr int updateWindowWidth = listWidth + 2 * Theme::gapHuge;
constexpr int updatePictureSide = 40;
constexpr int measuredFont = 10;  // points

struct UpdateTexts {
    Q_DECLARE_TR_FUNCTIONS(QnCheckUpdateWindowController)
};

QLabel* wrappedLabel(const char* name, Theme::Text text, const QString& words,
                     QPalette::ColorRole role = QPalette::WindowText) {
    QLabel* const label = makeLabel(name, text, role);
    label->setAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    label->setWordWrap(true);
    label->setText(words);
    return label;
}

// A row breaks at words alone: marks within long ones let it break these too.
QString withBreaks(const QString& text) {
    constexpr int longest = 24;
    constexpr QChar mayBreak(0x200b);
    QString broken;
    int length = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        length = text[i].isSpace() ? 0 : length + 1;
        if (length > longest && !text[i].isLowSurrogate() && !text[i].isMark()) {
            broken += mayBreak;
            length = 1;
        }
        broken += text[i];
    }
    return broken;
}

QLabel* makeTitleBar(TCImageWindow& window) {
    new ToplineView(window.titleBarView());
    auto* const bar = new QHBoxLayout(window.titleBarView());
    bar->setContentsMargins({});
    auto* const title = makeLabel("titleLabel", Theme::Text::Body, QPalette::PlaceholderText);
    title->setText(QStringLiteral("Orrinvale"));
    bar->addWidget(title);
    for (const int number : {1, 2}) window.standardWindowButton(number)->setEnabled(false);
    return title;
}

// A column of its own, so that further lines can stand between head and button.
struct View {
    QWidget* view;
    QVBoxLayout* column;
};

View makeView(const char* name, QWidget* picture, QLabel* title, QLabel* text) {
    auto* const view = named(new QWidget, name);
    auto* const words = new QVBoxLayout;
    words->setSpacing(Theme::gapTiny);
    words->addWidget(title);
    if (text != nullptr) words->addWidget(text);
    auto* const head = new QHBoxLayout;
    head->setSpacing(Theme::gapLarge);
    head->addWidget(picture, 0, Qt::AlignTop);
    head->addLayout(words, 1);
    auto* const column = new QVBoxLayout(view);
    column->setContentsMargins(Theme::gapHuge, Theme::gapHuge, Theme::gapHuge, Theme::gapLarge);
    column->setSpacing(Theme::gapLarge);
    column->addLayout(head);
    view->hide();
    return {view, column};
}

void addButton(const View& view, TextImageButton* button) {
    auto* const bottom = new QHBoxLayout;
    bottom->addStretch();
    bottom->addWidget(button);
    view.column->addLayout(bottom);
}

void addCloseButton(const View& view, const char* name, const QString& words,
                    const std::function<void()>& close) {
    auto* const button = named(new TextImageButton(words), name);
    QObject::connect(button, &QAbstractButton::clicked, button, close);
    addButton(view, button);
}

// In a place of the pictures' size, so that the words of all views begin alike.
QWidget* placeFor(Spinner* spinner) {
    auto* const place = new QWidget;
    place->setFixedSize(updatePictureSide, updatePictureSide);
    spinner->setParent(place);
    spinner->setGeometry((updatePictureSide - Spinner::side) / 2,
                         (updatePictureSide - Spinner::side) / 2, Spinner::side, Spinner::side);
    return place;
}

QWidget* hairline() {
    auto* const line = new Panel(Theme::Color::Line);
    line->setFixedHeight(1);
    return line;
}

PictureView* pictureOf(const char* name) {
    return new PictureView(QLatin1String(name), {updatePictureSide, updatePictureSide});
}

void makeQuietViews(UpdateViews& views, const std::function<void()>& close) {
    views.progressBar = named(new Spinner, "progressBar");
    const View checking = makeView("checkProgressView", placeFor(views.progressBar),
                                   wrappedLabel("checkingTitle", Theme::Text::Heading,
                                                UpdateTexts::tr("Looking for a newer version…")),
                                   nullptr);
    addCloseButton(checking, "stopChecking", UpdateTexts::tr("Stop"), close);
    views.checkProgressView = checking.view;

    const View noNetwork = makeView(
        "noNetworkView", pictureOf("warning"),
        wrappedLabel("noNetworkTitle", Theme::Text::Heading,
                     UpdateTexts::tr("The web site of Orrinvale could not be reached.")),
        wrappedLabel("noNetworkText", Theme::Text::Body,
                     UpdateTexts::tr("Look whether this computer is online, and try again."),
                     QPalette::PlaceholderText));
    addCloseButton(noNetwork, "closeNoNetwork", UpdateTexts::tr("Close"), close);
    views.noNetworkView = noNetwork.view;

    views.noUpdateTitle = wrappedLabel("noUpdateTitle", Theme::Text::Heading, {});
    views.noUpdateText =
        wrappedLabel("noUpdateText", Theme::Text::Body, {}, QPalette::PlaceholderText);
    const View noUpdate =
        makeView("noUpdateView", pictureOf("appicon"), views.noUpdateTitle, views.noUpdateText);
    addCloseButton(noUpdate, "closeNoUpdate", UpdateTexts::tr("Close"), close);
    views.noUpdateView = noUpdate.view;
}

void makeNewView(UpdateViews& views) {
    views.titleLable = wrappedLabel("titleLable", Theme::Text::Heading, {});
    const View have = makeView("haveUpdateView", pictureOf("appicon"), views.titleLable, nullptr);
    views.versionLabel = wrappedLabel("versionLabel", Theme::Text::BodyStrong, {});
    views.showVersionScrollView = named(new Panel(Theme::Color::Window), "showVersionScrollView");
    auto* const area =
        named(new QScrollArea, "changeValueScrollView", UpdateTexts::tr("What is new"));
    area->setFrameShape(QFrame::NoFrame);
    area->setFixedWidth(listWidth);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidget(views.showVersionScrollView);
    views.changeValueScrollView = area;
    views.updateClickHere = named(new TextImageButton(UpdateTexts::tr("Open the Download Page"),
                                                      TextImageButton::Role::Primary),
                                  "updateClickHere");
    auto* const list = new QVBoxLayout;
    list->setSpacing(Theme::gapSmall);
    list->addWidget(views.versionLabel);
    list->addWidget(hairline());
    list->addWidget(area);
    list->addWidget(hairline());
    have.column->addLayout(list);
    addButton(have, views.updateClickHere);
    views.haveUpdateView = have.view;
}

}  // namespace

UpdateViews makeUpdateViews(TCImageWindow& window, const std::function<void()>& close) {
    window.setObjectName(QStringLiteral("UpdateVersionXib"));
    window.setWindowTitle(QStringLiteral("Orrinvale"));
    UpdateViews views;
    views.titleLabel = makeTitleBar(window);
    makeQuietViews(views, close);
    makeNewView(views);
    auto* const content = new QWidget;
    auto* const column = new QVBoxLayout(content);
    column->setContentsMargins({});
    for (QWidget* const each :
         {views.checkProgressView, views.noNetworkView, views.noUpdateView, views.haveUpdateView})
        column->addWidget(each);
    window.setContentView(content);
    return views;
}

void fitUpdateWindow(TCImageWindow& window) {
    QLayout* const layout = window.contentView()->layout();
    layout->activate();
    const int height = layout->hasHeightForWidth() ? layout->heightForWidth(updateWindowWidth)
                                                   : layout->sizeHint().height();
    const QSize size(updateWindowWidth, height + window.titleBarHeight());
    window.setMinSize({0, 0});
    window.setMaxSize(size);
    window.setMinSize(size);
}

void fillChanges(const UpdateViews& views, const NewVersion& version) {
    QWidget& list = *views.showVersionScrollView;
    qDeleteAll(list.findChildren<QLabel*>(QString(), Qt::FindDirectChildrenOnly));
    // The toolkit's own size of text, and not the house's, which is smaller: a row that is drawn in
    // that one then always has the height that it takes.
    QFont measured = Theme::shared().font(Theme::Text::Body);
    measured.setPointSize(measuredFont);
    const auto shown = [](const std::string& text) {
        return onOneLine(QString::fromStdString(text));
    };
    const UpdateListPlaces places = placeLines(version, [&](const std::string& text) {
        return heightForStringDrawing(shown(text), measured, UpdateListPlaces::measuredWidth);
    });
    list.setFixedSize(listWidth, static_cast<int>(std::ceil(places.height)));
    for (std::size_t i = 0; i < version.lines.size(); ++i) {
        const UpdateLine& line = version.lines[i];
        auto* const row = new QLabel(&list);
        row->setTextFormat(Qt::PlainText);
        row->setFont(Theme::shared().font(Theme::Text::Body));
        row->setAlignment(Qt::AlignLeading | Qt::AlignVCenter);
        row->setWordWrap(true);
        row->setText(withBreaks(shown(textOfLine(line))));
        row->setAccessibleName(shown(textOfLine(line)));
        row->setToolTip(line.text ? asToolTip(shown(*line.text)) : QString());
        const UpdateRowPlace& place = places.rows[i];
        row->setGeometry(QRectF(0, place.top, UpdateListPlaces::rowWidth, place.height).toRect());
        row->show();
    }
    views.changeValueScrollView->setFixedHeight(std::min(listSight, list.height()));
    views.changeValueScrollView->verticalScrollBar()->setValue(0);
}

double heightForStringDrawing(const QString& text, const QFont& font, double width) {
    QTextLayout layout(text, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    double height = 0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        height += line.height();
    }
    layout.endLayout();
    return height;
}

}  // namespace orrinvale
