// FileIcons: the desktop's picture for a kind of file, without a look into any file.
#pragma once

#include <QHash>
#include <QIcon>
#include <QString>
#include <string>

#include "engine/base/IconRequest.h"

namespace orrinvale {

/// Answers from the name alone: a search lists millions of files, and a picture must not cost a
/// read. Where the desktop has no icon theme the program's own pictures stand in. Keeps one picture
/// a type. Main thread only.
class FileIcons final {
public:
    [[nodiscard]] QIcon icon(const IconRequest& request);

private:
    [[nodiscard]] QIcon iconOfName(const QString& name);

    QHash<QString, QIcon> m_bySuffix;
};

}  // namespace orrinvale
