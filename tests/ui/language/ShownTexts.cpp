// ShownTexts: see ShownTexts.h.
#include "ui/language/ShownTexts.h"

#include <QAbstractButton>
#include <QAction>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QXmlStreamReader>
#include <algorithm>

#include "engine/text/Localized.h"
#include "ui/kit/lists/FlatHeader.h"
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

void addTextsOf(const QWidget& widget, QStringList& texts) {
    for (const char* const property : {"text", "plainText", "title", "windowTitle", "toolTip",
                                       "accessibleName", "accessibleDescription"})
        addTo(texts, widget.property(property).toString());
    for (const QAction* const action : widget.actions()) addTo(texts, action->text());
    if (const auto* const header = qobject_cast<const QHeaderView*>(&widget);
        header && header->model())
        for (int column = 0; column < header->count(); ++column)
            addTo(texts, header->model()->headerData(column, Qt::Horizontal).toString());
}

// Names, paths and sizes.
bool isData(const QString& text) {
    static const QRegularExpression data(QRegularExpression::anchoredPattern(
        QStringLiteral("Orrinvale|folder|\\S+\\.txt|\\S*/\\S*|\\d+,\\d+ ?[KMG]B?|\\d+ Byte")));
    return data.match(text).hasMatch();
}

QRegularExpression patternOf(const QString& translation) {
    static const QRegularExpression filledIn(QStringLiteral("\\\\%(\\d|L?n)"));
    const QString escaped = QRegularExpression::escape(translation);
    return QRegularExpression(QRegularExpression::anchoredPattern(
        QString(escaped).replace(filledIn, QStringLiteral(".+"))));
}

}  // namespace

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
        if (!each->isVisible() || each->text().isEmpty()) continue;
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
    return cut;
}

GermanTexts::GermanTexts() {
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
        return std::ranges::any_of(m_patterns,
                                   [&](const auto& each) { return each.match(piece).hasMatch(); });
    };
    // How many there are of a kind stands behind it.
    static const QRegularExpression count(QStringLiteral(" \\(\\d+\\)$"));
    if (isTranslation(QString(text).remove(count))) return true;
    static const QRegularExpression seam(QStringLiteral(", |: "));
    const QString sentence = text.endsWith(QLatin1Char('.')) ? text.chopped(1) : text;
    return std::ranges::all_of(sentence.split(seam), [&](const QString& piece) {
        return !hasLetter(piece) || isData(piece) || isTranslation(piece);
    });
}

}  // namespace orrinvale::testing
