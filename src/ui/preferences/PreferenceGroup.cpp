// Each row takes two lines of a grid, so that captions stand under their controls.
#include "ui/preferences/PreferenceGroup.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QResizeEvent>
#include <QVBoxLayout>
#include <algorithm>

#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/controls/viewParts.h"

namespace orrinvale {
namespace {

constexpr int linesOfRow = 2;

QLabel* leftLabel(Theme::Text text, QPalette::ColorRole role) {
    QLabel* const made = makeLabel("", text, role);
    made->setAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    return made;
}

// As high as its words are at its width: a layout in a scroll area reckons with fewer lines. It
// asks for no width of its own, so that its words are laid out once, and not for each question of a
// layout above.
class CaptionLabel final : public QLabel {
public:
    CaptionLabel() {
        setTextFormat(Qt::PlainText);
        setFont(Theme::shared().font(Theme::Text::Caption));
        setForegroundRole(QPalette::PlaceholderText);
        setAlignment(Qt::AlignLeading | Qt::AlignTop);
        setWordWrap(true);
        QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Fixed);
        policy.setHeightForWidth(false);
        setSizePolicy(policy);
        setContentsMargins(0, Theme::gapTiny, 0, Theme::gap);
        setFixedHeight(fontMetrics().height() + Theme::gapTiny + Theme::gap);
    }

    void setWords(const QString& words) {
        setText(words);
        if (testAttribute(Qt::WA_Resized)) fit();
    }
    [[nodiscard]] QSize sizeHint() const override { return {0, minimumHeight()}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void resizeEvent(QResizeEvent* event) override {
        QLabel::resizeEvent(event);
        if (event->size().width() != event->oldSize().width()) fit();
    }

private:
    void fit() {
        constexpr int noLimit = 10'000;
        const QRect words =
            fontMetrics().boundingRect(QRect(0, 0, contentsRect().width(), noLimit),
                                       Qt::AlignLeading | Qt::AlignTop | Qt::TextWordWrap, text());
        const int height = words.height() + Theme::gapTiny + Theme::gap;
        if (height != minimumHeight()) setFixedHeight(height);
    }
};

}  // namespace

PreferenceGroup::PreferenceGroup(const char* name, const QString& title, QWidget* parent)
    : QWidget(parent), m_grid(new QGridLayout), m_restore(new HoverButton) {
    setObjectName(QLatin1String(name));
    setAccessibleName(title);
    QLabel* const heading = leftLabel(Theme::Text::Heading, QPalette::WindowText);
    heading->setText(title);
    m_restore->setText(tr("Restore Defaults"));
    m_restore->setObjectName(QStringLiteral("restoreDefaults"));
    m_restore->setAccessibleName(tr("Restore the defaults of %1").arg(title));
    auto* const card = new Panel(Theme::Color::Surface, Qt::TopEdge | Qt::BottomEdge);
    card->setLayout(m_grid);
    m_grid->setContentsMargins(Theme::gapLarge, Theme::gap, Theme::gapLarge, Theme::gap);
    m_grid->setHorizontalSpacing(Theme::gapLarge);
    m_grid->setVerticalSpacing(0);
    m_grid->setColumnStretch(1, 1);
    auto* const head = new QHBoxLayout;
    head->setContentsMargins(Theme::gapLarge, 0, Theme::gapSmall, 0);
    head->addWidget(heading, 1);
    head->addWidget(m_restore);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(Theme::gapTiny);
    column->addLayout(head);
    column->addWidget(card);
}

void PreferenceGroup::add(const QString& label, QWidget* control, const QString& caption,
                          QWidget* beside) {
    const int line = linesOfRow * static_cast<int>(m_rows.size());
    auto* const words = new CaptionLabel;
    Row row{control, beside, nullptr, words, caption};
    if (!label.isEmpty()) {
        row.label = leftLabel(Theme::Text::Body, QPalette::WindowText);
        row.label->setText(label);
        row.label->setBuddy(control);
        if (control->accessibleName().isEmpty()) control->setAccessibleName(label);
        m_grid->addWidget(row.label, line, 0);
    }
    auto* const controls = new QHBoxLayout;
    controls->setSpacing(Theme::gapSmall);
    controls->addWidget(control);
    if (beside != nullptr) controls->addWidget(beside);
    controls->addStretch(1);
    m_grid->addLayout(controls, line, 1);
    m_grid->setRowMinimumHeight(line, Theme::controlHeight + Theme::gapSmall);
    words->setWords(caption);
    // Shown before it has a place it would be a window for a moment.
    if (caption.isEmpty()) words->hide();
    control->setAccessibleDescription(caption);
    m_grid->addWidget(row.caption, line + 1, 1);
    m_rows.push_back(row);
}

void PreferenceGroup::setFault(const QWidget* control, const QString& reason) {
    const auto row = std::ranges::find(m_rows, control, &Row::control);
    if (row == m_rows.end()) return;
    const bool isOff = !reason.isEmpty();
    for (QWidget* const each : {row->control, row->beside, static_cast<QWidget*>(row->label)})
        if (each != nullptr) each->setEnabled(!isOff);
    row->control->setToolTip(reason);
    setRemark(control, reason);
}

void PreferenceGroup::setRemark(const QWidget* control, const QString& remark) {
    const auto row = std::ranges::find(m_rows, control, &Row::control);
    if (row == m_rows.end()) return;
    const QString told = remark.isEmpty() ? row->effect : remark;
    static_cast<CaptionLabel*>(row->caption)->setWords(told);
    row->caption->setVisible(!told.isEmpty());
    row->control->setAccessibleDescription(told);
}

int PreferenceGroup::labelWidth() const {
    int width = 0;
    for (const Row& each : m_rows)
        if (each.label != nullptr) width = std::max(width, each.label->sizeHint().width());
    return width;
}

void PreferenceGroup::setLabelWidth(int width) { m_grid->setColumnMinimumWidth(0, width); }

}  // namespace orrinvale
