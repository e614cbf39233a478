// The toolkit's own rules for buttons that exclude each other do keys and focus.
#include "ui/kit/controls/SegmentedControl.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <algorithm>

#include "ui/kit/chrome/DrawnButton.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

constexpr int controlHeight = 28;
constexpr int inset = 2;  // between the frame and a segment
constexpr int leastSegmentWidth = 56;

class Segment final : public DrawnButton<QAbstractButton> {
public:
    explicit Segment(const QString& word) : DrawnButton(nullptr) {
        setText(word);
        setObjectName(word);
        setCheckable(true);
        setAutoExclusive(true);
        setFocusPolicy(Qt::StrongFocus);
        setFont(Theme::shared().font(Theme::Text::Body));
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }
    [[nodiscard]] QSize sizeHint() const override {
        const int words = fontMetrics().horizontalAdvance(text()) + 2 * Theme::gap;
        return {std::max(words, leastSegmentWidth), controlHeight - 2 * inset};
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const Theme& theme = Theme::shared();
        const ButtonLook look = buttonLook(*this);
        const bool isOff = look == ButtonLook::Disabled;
        painter.setPen(Qt::NoPen);
        if (isChecked())
            painter.setBrush(theme.color(isOff ? Theme::Color::Line : Theme::Color::Accent));
        else if (look == ButtonLook::Hover || look == ButtonLook::Pressed)
            painter.setBrush(theme.color(Theme::Color::Hover));
        painter.drawRoundedRect(rect(), Theme::radiusSmall, Theme::radiusSmall);
        painter.setPen(theme.color(isOff         ? Theme::Color::TextDisabled
                                   : isChecked() ? Theme::Color::TextOnAccent
                                                 : Theme::Color::Text));
        painter.drawText(rect(), Qt::AlignCenter, text());
    }
};

}  // namespace

SegmentedControl::SegmentedControl(const QStringList& words, QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(inset, inset, inset, inset);
    row->setSpacing(0);
    for (const QString& word : words) {
        auto* const made = new Segment(word);
        row->addWidget(made);
        const int number = static_cast<int>(m_segments.size());
        m_segments.push_back(made);
        connect(made, &QAbstractButton::clicked, this, [this, number] { Q_EMIT chosen(number); });
        // The ring stands around all of it.
        connect(made, &QAbstractButton::toggled, this, [this] { update(); });
        made->installEventFilter(this);
    }
    setSelectedSegment(0);
    connect(&Theme::shared(), &Theme::changed, this, [this] { update(); });
}

QAbstractButton* SegmentedControl::segment(int number) const {
    return m_segments.at(static_cast<std::size_t>(number));
}

void SegmentedControl::setSelectedSegment(int segment) {
    for (std::size_t each = 0; each < m_segments.size(); ++each) {
        const bool isIt = static_cast<int>(each) == segment;
        m_segments[each]->setFocusPolicy(isIt ? Qt::StrongFocus : Qt::ClickFocus);
        if (isIt) m_segments[each]->setChecked(true);
    }
    setFocusProxy(this->segment(segment));
}

int SegmentedControl::selectedSegment() const {
    const auto found = std::ranges::find_if(m_segments, &QAbstractButton::isChecked);
    return static_cast<int>(found - m_segments.begin());
}

void SegmentedControl::setSegmentShown(int segment, bool isShown) {
    this->segment(segment)->setVisible(isShown);
}

void SegmentedControl::changeEvent(QEvent* event) {
    if (event->type() == QEvent::EnabledChange) update();
    QWidget::changeEvent(event);
}

bool SegmentedControl::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) update();
    return QWidget::eventFilter(watched, event);
}

void SegmentedControl::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Theme& theme = Theme::shared();
    const bool hasFocus = isAncestorOf(window()->focusWidget()) && window()->isActiveWindow();
    painter.setPen(QPen(theme.color(hasFocus      ? Theme::Color::FocusRing
                                    : isEnabled() ? Theme::Color::Outline
                                                  : Theme::Color::Line),
                        hasFocus ? 2 : 1));
    painter.setBrush(theme.color(Theme::Color::Surface));
    const qreal edge = hasFocus ? 1 : 0.5;
    painter.drawRoundedRect(QRectF(rect()).adjusted(edge, edge, -edge, -edge),
                            Theme::radiusSmall + inset, Theme::radiusSmall + inset);
}

}  // namespace orrinvale
