// How the numbered pictures and the plates are drawn. Read named() first: a table of endings
// decides on the family.
#include "ui/kit/look/DrawnPicture.h"

#include <QPainter>
#include <algorithm>
#include <array>

#include "ui/kit/look/PictureFile.h"
#include "ui/kit/look/usagePictures.h"

namespace orrinvale {
namespace {

using Color = Theme::Color;
using Family = DrawnPicture::Family;
using State = DrawnPicture::State;

struct NumberedForm {
    const char* before;
    const char* after;
    Family family;
    State state;
    int first;
    int last;
    QSize size;
};

constexpr std::array<NumberedForm, 8> numberedForms{{
    {"", "%", Family::Gauge, State::Normal, 0, 100, {22, 22}},
    {"", "%-1", Family::Gauge, State::Warning, 0, 100, {22, 22}},
    {"", "", Family::Bar, State::Normal, 0, 100, {160, 8}},
    {"", "-1", Family::Bar, State::Warning, 0, 100, {160, 8}},
    {"", "_index", Family::Bar, State::Normal, 0, 100, {420, 10}},
    {"", "_r_index", Family::Bar, State::Warning, 0, 100, {420, 10}},
    {"", "_progress_bar", Family::Bar, State::Normal, 0, 100, {240, 10}},
    {"loading_", "", Family::Spinner, State::Normal, 1, 12, {48, 48}},
}};

struct FixedForm {
    const char* name;
    Family family;
    State state;
    QSize size;
};

constexpr QSize tabSize{200, 40};
constexpr QSize buttonSize{112, 32};
constexpr QSize backSize{32, 32};
constexpr std::array<FixedForm, 14> fixedForms{{
    {"tab", Family::Tab, State::Normal, tabSize},
    {"tab_on", Family::Tab, State::On, tabSize},
    {"btn_pri", Family::Plate, State::Normal, buttonSize},
    {"btn_pri_hover", Family::Plate, State::Hover, buttonSize},
    {"btn_pri_press", Family::Plate, State::Press, buttonSize},
    {"btn_pri_disable", Family::Plate, State::Disable, buttonSize},
    {"btn_sec", Family::Plate, State::Normal, buttonSize},
    {"btn_sec_hover", Family::Plate, State::Hover, buttonSize},
    {"btn_sec_press", Family::Plate, State::Press, buttonSize},
    {"btn_sec_disable", Family::Plate, State::Disable, buttonSize},
    {"btn_back", Family::Plate, State::Normal, backSize},
    {"btn_back_hover", Family::Plate, State::Hover, backSize},
    {"btn_back_press", Family::Plate, State::Press, backSize},
    {"btn_back_disable", Family::Plate, State::Disable, backSize},
}};

// The number between the two texts, if there is nothing else.
std::optional<int> numberIn(QStringView name, const NumberedForm& form) {
    const QLatin1String before(form.before);
    const QLatin1String after(form.after);
    if (!name.startsWith(before) || !name.endsWith(after)) return std::nullopt;
    if (name.size() <= before.size() + after.size()) return std::nullopt;
    const QStringView digits = name.mid(before.size(), name.size() - before.size() - after.size());
    const bool plain =
        std::all_of(digits.begin(), digits.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    if (!plain || digits.size() > 3 || (digits.size() > 1 && digits.front() == u'0'))
        return std::nullopt;
    const int number = digits.toInt();
    return number < form.first || number > form.last ? std::nullopt : std::optional(number);
}

QRectF squareIn(const QRectF& rectangle) {
    const double side = std::min(rectangle.width(), rectangle.height());
    QRectF square(0, 0, side, side);
    square.moveCenter(rectangle.center());
    return square;
}

void drawSpinner(QPainter& painter, const QRectF& rectangle, int step, Theme::Scheme scheme) {
    const QRectF square = squareIn(rectangle);
    const double unit = square.width() / 48;
    painter.translate(square.center());
    for (int spoke = 0; spoke < 12; ++spoke) {
        const int age = (step - 1 - spoke + 12) % 12;
        QColor color = Theme::color(age == 0 ? Color::Accent : Color::TextSecondary, scheme);
        color.setAlphaF(static_cast<float>(std::max(0.18, 1.0 - age * 0.12)));
        painter.setPen(QPen(color, 3.5 * unit, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(0, -11 * unit), QPointF(0, -19 * unit));
        painter.rotate(30);
    }
}

void drawTab(QPainter& painter, const QRectF& rectangle, bool on, Theme::Scheme scheme) {
    const double unit = rectangle.height() / tabSize.height();
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::color(on ? Color::Selection : Color::Hover, scheme));
    painter.drawRoundedRect(rectangle, Theme::radius * unit, Theme::radius * unit);
    if (!on) return;
    const double length = std::min(48 * unit, rectangle.width() / 2);
    QRectF mark(0, 0, length, 3 * unit);
    mark.moveCenter(QPointF(rectangle.center().x(), rectangle.bottom() - 2.5 * unit));
    painter.setBrush(Theme::color(Color::Accent, scheme));
    painter.drawRoundedRect(mark, 1.5 * unit, 1.5 * unit);
}

struct PlateColors {
    Color fill;
    std::optional<Color> line;
};

PlateColors plateColors(bool primary, State state) {
    switch (state) {
        case State::Hover:
            return primary ? PlateColors{Color::AccentHover, {}}
                           : PlateColors{Color::Hover, Color::Line};
        case State::Press:
            return primary ? PlateColors{Color::AccentPressed, {}}
                           : PlateColors{Color::Pressed, Color::Outline};
        case State::Disable:
            return primary ? PlateColors{Color::Line, {}} : PlateColors{Color::Window, Color::Line};
        default:
            return primary ? PlateColors{Color::Accent, {}}
                           : PlateColors{Color::Surface, Color::Line};
    }
}

void drawPlate(QPainter& painter, const QRectF& rectangle, const QString& name, State state,
               Theme::Scheme scheme) {
    const double unit = rectangle.height() / buttonSize.height();
    const PlateColors colors = plateColors(name.startsWith(QLatin1String("btn_pri")), state);
    painter.setBrush(Theme::color(colors.fill, scheme));
    painter.setPen(colors.line ? QPen(Theme::color(*colors.line, scheme), unit) : QPen(Qt::NoPen));
    const double inset = colors.line ? unit / 2 : 0;
    painter.drawRoundedRect(rectangle.adjusted(inset, inset, -inset, -inset), Theme::radius * unit,
                            Theme::radius * unit);
    if (!name.startsWith(QLatin1String("btn_back"))) return;
    if (state == State::Disable) painter.setOpacity(painter.opacity() * 0.4);
    QRectF glyph(0, 0, 20 * unit, 20 * unit);
    glyph.moveCenter(rectangle.center());
    PictureFile::draw(painter, glyph, QStringLiteral("arrow_left"), scheme);
}

}  // namespace

std::optional<DrawnPicture> DrawnPicture::named(const QString& name) {
    for (const FixedForm& form : fixedForms) {
        if (name == QLatin1String(form.name))
            return DrawnPicture(form.family, form.state, 0, form.size, name);
    }
    for (const NumberedForm& form : numberedForms) {
        if (const auto number = numberIn(name, form))
            return DrawnPicture(form.family, form.state, *number, form.size, name);
    }
    return std::nullopt;
}

QStringList DrawnPicture::names() {
    QStringList names;
    for (const FixedForm& form : fixedForms) names << QString::fromLatin1(form.name);
    for (const NumberedForm& form : numberedForms)
        names << QLatin1String(form.before) % QString::number(form.first) %
                     QLatin1String(form.after);
    return names;
}

void DrawnPicture::draw(QPainter& painter, const QRectF& rectangle, Theme::Scheme scheme) const {
    const bool warning = m_state == State::Warning;
    painter.save();
    switch (m_family) {
        case Family::Gauge:
            drawUsage(painter, rectangle, UsageForm::Disc, m_number, warning, scheme);
            break;
        case Family::Bar:
            drawUsage(painter, rectangle, UsageForm::Bar, m_number, warning, scheme);
            break;
        case Family::Spinner: drawSpinner(painter, rectangle, m_number, scheme); break;
        case Family::Tab: drawTab(painter, rectangle, m_state == State::On, scheme); break;
        case Family::Plate: drawPlate(painter, rectangle, m_name, m_state, scheme); break;
    }
    painter.restore();
}

}  // namespace orrinvale
