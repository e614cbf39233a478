// ShownTexts: what widgets say to a person, and whether a translation says it so.
#pragma once

#include <QList>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QWidget>

namespace orrinvale::testing {

/// Every text of the widget and of those in it: labels, buttons, titles, tool tips, what a screen
/// reader says, menus, headers, the rows of lists that are open. Lines of their own; those without
/// a letter are left out.
[[nodiscard]] QStringList shownTexts(const QWidget& widget);

/// Those visible labels and buttons, columns of lists, and cells of them that are no names and
/// paths, whose text has less room than it needs: "name: text".
[[nodiscard]] QStringList cutTexts(const QWidget& window);

/// All that the window says in German.
class GermanTexts {
public:
    GermanTexts();

    /// Whether the text is a translation, with anything in place of its placeholders, or made of
    /// translations and of names, paths and sizes, with commas or colons between.
    [[nodiscard]] bool knows(const QString& text) const;
    [[nodiscard]] qsizetype size() const { return m_patterns.size(); }

private:
    struct Pattern {
        QRegularExpression text;
        bool isLoose = false;  // so few words that what is filled in must be German too: "%1 in %2"
    };
    static Pattern patternOf(const QString& translation);

    QList<Pattern> m_patterns;
};

}  // namespace orrinvale::testing
