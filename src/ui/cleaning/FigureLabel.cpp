#include "ui/cleaning/FigureLabel.h"

#include <algorithm>

namespace orrinvale {
namespace {

QString filled(QString pattern, const QStringList& figures) {
    for (qsizetype i = figures.size(); i > 0; --i)
        pattern.replace(QStringLiteral("%%1").arg(i), figures[i - 1]);
    return pattern;
}

}  // namespace

FigureLabel::FigureLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::RichText);
    setFont(Theme::shared().font(Theme::Text::Body));
    connect(&Theme::shared(), &Theme::changed, this, &FigureLabel::draw);
}

void FigureLabel::showSentence(const QString& pattern, const QStringList& figures,
                               bool isFirstLarge) {
    QString sentence = filled(pattern, figures);
    if (sentence == m_sentence && isFirstLarge == m_isFirstLarge) return;
    m_pattern = pattern;
    m_figures = figures;
    m_isFirstLarge = isFirstLarge;
    m_sentence = std::move(sentence);
    setAccessibleName(m_sentence);
    draw();
}

void FigureLabel::draw() {
    const QString color = Theme::shared().color(Theme::Color::Accent).name();
    QStringList shown;
    for (const QString& figure : m_figures) {
        const bool isLarge = m_isFirstLarge && shown.isEmpty();
        const int size = Theme::shared()
                             .font(isLarge ? Theme::Text::Title : Theme::Text::BodyStrong)
                             .pointSize();
        shown.push_back(QStringLiteral("<b style=\"color:%1; font-size:%2pt\">%3</b>")
                            .arg(color, QString::number(size), figure.toHtmlEscaped()));
    }
    m_heights.clear();
    setText(m_sentence.isEmpty() ? QString() : filled(m_pattern.toHtmlEscaped(), shown));
}

// Whatever comes or goes on the page asks for it, at two or three widths, and each answer sets the
// sentence anew: that was half of what the end of a scan took on the main thread.
int FigureLabel::heightForWidth(int width) const {
    width = std::min(width, maximumWidth());  // a layout asks for all the room that it has
    const auto known = m_heights.find(width);
    if (known != m_heights.end()) return known->second;
    return m_heights[width] = QLabel::heightForWidth(width);
}

void FigureLabel::changeEvent(QEvent* event) {
    m_heights.clear();
    QLabel::changeEvent(event);
}

}  // namespace orrinvale
