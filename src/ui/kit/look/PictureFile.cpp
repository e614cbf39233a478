// Loading and colouring of the drawings in resources/pictures. Read picture.cpp for what becomes of
// them.
#include "ui/kit/look/PictureFile.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QPainter>
#include <QSvgRenderer>
#include <array>
#include <memory>

// The initialiser of the built-in files stands outside every namespace; in a static library nobody
// else calls it.
static void loadPictures() { Q_INIT_RESOURCE(pictures); }

namespace orrinvale {
namespace {

using Color = Theme::Color;

constexpr std::array<std::pair<const char*, Color>, 21> colorNames{{
    {"window", Color::Window},
    {"surface", Color::Surface},
    {"raised", Color::SurfaceRaised},
    {"hover", Color::Hover},
    {"pressed", Color::Pressed},
    {"selection", Color::Selection},
    {"line", Color::Line},
    {"text", Color::Text},
    {"secondary", Color::TextSecondary},
    {"disabled", Color::TextDisabled},
    {"on-accent", Color::TextOnAccent},
    {"accent", Color::Accent},
    {"accent-hover", Color::AccentHover},
    {"accent-pressed", Color::AccentPressed},
    {"danger", Color::Danger},
    {"danger-hover", Color::DangerHover},
    {"danger-pressed", Color::DangerPressed},
    {"success", Color::Success},
    {"warning", Color::Warning},
    {"focus", Color::FocusRing},
    {"outline", Color::Outline},
}};

QString filePath(const QString& name) {
    return QStringLiteral(":/pictures/") + name + QStringLiteral(".svg");
}

// Parsed once for each scheme: a list that scrolls draws the same few pictures thousands of times.
QSvgRenderer* renderer(const QString& name, Theme::Scheme scheme) {
    static QHash<std::pair<QString, int>, std::shared_ptr<QSvgRenderer>> loaded;
    const auto key = std::make_pair(name, static_cast<int>(scheme));
    if (const auto found = loaded.constFind(key); found != loaded.cend()) return found->get();
    loadPictures();
    QFile file(filePath(name));
    if (name.contains(u'/') || !file.open(QIODevice::ReadOnly)) return nullptr;
    const QByteArray text = file.readAll();
    auto made = std::make_shared<QSvgRenderer>(PictureFile::colored(text, scheme));
    const bool stretch = text.contains("preserveAspectRatio=\"none\"");
    made->setAspectRatioMode(stretch ? Qt::IgnoreAspectRatio : Qt::KeepAspectRatio);
    return loaded.insert(key, made)->get();
}

}  // namespace

// Read once: each button asks which looks of its picture there are.
QStringList PictureFile::names() {
    static const QStringList all = [] {
        loadPictures();
        QStringList names =
            QDir(QStringLiteral(":/pictures")).entryList({QStringLiteral("*.svg")}, QDir::Files);
        for (QString& name : names) name.chop(4);
        names.sort();
        return names;
    }();
    return all;
}

QSize PictureFile::size(const QString& name) {
    const QSvgRenderer* file = renderer(name, Theme::Scheme::Light);
    return file == nullptr ? QSize() : file->defaultSize();
}

void PictureFile::draw(QPainter& painter, const QRectF& rectangle, const QString& name,
                       Theme::Scheme scheme) {
    if (QSvgRenderer* file = renderer(name, scheme)) file->render(&painter, rectangle);
}

QByteArray PictureFile::colored(QByteArray text, Theme::Scheme scheme) {
    for (const auto& [name, role] : colorNames) {
        const QByteArray token = "\"#" + QByteArray(name) + '"';
        const QByteArray color = '"' + Theme::color(role, scheme).name().toLatin1() + '"';
        text.replace(token, color);
    }
    return text;
}

}  // namespace orrinvale
