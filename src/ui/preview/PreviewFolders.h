// PreviewFolders: where all copies lie, in full, each to be opened.
#pragma once

#include <QWidget>
#include <cstddef>
#include <string>
#include <vector>

class QLabel;
class QVBoxLayout;

namespace orrinvale {

class FolderButton;

/// One button a copy, the longest paths over several lines. Main thread only.
class PreviewFolders final : public QWidget {
    Q_OBJECT
public:
    explicit PreviewFolders(QWidget* parent = nullptr);

    /// The copies themselves in exact bytes, of `total`; the ones that are shown stand out.
    void setPaths(const std::vector<std::string>& paths, std::size_t total,
                  const std::vector<std::string>& shown);

Q_SIGNALS:
    /// The folder of this copy is to be opened, with the copy chosen in it.
    void folderWanted(const std::string& path);

private:
    [[nodiscard]] FolderButton& button(std::size_t index);

    QLabel* m_title;
    QLabel* m_more;
    QVBoxLayout* m_column;
    std::vector<FolderButton*> m_buttons;  // those beyond the copies are hidden
};

}  // namespace orrinvale
