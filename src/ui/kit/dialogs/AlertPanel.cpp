// Sign and texts follow the theme by themselves, as a sheet may be open while it changes.
#include "ui/kit/dialogs/AlertPanel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>

#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/accessibleRole.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr int panelWidth = 440, widestPanel = 600, signSize = 40;

QString signOf(const Alert& alert) {
    if (!alert.picture.isEmpty()) return alert.picture;
    switch (alert.severity) {
        case Alert::Severity::Warning: return QStringLiteral("warning");
        case Alert::Severity::Critical: return QStringLiteral("error");
        case Alert::Severity::Information: break;
    }
    return QStringLiteral("info");
}

// Draws the picture itself, so that it follows scale and theme.
class Sign final : public QWidget {
public:
    explicit Sign(const QString& name, QWidget* parent) : QWidget(parent), m_name(name) {
        setFixedSize(signSize, signSize);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        picture(m_name).paint(&painter, rect());
    }

private:
    const QString m_name;
};

class SheetText final : public QLabel {
public:
    SheetText(const QString& text, Theme::Text size, Theme::Color color, QWidget* parent)
        : QLabel(text, parent), m_color(color) {
        setTextFormat(Qt::PlainText);  // texts hold names of files
        setWordWrap(true);
        setFont(Theme::shared().font(size));
        connect(&Theme::shared(), &Theme::changed, this, [this] { takeColor(); });
        takeColor();
    }

private:
    void takeColor() {
        QPalette colors = palette();
        colors.setColor(QPalette::WindowText, Theme::shared().color(m_color));
        setPalette(colors);
    }
    const Theme::Color m_color;
};

// A '&' in a text is a letter: the sheet has no mnemonics.
TextImageButton* newButton(const QString& text, TextImageButton::Role role, QWidget* parent) {
    auto* button = new TextImageButton(
        QString(text).replace(QLatin1Char('&'), QStringLiteral("&&")), role, parent);
    button->setAccessibleName(text);
    return button;
}

}  // namespace

AlertPanel::AlertPanel(const Alert& alert)
    : m_keyboardButton(alert.keyboardButton >= 0 ? alert.keyboardButton : alert.defaultButton) {
    setAccessibleTraits(*this, {.role = QAccessible::AlertMessage, .isModal = true});
    setAccessibleName(alert.title.trimmed().isEmpty() ? alert.text : alert.title);
    setAccessibleDescription(alert.text);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(Theme::gapHuge, Theme::gapHuge, Theme::gapHuge, Theme::gapLarge);
    column->setSpacing(Theme::gapHuge);
    addTexts(*column, alert);
    addButtons(*column, alert);
}

// Wider only where a button would be cut.
QSize AlertPanel::sizeHint() const {
    const QMargins around = layout()->contentsMargins();
    const int buttons = layout()->itemAt(1)->sizeHint().width() + around.left() + around.right();
    const int width = std::clamp(buttons, panelWidth, widestPanel);
    return {width, heightForWidth(width)};
}

QWidget* AlertPanel::keyboardButton() const {
    const auto index = static_cast<std::size_t>(m_keyboardButton);
    return m_keyboardButton >= 0 && index < m_buttons.size() ? m_buttons[index] : m_buttons.front();
}

void AlertPanel::addTexts(QBoxLayout& column, const Alert& alert) {
    auto* row = new QHBoxLayout;
    row->setSpacing(Theme::gapLarge);
    row->addWidget(new Sign(signOf(alert), this), 0, Qt::AlignTop);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(Theme::gapSmall);
    texts->addStretch();
    const bool hasTitle = !alert.title.trimmed().isEmpty();
    if (hasTitle)
        texts->addWidget(
            new SheetText(alert.title, Theme::Text::Heading, Theme::Color::Text, this));
    if (!alert.text.trimmed().isEmpty()) {
        const auto color = hasTitle ? Theme::Color::TextSecondary : Theme::Color::Text;
        texts->addWidget(new SheetText(alert.text, Theme::Text::Body, color, this));
    }
    texts->addStretch();
    row->addLayout(texts, 1);
    column.addLayout(row);
}

void AlertPanel::addButtons(QBoxLayout& column, const Alert& alert) {
    auto* row = new QHBoxLayout;
    row->setSpacing(Theme::gapTiny);
    if (!alert.linkText.isEmpty() && alert.linkAction) {
        auto* link = newButton(alert.linkText, TextImageButton::Role::Link, this);
        connect(link, &TextImageButton::clicked, this, [action = alert.linkAction] { action(); });
        row->addWidget(link);
    }
    row->addStretch();
    const QStringList texts = alert.buttons.isEmpty() ? Alert().buttons : alert.buttons;
    for (int index = 0; index < texts.size(); ++index) {
        auto role = TextImageButton::Role::Plain;
        if (index == alert.defaultButton)
            role = alert.isDestructive ? TextImageButton::Role::Danger
                                       : TextImageButton::Role::Primary;
        auto* button = newButton(texts.at(index), role, this);
        connect(button, &TextImageButton::clicked, this, [this, index] { Q_EMIT pressed(index); });
        m_buttons.push_back(button);
    }
    // The first one outermost, as the eye ends there.
    for (auto each = m_buttons.rbegin(); each != m_buttons.rend(); ++each) row->addWidget(*each);
    column.addLayout(row);
}

}  // namespace orrinvale
