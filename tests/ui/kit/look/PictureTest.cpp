// Every picture by its name: that it is there, shows something, keeps within its edges and follows
// the scheme.
#include "ui/kit/look/picture.h"

#include <QDir>
#include <QDirIterator>
#include <QPainter>
#include <QRegularExpression>
#include <cmath>

#include "support/test.h"
#include "ui/kit/look/PictureFile.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

using Scheme = Theme::Scheme;

QString operator""_s(const char* text, std::size_t size) {
    return QString::fromUtf8(text, static_cast<qsizetype>(size));
}

QImage drawn(const QString& name, qreal scale, Scheme scheme) {
    Theme::shared().setScheme(scheme);
    const QImage image = picturePixmap(name, {}, scale).toImage();
    Theme::shared().setScheme(Scheme::Light);
    return image;
}

// The share of its pixels that a picture visibly changes on a white or dark sheet.
double inked(const QImage& image, Scheme scheme) {
    const QColor ground = Theme::color(Theme::Color::Surface, scheme);
    QImage sheet(image.size(), QImage::Format_RGB32);
    sheet.fill(ground);
    QPainter painter(&sheet);
    QImage plain = image;
    plain.setDevicePixelRatio(1);
    painter.drawImage(0, 0, plain);
    painter.end();
    int changed = 0;
    for (int y = 0; y < sheet.height(); ++y)
        for (int x = 0; x < sheet.width(); ++x)
            if (std::abs(qGray(sheet.pixel(x, y)) - qGray(ground.rgb())) >= 8) ++changed;
    return static_cast<double>(changed) / (sheet.width() * sheet.height());
}

bool edgeIsClear(const QImage& image) {
    for (int i = 0; i < image.width(); ++i)
        if (qAlpha(image.pixel(i, 0)) + qAlpha(image.pixel(i, image.height() - 1)) > 0)
            return false;
    for (int i = 0; i < image.height(); ++i)
        if (qAlpha(image.pixel(0, i)) + qAlpha(image.pixel(image.width() - 1, i)) > 0) return false;
    return true;
}

TEST(Picture, EveryOneShowsSomethingInBothSchemesAndScales) {
    // btn_sec and option_no are little more than an outline; none is fainter than the latter at 1x.
    for (QString name : pictureNames()) {
        SCOPED_TRACE(name.toStdString());
        if (name.startsWith(u'0')) name.replace(0, 1, "50"_s);
        for (const qreal scale : {1.0, 2.0}) {
            for (const Scheme scheme : {Scheme::Light, Scheme::Dark}) {
                const QImage image = drawn(name, scale, scheme);
                EXPECT_EQ(image.size(), (QSizeF(pictureSize(name)) * scale).toSize());
                EXPECT_GT(inked(image, scheme), 0.015);
            }
            // The program's icon and what stands in the desktop's panel are the same in both.
            EXPECT_EQ(drawn(name, scale, Scheme::Light) == drawn(name, scale, Scheme::Dark),
                      name == "appicon"_s || name.contains(u'%'));
        }
        const bool onGrid = pictureSize(name) == QSize(24, 24);
        EXPECT_TRUE(!onGrid || edgeIsClear(drawn(name, 2, Scheme::Light))) << "cut off";
    }
}

TEST(Picture, EveryNameOfTheInterfaceIsThere) {
    QStringList names =
        ("wheader tab tab_on option_no option_yes option_a all ic_doc ic_video ic_music ic_archive "
         "ic_pic "
         "ic_other ic_lock ic_unlock Lock.png Lock_1.png Unlock.png addbg addbg_hover addbg_press "
         "locate "
         "preview file1.png trash scan_b_normal bottom_prograss.png animation_prograss.png"_s)
            .split(u' ');
    for (const char* button :
         {"btn_back", "btn_sec", "btn_pri", "window_close", "window_minimise", "window_zoom"})
        for (const char* state : {"", "_hover", "_press", "_disable"})
            names << QLatin1String(button) + QLatin1String(state);
    for (int i = 0; i <= 100; ++i)
        for (const char* form : {"%1", "%1-1.png", "%1%.png", "%1%-1.png", "%1_index", "%1_r_index",
                                 "%1_progress_bar"})
            names << QString::fromLatin1(form).arg(i);
    for (int i = 1; i <= 12; ++i) names << "loading_%1"_s.arg(i);
    for (const QString& name : names) EXPECT_FALSE(picture(name).isNull()) << name.toStdString();
}

TEST(Picture, AnUnknownNameIsLoggedAndGivesNothing) {
    const LogLines log;
    const QStringList names{
        ""_s,    "nothing"_s, "101%"_s,      "037"_s,        "%-1"_s,
        "-1"_s,  "1 "_s,      "loading_0"_s, "loading_13"_s, "../pictures/all"_s,
        "ALL"_s, "all.jpg"_s};
    for (const QString& name : names) {
        EXPECT_TRUE(picture(name).isNull()) << name.toStdString();
        EXPECT_TRUE(picturePixmap(name, {10, 10}).isNull()) << name.toStdString();
        EXPECT_TRUE(pictureSize(name).isEmpty()) << name.toStdString();
    }
    ASSERT_EQ(log.lines.size(), static_cast<std::size_t>(names.size()) * 2);
    EXPECT_EQ(log.lines[2], "picture: there is none named \"nothing\"");
}

TEST(Picture, KeepsItsShapeUnlessItIsMadeToStretch) {
    const QImage icon = picturePixmap("ic_video"_s, {72, 24}).toImage();
    for (int y = 0; y < 24; ++y)
        for (const int x : {0, 10, 23, 48, 60, 71})
            EXPECT_EQ(qAlpha(icon.pixel(x, y)), 0) << x << ' ' << y;
    EXPECT_GT(qAlpha(icon.pixel(36, 12)), 0);
    const QImage header = picturePixmap("wheader"_s, {1200, 62}).toImage();
    EXPECT_EQ(qAlpha(header.pixel(0, 61)) + qAlpha(header.pixel(1199, 0)), 510);

    const QPixmap fine = picture("ic_doc"_s).pixmap(QSize(24, 24), 2.0);
    EXPECT_EQ(fine.size(), QSize(48, 48));
    EXPECT_EQ(fine.devicePixelRatio(), 2.0);
    EXPECT_EQ(fine.toImage(), picturePixmap("ic_doc"_s, {}, 2.0).toImage());
    const QImage faint = picture("ic_doc"_s).pixmap(QSize(24, 24), 2.0, QIcon::Disabled).toImage();
    EXPECT_LT(qAlpha(faint.pixel(20, 6)), qAlpha(fine.toImage().pixel(20, 6)));
}

TEST(Picture, ANumberIsHowMuchIsFilled) {
    const auto accent = Theme::color(Theme::Color::Accent, Scheme::Light).rgb();
    const auto danger = Theme::color(Theme::Color::Danger, Scheme::Light).rgb();
    const auto colored = [](const QString& name, QRgb color) {
        const QImage bar = drawn(name, 1, Scheme::Light);
        int count = 0;
        for (int x = 0; x < bar.width(); ++x)
            count += bar.pixel(x, bar.height() / 2) == color ? 1 : 0;
        return count * 100.0 / bar.width();
    };
    EXPECT_EQ(colored("0"_s, accent), 0);
    EXPECT_GT(colored("1"_s, accent), 0);
    EXPECT_NEAR(colored("37"_s, accent), 37, 2);
    EXPECT_NEAR(colored("73_r_index"_s, danger), 73, 2);
    EXPECT_NEAR(colored("100-1.png"_s, danger), 100, 2);
    EXPECT_NE(drawn("37%"_s, 1, Scheme::Light), drawn("38%"_s, 1, Scheme::Light));
    EXPECT_NE(drawn("loading_1"_s, 1, Scheme::Light), drawn("loading_12"_s, 1, Scheme::Light));
}

// What of the disc differs by eye from a panel of that colour, at the size of a small panel.
TEST(Picture, TheDiscOfThePanelIsLegibleAtSixteenOnAnyPanel) {
    const auto luminance = [](QRgb color) {
        return (0.2126 * qRed(color) + 0.7152 * qGreen(color) + 0.0722 * qBlue(color)) / 255;
    };
    for (const char* panel : {"#ffffff", "#f2f2f2", "#808080", "#1e1e1e", "#000000"}) {
        for (const char* name : {"0%", "50%", "100%", "95%-1", "100%-1"}) {
            QImage sheet(16, 16, QImage::Format_RGB32);
            sheet.fill(QColor(QLatin1String(panel)));
            QPainter(&sheet).drawPixmap(0, 0, picturePixmap(QLatin1String(name), {16, 16}));
            const double ground = luminance(QColor(QLatin1String(panel)).rgb());
            double strongest = 0;
            for (int x = 0; x < 8; ++x)
                strongest = std::max(strongest, std::abs(luminance(sheet.pixel(x, 8)) - ground));
            EXPECT_GT(strongest, 0.3) << name << " on " << panel;
        }
    }
    const auto filled = [](const QString& name, QRgb color) {
        const QImage disc = picturePixmap(name, {64, 64}).toImage();
        int count = 0;
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 64; ++x) count += disc.pixel(x, y) == color ? 1 : 0;
        return count;
    };
    const auto accent = Theme::color(Theme::Color::Accent, Scheme::Light).rgb();
    const int whole = filled("100%"_s, accent);
    EXPECT_NEAR(filled("25%"_s, accent), whole / 4.0, whole * 0.02);
    EXPECT_NEAR(filled("75%"_s, accent), whole * 0.75, whole * 0.02);
    EXPECT_EQ(filled("95%-1"_s, accent), 0) << "amber at the level";
    EXPECT_GT(filled("95%-1"_s, Theme::color(Theme::Color::Warning, Scheme::Dark).rgb()),
              whole / 2);
}

TEST(PictureFile, AllAreBuiltInAndNameTheirColours) {
    const QDir folder(QStringLiteral(ORRINVALE_SOURCE_DIR "/resources/pictures"));
    QStringList files = folder.entryList({"*.svg"_s});
    for (QString& file : files) file.chop(4);
    // The program's icon lies with the desktop's files and has colours of its own.
    QStringList names = files + QStringList{"appicon"_s};
    names.sort();
    EXPECT_EQ(PictureFile::names(), names);
    static const QRegularExpression fixedColor(
        "(fill|stroke|stop-color)=\"(?!none|url\\(#)[^\"]*\""_s);
    // The marks of the memory's figures have the colours of their slices, which are the same on
    // both.
    const QStringList slices{"active"_s, "free"_s, "inactive"_s, "wired"_s};
    for (const QString& name : files) {
        if (slices.contains(name)) continue;
        QFile file(folder.filePath(name + ".svg"_s));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(file.readAll());
        for (auto match = fixedColor.globalMatch(text); match.hasNext();) {
            const QString value = match.next().captured();
            const QByteArray light = PictureFile::colored(value.toUtf8(), Scheme::Light);
            EXPECT_NE(light, value.toUtf8()) << name.toStdString() << ": " << value.toStdString();
        }
    }
}

// The pictures that a source names: the first argument of picture() and its like, and whatever ends
// in .png. A place for a number counts as 1.
QStringList namedIn(const QString& source) {
    static const QRegularExpression literal(
        "\\bpicture(?:Pixmap|Size)?\\(\\s*(?:Q\\w+\\()?u?\"([^\"]+)\"|\"([^\"/*]+\\.png)\""_s);
    QStringList names;
    for (auto match = literal.globalMatch(source); match.hasNext();) {
        const auto found = match.next();
        QString name = found.captured(1).isEmpty() ? found.captured(2) : found.captured(1);
        names << name.replace("%1"_s, "1"_s).replace("{}"_s, "1"_s);
    }
    return names;
}

TEST(Picture, EveryNameInTheSourcesIsThere) {
    ASSERT_EQ(
        namedIn(
            "a(picture(QStringLiteral(\"x\")), QStringLiteral(\"Lock.png\")) pictureSize( u\"%1%-1\"_qs"_s),
        (QStringList{"x"_s, "Lock.png"_s, "1%-1"_s}));
    int sources = 0;
    QDirIterator files(QStringLiteral(ORRINVALE_SOURCE_DIR "/src/ui"), {"*.cpp"_s, "*.h"_s},
                       QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (file.fileName().contains("/kit/look/"_s)) continue;  // there names are taken apart
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        ++sources;
        for (const QString& name : namedIn(QString::fromUtf8(file.readAll())))
            EXPECT_FALSE(picture(name).isNull())
                << file.fileName().toStdString() << ": " << name.toStdString();
    }
    if (sources == 0) GTEST_SKIP() << "no sources beside the looks themselves";
}

}  // namespace
}  // namespace orrinvale
