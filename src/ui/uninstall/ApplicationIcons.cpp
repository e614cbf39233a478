// A theme is asked on the main thread, which the toolkit demands; a picture is drawn here already
// at the size of rows, so that a list that is painted finds it drawn.
#include "ui/uninstall/ApplicationIcons.h"

#include <QBuffer>
#include <QGuiApplication>
#include <QImageReader>
#include <span>
#include <utility>

#include "platform/files.h"
#include "services/foundation/runAside.h"
#include "ui/kit/lists/RowDelegate.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr int largeSide = 200;                        // of the details
constexpr std::uint64_t mostBytes = 4 * 1024 * 1024;  // of a picture that somebody put into a home
constexpr int mostIconPixels = 4096;                  // of one side

QIcon standIn() { return picture(QStringLiteral("ic_app")); }

// Neither a pipe nor a device may hold the reader up, and no picture may fill the memory.
QByteArray contentOf(const FileSystem& files, const std::string& path) {
    ReadState state;
    const auto file = files.openFile(FileSystem::noParent, path.c_str(), Links::Follow, state);
    const auto seen = file ? files.attributes(file->get()) : tl::unexpected(file.error());
    if (!seen || seen->type != FileType::Regular || seen->size > mostBytes) return {};
    QByteArray content(qsizetype(seen->size), '\0');
    const auto read = files.read(
        file->get(), std::as_writable_bytes(std::span(content.data(), size_t(content.size()))), 0,
        state);
    content.resize(read ? qsizetype(*read) : 0);
    return content;
}

QImage imageAt(const FileSystem& files, const std::string& path) {
    QByteArray content = contentOf(files, path);
    if (content.isEmpty()) return {};
    QBuffer buffer(&content);
    QImageReader reader(&buffer);
    const QSize size = reader.size();
    if (!size.isValid() || size.width() > mostIconPixels || size.height() > mostIconPixels)
        return {};
    if (size.width() > largeSide || size.height() > largeSide)
        reader.setScaledSize(size.scaled(largeSide, largeSide, Qt::KeepAspectRatio));
    return reader.read();
}

}  // namespace

ApplicationIcons::ApplicationIcons(const FileSystem& files, QObject* parent)
    : QObject(parent), m_system(files) {
    m_next.setSingleShot(true);
    connect(&m_next, &QTimer::timeout, this, &ApplicationIcons::takeNext);
}

QIcon ApplicationIcons::icon(const std::string& name) {
    const QByteArray key = QByteArray::fromStdString(name);
    const auto known = m_known.constFind(key);
    if (known != m_known.constEnd()) return *known;
    m_known.insert(key, standIn());
    if (name.empty()) return standIn();
    m_wanted.push_back(name);
    if (!m_next.isActive()) m_next.start();
    return standIn();
}

void ApplicationIcons::takeNext() {
    const std::string name = std::move(m_wanted.front());
    m_wanted.pop_front();
    if (!m_wanted.empty()) m_next.start();
    if (name.front() == '/') {
        m_files.push_back(name);
        readNextFile();
        return;
    }
    const QIcon found = QIcon::fromTheme(QString::fromStdString(name));
    if (found.isNull()) return;
    constexpr QSize row(RowDelegate::largeIconSide, RowDelegate::largeIconSide);
    keep(name, QIcon(found.pixmap(row, qGuiApp->devicePixelRatio())));
}

QIcon ApplicationIcons::largeIcon(const std::string& name) {
    const QIcon found = name.empty() || name.front() == '/'
                            ? QIcon()
                            : QIcon::fromTheme(QString::fromStdString(name));
    return found.isNull() ? icon(name) : found;
}

void ApplicationIcons::readNextFile() {
    if (m_files.empty() || std::exchange(m_isReading, true)) return;
    const std::string path = std::move(m_files.front());
    m_files.pop_front();
    const auto worker = runAside(
        this, "picture of an application",
        [&files = m_system, path] { return imageAt(files, path); },
        [this, path](const QImage& image) {
            if (!image.isNull()) keep(path, QIcon(QPixmap::fromImage(image)));
            m_isReading = false;
            readNextFile();
        });
    if (worker == nullptr) m_isReading = false;
}

void ApplicationIcons::keep(const std::string& name, const QIcon& icon) {
    m_known.insert(QByteArray::fromStdString(name), icon);
    Q_EMIT changed();
}

}  // namespace orrinvale
