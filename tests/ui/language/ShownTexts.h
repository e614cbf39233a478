// ShownTexts: what widgets say to a person, and whether a translation says it so.
#pragma once

#include <QList>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QWidget>

namespace orrinvale::testing {

/// Every text of the widget and of those in it: labels, buttons, titles, tool tips, what a screen
/// reader says, menus, headers. Lines of their own; those without a letter are left out.
[[nodiscard]] QStringList shownTexts(const QWidget& widget);

/// Those visible labels and buttons, and columns of lists, whose text has less room than it needs:
/// "name: text".
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
    QList<QRegularExpression> m_patterns;
};

}  // namespace orrinvale::testing
