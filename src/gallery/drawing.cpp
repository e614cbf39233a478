#include "gallery/drawing.h"

#include <QApplication>
#include <QBuffer>
#include <QDir>
#include <QDragEnterEvent>
#include <QElapsedTimer>
#include <QFile>
#include <QImageWriter>
#include <QMimeData>
#include <QUrl>
#include <QWidget>
#include <cstdio>

namespace orrinvale {
namespace {

QByteArray pngOf(const QPixmap& picture) {
    QImage image = picture.toImage();
    // Three bytes a pixel instead of four where nothing shines through.
    if (!image.hasAlphaChannel()) image = image.convertToFormat(QImage::Format_RGB888);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "png");
    writer.setCompression(100);
    writer.write(image);
    return bytes;
}

bool holds(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.readAll() == bytes;
}

}  // namespace

bool waitFor(const char* what, const std::function<bool()>& condition) {
    constexpr qint64 longest = 10'000;
    constexpr int slice = 20;
    QElapsedTimer since;
    since.start();
    while (!condition()) {
        if (since.elapsed() > longest) {
            std::fprintf(stderr, "orrinvale-gallery: waited in vain for %s\n", what);
            return false;
        }
        QApplication::processEvents(QEventLoop::WaitForMoreEvents, slice);
    }
    return true;
}

void hoverWithFolder(QWidget& widget, bool isOver) {
    if (!isOver) {
        QDragLeaveEvent leave;
        QApplication::sendEvent(&widget, &leave);
        return;
    }
    QMimeData dragged;
    dragged.setUrls({QUrl::fromLocalFile(QDir::tempPath())});
    QDragEnterEvent enter(widget.rect().center(), Qt::CopyAction, &dragged, Qt::LeftButton,
                          Qt::NoModifier);
    QApplication::sendEvent(&widget, &enter);
}

bool PictureFolder::save(const QString& name, const QPixmap& picture) const {
    const QString path = QDir(m_folder).filePath(name + m_suffix + QStringLiteral(".png"));
    const QByteArray bytes = pngOf(picture);
    if (holds(path, bytes)) return true;
    QFile file(path);
    const bool isWritten = !bytes.isEmpty() && QDir().mkpath(m_folder) &&
                           file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() &&
                           file.flush();
    if (!isWritten)
        std::fprintf(stderr, "orrinvale-gallery: %s can not be written\n", qPrintable(path));
    return isWritten;
}

}  // namespace orrinvale
