// ResultOutline: see ResultOutline.h.
#include "ui/duplicates/ResultOutline.h"

#include <QDateTime>
#include <QHeaderView>
#include <QLocale>
#include <algorithm>

#include "ui/duplicates/DuplicateResultModel.h"
#include "ui/duplicates/ResultRowDelegate.h"
#include "ui/kit/controls/FlatHeader.h"
#include "ui/kit/controls/TickBox.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

constexpr int countColumnWidth = 64;
constexpr int sizeColumnWidth = 86;

// As wide as a date in the language of the desktop.
int dateColumnWidth() {
    const QDateTime wide(QDate(2028, 12, 28), QTime(20, 58));
    QString text = QLocale().toString(wide, QLocale::ShortFormat);
    // Digits differ in width; the date that is shown may have the widest throughout.
    const QFontMetrics metrics(Theme::shared().font(Theme::Text::Body));
    const auto narrower = [&](QChar a, QChar b) {
        return metrics.horizontalAdvance(a) < metrics.horizontalAdvance(b);
    };
    const QString digits = QStringLiteral("0123456789");
    const QChar widest = *std::max_element(digits.begin(), digits.end(), narrower);
    for (QChar& letter : text)
        if (letter.isDigit()) letter = widest;
    return metrics.horizontalAdvance(text) + 2 * FlatHeader::textMargin + 1;
}

}  // namespace

ResultOutline::ResultOutline(QWidget* parent)
    : TickOutline({DuplicateResultModel::Checkbox, DuplicateResultModel::StateRole}, new FlatHeader,
                  parent) {
    setObjectName(QStringLiteral("outline"));
    setAccessibleName(tr("Groups of duplicates"));
    setItemDelegate(new ResultRowDelegate(this));
    headerBox()->setObjectName(QStringLiteral("button"));
    headerBox()->setAccessibleName(tr("Select all but one of each group"));
    header()->setSectionsClickable(true);
}

void ResultOutline::setModel(QAbstractItemModel* model) {
    TickOutline::setModel(model);
    using Model = DuplicateResultModel;
    setTreePosition(Model::NameColumn);
    QHeaderView& columns = *header();
    columns.setSectionResizeMode(Model::Checkbox, QHeaderView::Fixed);
    columns.setSectionResizeMode(Model::NameColumn, QHeaderView::Stretch);
    columns.resizeSection(Model::Checkbox, boxColumnWidth);
    columns.resizeSection(Model::AllSelectNum, countColumnWidth);
    columns.resizeSection(Model::FileSize, sizeColumnWidth);
    columns.resizeSection(Model::ModifyDate, dateColumnWidth());
    placeHeaderBox();
}

}  // namespace orrinvale
