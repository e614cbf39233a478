// Grids of colours, of sizes of type and of pictures, each with its name below.
#include "gallery/Exhibits.h"

#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <array>

#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

using Color = Theme::Color;

struct NamedColor {
    Color color;
    const char* name;
};

constexpr std::array colors{
    NamedColor{Color::Window, "Window"},
    NamedColor{Color::Surface, "Surface"},
    NamedColor{Color::SurfaceRaised, "SurfaceRaised"},
    NamedColor{Color::Hover, "Hover"},
    NamedColor{Color::Pressed, "Pressed"},
    NamedColor{Color::Selection, "Selection"},
    NamedColor{Color::Line, "Line"},
    NamedColor{Color::Outline, "Outline"},
    NamedColor{Color::Text, "Text"},
    NamedColor{Color::TextSecondary, "TextSecondary"},
    NamedColor{Color::TextDisabled, "TextDisabled"},
    NamedColor{Color::TextOnAccent, "TextOnAccent"},
    NamedColor{Color::Accent, "Accent"},
    NamedColor{Color::AccentHover, "AccentHover"},
    NamedColor{Color::AccentPressed, "AccentPressed"},
    NamedColor{Color::FocusRing, "FocusRing"},
    NamedColor{Color::Danger, "Danger"},
    NamedColor{Color::DangerHover, "DangerHover"},
    NamedColor{Color::DangerPressed, "DangerPressed"},
    NamedColor{Color::Success, "Success"},
    NamedColor{Color::Warning, "Warning"},
    NamedColor{Color::Shadow, "Shadow"},
    NamedColor{Color::SizeWhite, "SizeWhite"},
    NamedColor{Color::SizeGreen, "SizeGreen"},
    NamedColor{Color::SizeYellow, "SizeYellow"},
    NamedColor{Color::SizeOrange, "SizeOrange"},
    NamedColor{Color::SizeRed, "SizeRed"},
    NamedColor{Color::KindDocuments, "KindDocuments"},
    NamedColor{Color::KindMusic, "KindMusic"},
    NamedColor{Color::KindVideos, "KindVideos"},
    NamedColor{Color::KindArchives, "KindArchives"},
    NamedColor{Color::KindPictures, "KindPictures"},
    NamedColor{Color::KindOthers, "KindOthers"},
    NamedColor{Color::KindLeftOut, "KindLeftOut"},
};
static_assert(colors.size() == static_cast<std::size_t>(Color::Count),
              "a colour is missing in the sheet");

struct NamedText {
    Theme::Text text;
    const char* name;
};

constexpr std::array texts{
    NamedText{Theme::Text::Display, "Display 28"},
    NamedText{Theme::Text::Title, "Title 20"},
    NamedText{Theme::Text::Heading, "Heading 15"},
    NamedText{Theme::Text::BodyStrong, "BodyStrong 13"},
    NamedText{Theme::Text::Body, "Body 13"},
    NamedText{Theme::Text::Caption, "Caption 11"},
};

constexpr QSize swatchSize{124, 56};
constexpr int swatchHeight = 32;
constexpr QSize cellSize{124, 76};
constexpr int pictureSide = 48;
constexpr int columns = 8;

QGridLayout* gridOf(QWidget& holder) {
    auto* const grid = new QGridLayout(&holder);
    grid->setContentsMargins({});
    grid->setSpacing(Theme::gapSmall);
    return grid;
}

void writeName(QPainter& painter, const QRect& place, const QString& name) {
    painter.setFont(Theme::shared().font(Theme::Text::Caption));
    painter.setPen(Theme::shared().color(Color::TextSecondary));
    painter.drawText(
        place, Qt::AlignCenter,
        painter.fontMetrics().elidedText(name, Qt::ElideMiddle, place.width() - Theme::gapTiny));
}

}  // namespace

Swatch::Swatch(Color color, QString name, QWidget* parent)
    : QWidget(parent), m_color(color), m_name(std::move(name)) {
    setFixedSize(swatchSize);
}

void Swatch::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Theme::shared().color(Color::Line));
    painter.setBrush(Theme::shared().color(m_color));
    painter.drawRoundedRect(QRectF(0.5, 0.5, width() - 1, swatchHeight), Theme::radiusSmall,
                            Theme::radiusSmall);
    writeName(painter, rect().adjusted(0, swatchHeight, 0, 0), m_name);
}

PictureCell::PictureCell(QString name, QWidget* parent) : QWidget(parent), m_name(std::move(name)) {
    setFixedSize(cellSize);
}

void PictureCell::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    QSize size = pictureSize(m_name);
    const QSize room(width(), pictureSide);
    if (size.width() > room.width() || size.height() > room.height())
        size.scale(room, Qt::KeepAspectRatio);
    QRect place(QPoint(), size.expandedTo({1, 1}));
    place.moveCenter(QPoint(width() / 2, pictureSide / 2));
    picture(m_name).paint(&painter, place);
    writeName(painter, rect().adjusted(0, pictureSide + Theme::gapTiny, 0, 0), m_name);
}

QWidget* allColors() {
    auto* const holder = new QWidget;
    QGridLayout* const grid = gridOf(*holder);
    for (std::size_t i = 0; i < colors.size(); ++i)
        grid->addWidget(new Swatch(colors.at(i).color, QLatin1String(colors.at(i).name)),
                        static_cast<int>(i) / columns, static_cast<int>(i) % columns);
    return holder;
}

QWidget* typeScale() {
    auto* const holder = new QWidget;
    QGridLayout* const grid = gridOf(*holder);
    int row = 0;
    for (const NamedText& each : texts) {
        auto* const name = new QLabel(QLatin1String(each.name));
        name->setFont(Theme::shared().font(Theme::Text::Caption));
        name->setForegroundRole(QPalette::PlaceholderText);
        auto* const sample = new QLabel(QStringLiteral("Find files that you have twice, 1.48 GB"));
        sample->setFont(Theme::shared().font(each.text));
        grid->addWidget(name, row, 0);
        grid->addWidget(sample, row++, 1);
    }
    grid->setColumnStretch(1, 1);
    return holder;
}

QWidget* allPictures() {
    auto* const holder = new QWidget;
    QGridLayout* const grid = gridOf(*holder);
    int index = 0;
    for (const QString& name : pictureNames()) {
        grid->addWidget(new PictureCell(name), index / columns, index % columns);
        ++index;
    }
    return holder;
}

}  // namespace orrinvale
