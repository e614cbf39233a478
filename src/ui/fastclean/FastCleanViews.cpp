// See FastCleanViews.h.
#include "ui/fastclean/FastCleanViews.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <algorithm>

#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/chrome/TitleBarView.h"
#include "ui/kit/chrome/ToplineView.h"
#include "ui/kit/chrome/WindowButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/controls/QnProgressView.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/dialogs/AlertPanel.h"

namespace orrinvale {
namespace {

constexpr int cleanWindowWidth = 440;
constexpr int sheetHeight = 224;  // at least, where a question is asked
constexpr int cleanPictureSide = 40;

struct ViewWords {
    Q_DECLARE_TR_FUNCTIONS(FastClean)
};

QLabel* leadingLabel(const char* name, Theme::Text text,
                     QPalette::ColorRole role = QPalette::WindowText) {
    QLabel* const label = makeLabel(name, text, role);
    label->setAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    return label;
}

void makeFastCleanTitle(TCImageWindow& window) {
    new ToplineView(window.titleBarView());
    auto* const bar = new QHBoxLayout(window.titleBarView());
    bar->setContentsMargins({});
    auto* const title = makeLabel("windowTitle", Theme::Text::BodyStrong);
    title->setText(window.windowTitle());
    bar->addWidget(title);
    window.standardWindowButton(2)->setEnabled(false);  // there is one size
}

QHBoxLayout* headOf(const FastCleanViews& views) {
    auto* const words = new QVBoxLayout;
    words->setSpacing(2);
    words->addWidget(views.title);
    words->addWidget(views.fixedText);
    auto* const head = new QHBoxLayout;
    head->setSpacing(Theme::gapLarge);
    head->addWidget(views.fastCleanImage);
    head->addLayout(words, 1);
    return head;
}

QHBoxLayout* bottomOf(const FastCleanViews& views) {
    auto* const bottom = new QHBoxLayout;
    bottom->setSpacing(Theme::gap);
    bottom->addWidget(views.curFileName, 1);
    bottom->addWidget(views.further, 1);
    bottom->addWidget(views.cancelBtn);
    bottom->addWidget(views.startBtn);
    bottom->addStrut(Theme::controlHeight);  // as high without a button
    return bottom;
}

// The sheet keeps as much room at its sides as below.
int heightFor(const Alert& question) {
    const AlertPanel panel(question);
    return std::max(sheetHeight, panel.heightForWidth(cleanWindowWidth - 2 * Theme::gapHuge) +
                                     2 * Theme::gapHuge);
}

}  // namespace

FastCleanViews makeFastCleanViews(TCImageWindow& window) {
    window.setObjectName(QStringLiteral("CleanSystem"));
    window.setWindowTitle(ViewWords::tr("Fast Clean"));
    makeFastCleanTitle(window);
    FastCleanViews views;
    views.fastCleanImage =
        named(new PictureView(QStringLiteral("fast_clean"), {cleanPictureSide, cleanPictureSide}),
              "fastCleanImage");
    views.title = leadingLabel("categoryTitle", Theme::Text::Heading);
    views.fixedText = leadingLabel("fixedText", Theme::Text::Body, QPalette::PlaceholderText);
    views.delProgress =
        named(new QnProgressView, "delProgress", ViewWords::tr("Progress of the cleaning"));
    views.curFileName = named(new ElidedLabel(Qt::ElideMiddle), "curFileName");
    views.curFileName->setFont(Theme::shared().font(Theme::Text::Caption));
    views.curFileName->setForegroundRole(QPalette::PlaceholderText);
    views.further = leadingLabel("furtherLines", Theme::Text::Body);
    views.further->setWordWrap(true);
    views.startBtn = named(
        new TextImageButton(ViewWords::tr("Clean"), TextImageButton::Role::Primary), "startBtn");
    views.cancelBtn = named(new TextImageButton(ViewWords::tr("Stop")), "cancelBtn");

    auto* const content = new QWidget;
    auto* const column = new QVBoxLayout(content);
    column->setContentsMargins(Theme::gapHuge, Theme::gapLarge, Theme::gapHuge, Theme::gapLarge);
    column->setSpacing(Theme::gapLarge);
    column->addLayout(headOf(views));
    column->addWidget(views.delProgress);
    column->addLayout(bottomOf(views));
    QSizePolicy keepsPlace = views.delProgress->sizePolicy();
    keepsPlace.setRetainSizeWhenHidden(true);
    views.delProgress->setSizePolicy(keepsPlace);
    window.setContentView(content);
    fitFastCleanWindow(window);
    return views;
}

void fitFastCleanWindow(TCImageWindow& window, const Alert* question) {
    QWidget& content = *window.contentView();
    content.layout()->activate();
    const int wanted = question != nullptr ? heightFor(*question)
                       : content.layout()->hasHeightForWidth()
                           ? content.layout()->heightForWidth(cleanWindowWidth)
                           : content.sizeHint().height();
    const QSize size(cleanWindowWidth, wanted + window.titleBarHeight());
    window.setMinSize({0, 0});
    window.setMaxSize(size);
    window.setMinSize(size);
}

}  // namespace orrinvale
