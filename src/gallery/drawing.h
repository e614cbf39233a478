// drawing: pictures into files, and waiting for what a picture shows.
#pragma once

#include <QPixmap>
#include <QString>
#include <functional>

class QWidget;

namespace orrinvale {

/// Runs the event loop until the condition holds. False, with a line on standard error, when that
/// takes longer than ten seconds.
bool waitFor(const char* what, const std::function<bool()>& condition);

/// Lets a drag of a folder hover over the widget; ends with a drag that leaves it.
void hoverWithFolder(QWidget& widget, bool isOver);

/// Writes PNGs into one folder, under the names of what they show.
class PictureFolder final {
public:
    /// `suffix` stands before the extension of every file: "-dark", "@2x".
    PictureFolder(QString folder, QString suffix)
        : m_folder(std::move(folder)), m_suffix(std::move(suffix)) {}

    /// A file that exists with the same bytes is left alone. False, with a line on standard error,
    /// when it can not be written.
    bool save(const QString& name, const QPixmap& picture) const;

private:
    QString m_folder;
    QString m_suffix;
};

}  // namespace orrinvale
