// orrinvale-icons: draws the program's icon as a PNG of each size that desktops ask for. It runs
// while building and is not installed; it needs neither a display nor fonts.
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QString>
#include <QSvgRenderer>
#include <cstdio>

namespace orrinvale {
namespace {

bool drawIcon(const QString& drawing, int pixels, const QString& target) {
    QSvgRenderer renderer(drawing);
    if (!renderer.isValid()) return false;
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter);
    painter.end();
    return image.save(target, "PNG", 0);
}

}  // namespace
}  // namespace orrinvale

// Triples of a drawing, a number of pixels and the file to write.
int main(int argc, char** argv) {
    if (argc < 4 || argc % 3 != 1) {
        std::fputs("usage: orrinvale-icons DRAWING PIXELS TARGET [DRAWING PIXELS TARGET...]\n",
                   stderr);
        return 2;
    }
    for (int i = 1; i < argc; i += 3) {
        const int pixels = QString::fromLocal8Bit(argv[i + 1]).toInt();
        const QString target = QFile::decodeName(argv[i + 2]);
        if (pixels > 0 && orrinvale::drawIcon(QFile::decodeName(argv[i]), pixels, target)) continue;
        std::fprintf(stderr, "orrinvale-icons: could not draw %s\n", argv[i + 2]);
        return 1;
    }
    return 0;
}
