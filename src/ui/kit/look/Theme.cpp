// The colours and letters of every window. The pairs of colours are proved in the tests; change a
// value here, run them.
#include "ui/kit/look/Theme.h"

#include <QApplication>
#include <QDBusConnection>
#include <QFontDatabase>
#include <QToolTip>
#include <QWidget>
#include <array>
#include <cstddef>
#include <utility>

#include "ui/kit/look/DesktopAppearance.h"
#include "ui/kit/look/HouseStyle.h"

namespace orrinvale {
namespace {

struct Pair {
    QRgb light;
    QRgb dark;
};

constexpr auto colorCount = static_cast<std::size_t>(Theme::Color::Count);

// In the order of Theme::Color. The greys lean a little towards the accent, a deep lake green-blue,
// so that both belong together; in the dark scheme the accent is the light one of the two and its
// text dark.
constexpr std::array<Pair, colorCount> colors{{
    {0xFFF3F5F6, 0xFF15181A},  // Window
    {0xFFFFFFFF, 0xFF1C2023},  // Surface
    {0xFFFAFBFB, 0xFF23282B},  // SurfaceRaised
    {0xFFECF0F1, 0xFF292F33},  // Hover
    {0xFFE1E7E9, 0xFF333A3F},  // Pressed
    {0xFFD6EBEE, 0xFF1B3D45},  // Selection
    {0xFFDBE0E3, 0xFF363D42},  // Line
    {0xFF1A2226, 0xFFE9EDEF},  // Text
    {0xFF535E65, 0xFFA9B3B9},  // TextSecondary
    {0xFF98A2A8, 0xFF69737A},  // TextDisabled
    {0xFFFFFFFF, 0xFF06232A},  // TextOnAccent
    {0xFF0B6878, 0xFF5CC2D2},  // Accent
    {0xFF095B69, 0xFF76CFDC},  // AccentHover
    {0xFF074C58, 0xFF49AFC0},  // AccentPressed
    {0xFFB92D27, 0xFFFF8F85},  // Danger
    {0xFFA32621, 0xFFFFA39B},  // DangerHover
    {0xFF8B1F1B, 0xFFF27C71},  // DangerPressed
    {0xFF236B38, 0xFF74CC8A},  // Success
    {0xFF855000, 0xFFE7B155},  // Warning
    {0xFF12849A, 0xFF5CC2D2},  // FocusRing
    {0xFF77838A, 0xFF8C979E},  // Outline
    {0x38101C22, 0x8C000000},  // Shadow
    {0xFF1A2226, 0xFFE9EDEF},  // SizeWhite
    {0xFF236B38, 0xFF74CC8A},  // SizeGreen
    {0xFF6F5700, 0xFFEFD564},  // SizeYellow
    {0xFF9A4300, 0xFFF6A65C},  // SizeOrange
    {0xFFB3261F, 0xFFFF8F85},  // SizeRed
    {0xFFBFD7F2, 0xFF274B73},  // KindDocuments
    {0xFFE3CDF0, 0xFF573A6B},  // KindMusic
    {0xFFF4C9C4, 0xFF70332E},  // KindVideos
    {0xFFF3DDB3, 0xFF65480F},  // KindArchives
    {0xFFC5E5CB, 0xFF27573A},  // KindPictures
    {0xFFD5DCE0, 0xFF424C53},  // KindOthers
    {0xFFE9ECEE, 0xFF2A2F33},  // KindLeftOut
}};

Theme::Scheme schemeOf(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < 128 ? Theme::Scheme::Dark
                                                             : Theme::Scheme::Light;
}

// With a larger step goes a cut of the letters made for it.
QString familyThatIsThere(bool large) {
    QStringList wished{QStringLiteral("Inter")};
    if (large) wished.prepend(QStringLiteral("Inter Display"));
    for (const QString& name : wished)
        if (QFontDatabase::hasFamily(name)) return name;
    return QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
}

// The font library takes milliseconds for its answer, and every label asks.
QString family(bool large) {
    static std::array<QString, 2> known;
    static const auto renewed = QObject::connect(qGuiApp, &QGuiApplication::fontDatabaseChanged,
                                                 qGuiApp, [] { known = {}; });
    static_cast<void>(renewed);
    QString& name = known.at(large ? 1 : 0);
    if (name.isEmpty()) name = familyThatIsThere(large);
    return name;
}

struct Step {
    int pixels;
    QFont::Weight weight;
};

Step toneStep(Theme::Text text) {
    switch (text) {
        case Theme::Text::Caption: return {11, QFont::Normal};
        case Theme::Text::Body: return {13, QFont::Normal};
        case Theme::Text::BodyStrong: return {13, QFont::DemiBold};
        case Theme::Text::Heading: return {15, QFont::DemiBold};
        case Theme::Text::Title: return {20, QFont::DemiBold};
        case Theme::Text::Display: return {28, QFont::DemiBold};
    }
    return {13, QFont::Normal};
}

}  // namespace

Theme& Theme::shared() {
    static Theme theme;
    return theme;
}

void Theme::install(QApplication& application) {
    if (!m_installed) {
        m_coveredScheme = schemeOf(QGuiApplication::palette());
        m_appearance = new DesktopAppearance(QDBusConnection::sessionBus(), &application);
        connect(m_appearance, &DesktopAppearance::changed, this,
                [this] { setScheme(desktopScheme()); });
    }
    QApplication::setStyle(new HouseStyle);
    m_installed = true;
    m_scheme = desktopScheme();
    QApplication::setFont(font(Text::Body));
    QToolTip::setFont(font(Text::Caption));
    apply();
}

Theme::Scheme Theme::desktopScheme() {
    const QByteArray wanted = qgetenv("ORRINVALE_THEME").toLower();
    if (wanted == "light") return Scheme::Light;
    if (wanted == "dark") return Scheme::Dark;
    const Theme& theme = shared();
    if (theme.m_chosenScheme) return *theme.m_chosenScheme;
    if (!theme.m_installed) return schemeOf(QGuiApplication::palette());
    if (theme.m_appearance && theme.m_appearance->scheme()) return *theme.m_appearance->scheme();
    return theme.m_coveredScheme;
}

void Theme::setChosenScheme(std::optional<Scheme> scheme) {
    m_chosenScheme = scheme;
    setScheme(desktopScheme());
}

bool Theme::desktopAnimates() const { return !m_appearance || m_appearance->animates(); }

TitleDoubleClick Theme::desktopDoubleClick() const {
    return m_appearance ? m_appearance->titleDoubleClick() : TitleDoubleClick::Zoom;
}

void Theme::setScheme(Scheme scheme) {
    if (scheme == m_scheme) return;
    m_scheme = scheme;
    if (m_installed) apply();
    Q_EMIT changed();
}

// A widget with a palette of its own hears nothing of the new one, but its pictures and colours
// come from here all the same, so every widget is asked to draw.
void Theme::apply() const {
    QApplication::setPalette(palette());
    QToolTip::setPalette(palette());
    const auto widgets = QApplication::allWidgets();
    for (QWidget* widget : widgets) widget->update();
}

QColor Theme::color(Color role, Scheme scheme) {
    const auto index = static_cast<std::size_t>(role);
    if (index >= colors.size()) return {};
    const Pair& pair = colors[index];
    return QColor::fromRgba(scheme == Scheme::Light ? pair.light : pair.dark);
}

QFont Theme::font(Text text) const {
    const auto [pixels, weight] = toneStep(text);
    QFont font(family(pixels >= 20));
    font.setPointSizeF(pixels * 0.75);  // 72 points and 96 dots an inch
    font.setWeight(weight);
    return font;
}

QPalette Theme::palette() const {
    using Role = std::pair<QPalette::ColorRole, Color>;
    static constexpr std::array<Role, 20> roles{{
        {QPalette::Window, Color::Window},
        {QPalette::WindowText, Color::Text},
        {QPalette::Base, Color::Surface},
        {QPalette::AlternateBase, Color::Hover},
        {QPalette::Text, Color::Text},
        {QPalette::PlaceholderText, Color::TextSecondary},
        {QPalette::Button, Color::SurfaceRaised},
        {QPalette::ButtonText, Color::Text},
        {QPalette::BrightText, Color::Danger},
        {QPalette::ToolTipBase, Color::SurfaceRaised},
        {QPalette::ToolTipText, Color::Text},
        {QPalette::Highlight, Color::Accent},
        {QPalette::Link, Color::Accent},
        {QPalette::LinkVisited, Color::AccentPressed},
        {QPalette::Light, Color::SurfaceRaised},
        {QPalette::Midlight, Color::Hover},
        {QPalette::Mid, Color::Line},
        {QPalette::Dark, Color::Outline},
        {QPalette::Shadow, Color::Shadow},
        {QPalette::HighlightedText, Color::TextOnAccent},
    }};
    QPalette palette;
    for (const auto& [role, meaning] : roles) palette.setColor(role, color(meaning));
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::PlaceholderText})
        palette.setColor(QPalette::Disabled, role, color(Color::TextDisabled));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, color(Color::Line));
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, color(Color::TextDisabled));
    return palette;
}

}  // namespace orrinvale
