// From a name to a picture. The drawings themselves are files (PictureFile.h) or code
// (DrawnPicture.h).
#include "ui/kit/look/picture.h"

#include <fmt/format.h>

#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>

#include "engine/base/Log.h"
#include "ui/kit/look/DrawnPicture.h"
#include "ui/kit/look/PictureFile.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

// The interface writes some names with the extension that its pictures had elsewhere. A dot may
// also be part of a name.
QString plainName(QString name) {
    for (const char* extension : {".png", ".svg", ".icns", ".tiff"})
        if (name.endsWith(QLatin1String(extension))) name.chop(QLatin1String(extension).size());
    return name;
}

QSize ownSize(const QString& name) {
    if (const auto drawn = DrawnPicture::named(name)) return drawn->size();
    return PictureFile::size(name);
}

void draw(QPainter& painter, const QRectF& rectangle, const QString& name, QIcon::Mode mode) {
    const Theme::Scheme scheme = Theme::shared().scheme();
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (mode == QIcon::Disabled) painter.setOpacity(painter.opacity() * 0.4);
    if (const auto drawn = DrawnPicture::named(name)) drawn->draw(painter, rectangle, scheme);
    else PictureFile::draw(painter, rectangle, name, scheme);
    painter.restore();
}

// The size is in the pixels of the screen.
QPixmap rendered(const QString& name, QSize pixels, QIcon::Mode mode) {
    if (pixels.isEmpty()) return {};
    const QString key = QStringLiteral("orrinvale/%1/%2x%3/%4/%5")
                            .arg(name)
                            .arg(pixels.width())
                            .arg(pixels.height())
                            .arg(mode == QIcon::Disabled ? 1 : 0)
                            .arg(static_cast<int>(Theme::shared().scheme()));
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap)) return pixmap;
    pixmap = QPixmap(pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    draw(painter, QRectF(QPointF(0, 0), QSizeF(pixels)), name, mode);
    painter.end();
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

// Holds the name alone: colours and pixels are made when they are asked for, so that an icon
// outlives a change of scheme or a move to another screen.
class PictureEngine final : public QIconEngine {
public:
    explicit PictureEngine(QString name) : m_name(std::move(name)) {}

    void paint(QPainter* painter, const QRect& rectangle, QIcon::Mode mode, QIcon::State) override {
        draw(*painter, rectangle, m_name, mode);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override {
        return rendered(m_name, size, mode);
    }
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State, qreal) override {
        return rendered(m_name, size, mode);
    }
    QSize actualSize(const QSize& size, QIcon::Mode, QIcon::State) override { return size; }
    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override { return {ownSize(m_name)}; }
    QString key() const override { return QStringLiteral("orrinvale-picture"); }
    QString iconName() override { return m_name; }
    QIconEngine* clone() const override { return new PictureEngine(m_name); }

private:
    QString m_name;
};

}  // namespace

QIcon picture(const QString& name) {
    const QString plain = plainName(name);
    if (ownSize(plain).isEmpty()) {
        Log::line(fmt::format("picture: there is none named \"{}\"", name.toStdString()));
        return {};
    }
    return QIcon(new PictureEngine(plain));
}

QPixmap picturePixmap(const QString& name, QSize size, qreal scale) {
    const QString plain = plainName(name);
    const QSize own = ownSize(plain);
    if (own.isEmpty()) return picture(name).pixmap(size);
    const QSize points = size.isEmpty() ? own : size;
    QPixmap pixmap = rendered(plain, (QSizeF(points) * scale).toSize(), QIcon::Normal);
    pixmap.setDevicePixelRatio(scale);
    return pixmap;
}

QSize pictureSize(const QString& name) { return ownSize(plainName(name)); }

QStringList pictureNames() {
    QStringList names = PictureFile::names() + DrawnPicture::names();
    names.sort();
    return names;
}

}  // namespace orrinvale
