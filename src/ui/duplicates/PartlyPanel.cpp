// The sentence of a row is told in two lines; a screen reader gets it whole.
#include "ui/duplicates/PartlyPanel.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QVBoxLayout>
#include <type_traits>
#include <utility>

#include "engine/text/UtilityFunction.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/lists/FlatHeader.h"
#include "ui/kit/lists/FlatModel.h"
#include "ui/kit/lists/TickOutline.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/accessibleRole.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr int partlyPanelWidth = 640, partlyListHeight = 240;
constexpr int percentWidth = 84, filesWidth = 64, sharedWidth = 86;

static_assert(std::is_nothrow_destructible_v<TickColumn<PartlyEqual>>);  // see TickModel.h

QString shownFolderPath(const std::string& path) { return onOneLine(QString::fromStdString(path)); }

QString percentOf(const PartlyEqual& pair) { return shownPercent(QString::number(pair.percent())); }

QString partText(const PartlyEqual& pair) {
    return PartlyPanel::tr("%1 of it is also in %2")
        .arg(percentOf(pair), shownFolderPath(pair.other));
}

std::vector<TickColumn<PartlyEqual>> partlyColumns() {
    return {
        {.title = PartlyPanel::tr("Folder"),
         .look = CellLook::TwoLines,
         .text = [](const PartlyEqual& pair) { return shownFolderPath(pair.folder); },
         .second = partText,
         .icon = [](const PartlyEqual&) { return picture(QStringLiteral("folder")); }},
        {.title = PartlyPanel::tr("Shared"),
         .look = CellLook::Figure,
         .width = percentWidth,
         .text = percentOf,
         .share = [](const PartlyEqual& pair) { return pair.percent() / 100.0; }},
        {.title = PartlyPanel::tr("Files"),
         .look = CellLook::Figure,
         .width = filesWidth,
         .text =
             [](const PartlyEqual& pair) { return QLocale().toString(qulonglong(pair.files)); }},
        {.title = PartlyPanel::tr("Size"),
         .look = CellLook::Figure,
         .width = sharedWidth,
         .text = [](const PartlyEqual& pair) {
             return shownSize(UtilityFunction::convertVolSpace(pair.shared));
         }}};
}

}  // namespace

class PartlyPanel::Model final : public FlatModel<PartlyEqual> {
public:
    explicit Model(QObject* parent) : FlatModel(partlyColumns(), parent) {}

protected:
    [[nodiscard]] QString toolTipOf(const PartlyEqual& pair) const override {
        return shownFolderPath(pair.folder) + u'\n' + descriptionOf(pair);
    }
    [[nodiscard]] QString descriptionOf(const PartlyEqual& pair) const override {
        return partText(pair);
    }
};

PartlyPanel::PartlyPanel(std::vector<PartlyEqual> pairs, QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("partlyPanel"));
    setAccessibleName(tr("Partly equal folders"));
    setAccessibleTraits(*this, {.role = QAccessible::Dialog, .isModal = true});
    auto* const title = makeLabel("partlyTitle", Theme::Text::Heading);
    title->setText(tr("Folders that are for the most part in another one"));
    title->setAlignment(Qt::AlignLeading);
    auto* const hint = makeLabel("partlyHint", Theme::Text::Caption, QPalette::PlaceholderText);
    hint->setText(
        tr("Counted are files with equal contents, under whatever name and wherever in "
           "the other folder they lie. Nothing is ticked by this list."));
    hint->setWordWrap(true);
    hint->setAlignment(Qt::AlignLeading);
    list = named(new TickOutline(new FlatHeader, this), "partlyList", tr("Partly equal folders"));
    list->setRootIsDecorated(false);
    list->setIndentation(0);
    list->setMinimumHeight(partlyListHeight);
    m_model = new Model(list);
    m_model->setRows(std::move(pairs));
    list->setModel(m_model);
    list->setCurrentIndex(m_model->index(0, 0));
    showButton = named(new TextImageButton(tr("Show Both Folders")), "partlyShow");
    closeButton = named(new TextImageButton(tr("Close")), "partlyClose");
    searchButton =
        named(new TextImageButton(tr("Search These Two"), TextImageButton::Role::Primary),
              "partlySearch");
    searchButton->setToolTip(tr("A new search in these two folders alone"));

    auto* const buttons = new QHBoxLayout;
    buttons->setSpacing(Theme::gapSmall);
    buttons->addWidget(showButton);
    buttons->addStretch();
    buttons->addWidget(closeButton);
    buttons->addWidget(searchButton);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(Theme::gapHuge, Theme::gapHuge, Theme::gapHuge, Theme::gapLarge);
    column->setSpacing(Theme::gap);
    column->addWidget(title);
    column->addWidget(hint);
    column->addWidget(list, 1);
    column->addLayout(buttons);
}

QSize PartlyPanel::sizeHint() const { return {partlyPanelWidth, layout()->sizeHint().height()}; }

const PartlyEqual& PartlyPanel::chosen() const {
    const PartlyEqual* const row = m_model->row(list->currentIndex());
    return row != nullptr ? *row : m_model->rows().front();
}

}  // namespace orrinvale
