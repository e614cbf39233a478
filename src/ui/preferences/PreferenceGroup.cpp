// Each row takes two lines of a grid, so that captions stand under their controls.
#include "ui/preferences/PreferenceGroup.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
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

// As high as its words are at its width: a layout in a scroll area reckons with fewer lines.
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
        setContentsMargins(0, Theme::gapTiny, 0, Theme::gapSmall);
    }

protected:
    void resizeEvent(QResizeEvent* event) override {
        QLabel::resizeEvent(event);
        setMinimumHeight(0);  // which counts in what is asked next
        if (const int height = heightForWidth(width()); height >= 0) setFixedHeight(height);
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
    Row row{control, beside, nullptr, new CaptionLabel, caption};
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
    m_grid->setRowMinimumHeight(line, Theme::controlHeight + Theme::gapTiny);
    row.caption->setText(caption);
    row.caption->setVisible(!caption.isEmpty());
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
    const QString told = isOff ? reason : row->effect;
    row->caption->setText(told);
    row->caption->setVisible(!told.isEmpty());
    row->control->setAccessibleDescription(told);
    row->control->setToolTip(reason);
}

int PreferenceGroup::labelWidth() const {
    int width = 0;
    for (const Row& each : m_rows)
        if (each.label != nullptr) width = std::max(width, each.label->sizeHint().width());
    return width;
}

void PreferenceGroup::setLabelWidth(int width) { m_grid->setColumnMinimumWidth(0, width); }

}  // namespace orrinvale
