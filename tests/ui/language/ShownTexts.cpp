// ShownTexts: see ShownTexts.h.
#include "ui/language/ShownTexts.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAction>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QMimeDatabase>
#include <QTreeView>
#include <QXmlStreamReader>
#include <algorithm>

#include "engine/text/Localized.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/lists/FlatHeader.h"
#include "ui/kit/lists/TickModel.h"
#include "ui/kit/look/Theme.h"
#include "ui/preferences/ToolbarItem.h"

namespace orrinvale::testing {
namespace {

bool hasLetter(const QString& text) {
    return std::ranges::any_of(text, [](QChar each) { return each.isLetter(); });
}

void addTo(QStringList& texts, const QString& text) {
    for (const QString& line : text.split(QLatin1Char('\n')))
        if (hasLetter(line)) texts.push_back(line.trimmed());
}

/// Calls it for the rows of a list that are open, so many of each level.
void forRows(const QAbstractItemView& view, const std::function<void(const QModelIndex&)>& each,
             const QModelIndex& above = {}) {
    constexpr int mostRows = 20;
    const QAbstractItemModel& model = *view.model();
    const auto* const tree = qobject_cast<const QTreeView*>(&view);
    for (int row = 0; row < std::min(model.rowCount(above), mostRows); ++row) {
        for (int column = 0; column < model.columnCount(above); ++column)
            each(model.index(row, column, above));
        const QModelIndex first = model.index(row, 0, above);
        if (tree != nullptr && tree->isExpanded(first)) forRows(view, each, first);
    }
}

void addTextsOf(const QWidget& widget, QStringList& texts) {
    for (const char* const property : {"text", "plainText", "title", "windowTitle", "toolTip",
                                       "accessibleName", "accessibleDescription"})
        addTo(texts, widget.property(property).toString());
    for (const QAction* const action : widget.actions()) addTo(texts, action->text());
    if (const auto* const header = qobject_cast<const QHeaderView*>(&widget);
        header && header->model())
        for (int column = 0; column < header->count(); ++column)
            addTo(texts, header->model()->headerData(column, Qt::Horizontal).toString());
    if (const auto* const list = qobject_cast<const QAbstractItemView*>(&widget);
        list && list->model() && qobject_cast<const QHeaderView*>(&widget) == nullptr)
        forRows(*list, [&](const QModelIndex& cell) {
            for (const int role :
                 {int(Qt::DisplayRole), int(TickModel::SecondRole), int(Qt::ToolTipRole),
                  int(Qt::AccessibleTextRole), int(Qt::AccessibleDescriptionRole)})
                addTo(texts, cell.data(role).toString());
        });
}

// Names, paths and sizes.
bool isData(const QString& text) {
    static const QRegularExpression data(QRegularExpression::anchoredPattern(QStringLiteral(
        "Orrinvale|folder|[a-z]|data|films|anna|\\S+\\.(txt|mkv|iso)|\\S*/\\S*|UTF-8|"
        "[+-]?\\d+,\\d+[ \u00A0]?[KMG]B?|\\d+ Byte|"
        "\\d+\\. \\S+ \\d{4}")));
    return data.match(text).hasMatch();
}

// Cells with words and figures. A name may be cut: it is whole in its tip.
void addCutCells(const QTreeView& list, QStringList& cut) {
    const QFontMetrics metrics(Theme::shared().font(Theme::Text::Body));
    forRows(list, [&](const QModelIndex& cell) {
        const auto look = static_cast<CellLook>(cell.data(TickModel::LookRole).toInt());
        const QString text = cell.data().toString();
        const bool isWhole = (look != CellLook::Text && look != CellLook::Figure) ||
                             metrics.horizontalAdvance(text) + 2 * FlatHeader::textMargin <=
                                 list.columnWidth(cell.column());
        if (!isWhole) cut.push_back(list.objectName() + QStringLiteral(": ") + text);
    });
}

}  // namespace

GermanTexts::Pattern GermanTexts::patternOf(const QString& translation) {
    static const QRegularExpression filledIn(QStringLiteral("\\\\%(\\d|L?n)"));
    static const QRegularExpression letter(QStringLiteral("\\p{L}"));
    constexpr int fewLetters = 2;
    const QString escaped = QRegularExpression::escape(translation);
    const QString own = QString(escaped).remove(filledIn);
    return {QRegularExpression(QRegularExpression::anchoredPattern(
                QString(escaped).replace(filledIn, QStringLiteral("(.+)")))),
            own.count(letter) <= fewLetters};
}

QStringList shownTexts(const QWidget& widget) {
    QStringList texts;
    addTextsOf(widget, texts);
    for (const QWidget* const each : widget.findChildren<QWidget*>()) addTextsOf(*each, texts);
    texts.removeDuplicates();
    return texts;
}

QStringList cutTexts(const QWidget& window) {
    QStringList cut;
    const auto note = [&](const QWidget& widget, const QString& text) {
        cut.push_back(widget.objectName() + QStringLiteral(": ") + text);
    };
    for (const auto* const each : window.findChildren<QAbstractButton*>()) {
        const auto* const item = qobject_cast<const ToolbarItem*>(each);  // these may grow narrow
        const bool isCut =
            item != nullptr ? item->isLabelCut() : each->width() < each->sizeHint().width();
        if (each->isVisible() && !each->text().isEmpty() && isCut) note(*each, each->text());
    }
    for (const auto* const each : window.findChildren<QLabel*>()) {
        const bool isGone = each->width() == 0;  // where something else needs the room
        if (!each->isVisible() || each->text().isEmpty() || isGone) continue;
        if (qobject_cast<const ElidedLabel*>(each) != nullptr && each->text().contains(u'/'))
            continue;  // a path is whole in its tip
        const bool fits = each->wordWrap() ? each->height() >= each->heightForWidth(each->width())
                                           : each->width() >= each->sizeHint().width();
        if (!fits) note(*each, each->text());
    }
    for (const auto* const each : window.findChildren<FlatHeader*>()) {
        if (!each->isVisible()) continue;
        for (int column = 0; column < each->count(); ++column) {
            const QString text = each->model()->headerData(column, Qt::Horizontal).toString();
            const QFontMetrics metrics(
                Theme::shared().font(Theme::Text::Caption));  // in which it is drawn
            const int needed = metrics.horizontalAdvance(text) + 2 * FlatHeader::textMargin;
            if (!text.isEmpty() && each->sectionSize(column) < needed) note(*each, text);
        }
    }
    for (const auto* const each : window.findChildren<QTreeView*>())
        if (each->isVisible() && qobject_cast<const TickModel*>(each->model()) != nullptr)
            addCutCells(*each, cut);
    return cut;
}

GermanTexts::GermanTexts() {
    // What the desktop calls a kind of file.
    m_patterns.push_back(
        patternOf(QMimeDatabase().mimeTypeForName(QStringLiteral("text/plain")).comment()));
    for (const auto& [key, text] : builtInTexts("de").texts)
        m_patterns.push_back(patternOf(QString::fromStdString(text)));
    QFile file(QStringLiteral(ORRINVALE_GERMAN));
    if (!file.open(QIODevice::ReadOnly)) return;
    for (QXmlStreamReader xml(&file); !xml.atEnd(); xml.readNext()) {
        const bool isText = xml.name() == QLatin1String("translation") ||
                            xml.name() == QLatin1String("numerusform");
        if (!xml.isStartElement() || !isText) continue;
        const QString text = xml.readElementText(QXmlStreamReader::IncludeChildElements);
        for (const QString& line : text.split(QLatin1Char('\n')))
            if (hasLetter(line)) m_patterns.push_back(patternOf(line.trimmed()));
    }
}

bool GermanTexts::knows(const QString& text) const {
    const auto isTranslation = [this](const QString& piece) {
        return std::ranges::any_of(m_patterns, [&](const Pattern& each) {
            const QRegularExpressionMatch match = each.text.match(piece);
            const QStringList filled = match.capturedTexts().mid(1);
            return match.hasMatch() &&
                   (!each.isLoose || std::ranges::all_of(filled, [this](const QString& part) {
                       return !hasLetter(part) || knows(part);
                   }));
        });
    };
    // How many there are of a kind stands behind it.
    static const QRegularExpression count(QStringLiteral(" \\(\\d+\\)$"));
    if (isTranslation(QString(text).remove(count))) return true;
    static const QRegularExpression seam(QStringLiteral(", |: |  \u00B7  "));
    const QString sentence = text.endsWith(QLatin1Char('.')) ? text.chopped(1) : text;
    return std::ranges::all_of(sentence.split(seam), [&](const QString& piece) {
        return !hasLetter(piece) || isData(piece) || isTranslation(piece);
    });
}

}  // namespace orrinvale::testing
