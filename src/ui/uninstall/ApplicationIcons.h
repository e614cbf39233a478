// ApplicationIcons: the pictures of applications, by a name of the icon theme or by path.
#pragma once

#include <QHash>
#include <QIcon>
#include <QObject>
#include <QTimer>
#include <deque>
#include <string>

namespace orrinvale {

class FileSystem;

/// A picture is looked for once somebody has asked for it, one a turn of the event loop; files that
/// a theme does not vouch for are read aside, one at a time. Until then, and where there is
/// none, the program's own picture of an application stands in. Main thread only.
class ApplicationIcons final : public QObject {
    Q_OBJECT
public:
    /// The files outlive all reading.
    explicit ApplicationIcons(const FileSystem& files, QObject* parent = nullptr);

    /// `name`: of the theme, or an absolute path in exact bytes; may be empty.
    [[nodiscard]] QIcon icon(const std::string& name);
    /// For one application that somebody looks at: a picture of a theme in any size, drawn when it
    /// is painted.
    [[nodiscard]] QIcon largeIcon(const std::string& name);

Q_SIGNALS:
    /// Pictures have come.
    void changed();

private:
    void takeNext();
    void readNextFile();
    void keep(const std::string& name, const QIcon& icon);

    const FileSystem& m_system;
    QHash<QByteArray, QIcon> m_known;
    std::deque<std::string> m_wanted;
    std::deque<std::string> m_files;  // that are to be read, by path
    bool m_isReading = false;
    QTimer m_next;
};

}  // namespace orrinvale
