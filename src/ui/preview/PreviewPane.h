// PreviewPane: a look at what is chosen in a list, beside another copy of it, before one decides.
// PreviewHost.h gives it its place beside a list.
#pragma once

#include <QBoxLayout>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ui/kit/controls/Panel.h"
#include "ui/preview/PreviewZoom.h"

class QLabel;

namespace orrinvale {

class FileSystem;
class PreviewFolders;
class PreviewLook;

/// What is chosen. Paths are exact bytes.
struct PreviewSubject {
    static constexpr std::size_t mostPaths = 100;  ///< that the pane lists

    std::string chosen;              ///< empty: nothing is
    std::string beside;              ///< a copy of it; empty where there is none to compare with
    std::vector<std::string> paths;  ///< of all copies, the first mostPaths of them
    std::size_t total = 0;           ///< how many copies there are

    friend bool operator==(const PreviewSubject&, const PreviewSubject&) = default;
};

/// Reads only while it is to be seen. Main thread only.
class PreviewPane final : public Panel {
    Q_OBJECT
public:
    explicit PreviewPane(QWidget* parent = nullptr);

    /// What it works with; before the first subject. The file system outlives what it reads.
    void start(const FileSystem& files, std::function<void(const std::string& path)> reveal);

    /// Takes the place of what was chosen before. Of the same nothing changes, nor its zoom; the
    /// same files are not read again.
    void choose(const PreviewSubject& subject);
    /// What is shown may have changed on the disk, as when a person comes back from another window.
    void lookAgain();

    /// Beside a list its parts stand one below the other, below a list beside each other.
    void setDirection(QBoxLayout::Direction direction);

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void showSubject();
    void compare();
    void scrollAlong(PreviewLook& other, int value);

    PreviewZoom m_zoom;
    PreviewSubject m_subject;
    std::function<void(const std::string& path)> m_reveal;
    bool m_scrolls = false;  // one is being moved after the other
    QBoxLayout* m_layout;
    PreviewLook* m_first;
    PreviewLook* m_second;
    QLabel* m_comparison;
    PreviewFolders* m_folders;
};

}  // namespace orrinvale
