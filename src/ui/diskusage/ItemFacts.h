// ItemFacts: what stands behind the last column: facts and a look into the chosen file, or what is
// left out of a folder.
#pragma once

#include <QIcon>
#include <QTimer>
#include <QWidget>
#include <memory>
#include <stop_token>
#include <string>

#include "engine/diskusage/TickedCount.h"
#include "ui/diskusage/FSNodeColumn.h"

class QLabel;

namespace orrinvale {

class FileSystem;
struct PreviewContent;

/// What is read is read aside, and dropped where another file is shown by then. Main thread only.
class ItemFacts final : public QWidget {
    Q_OBJECT
public:
    /// The file system outlives it and its last question.
    explicit ItemFacts(const FileSystem& files, QWidget* parent = nullptr);
    ~ItemFacts() override;

    void showFile(const FSNode& node, const QIcon& icon);
    void showLeftOut(const FSNode& folder, std::uint64_t limit);
    /// Nothing is chosen.
    void clear();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void ask();
    void showContent(const PreviewContent& content);
    void showGain(const TickedCount& counted);
    void setLines();

    const FileSystem& m_files;
    std::string m_path;                       // of the file on show; empty for anything else
    std::vector<TickedEntry> m_asked;         // that file, until it is asked about
    std::shared_ptr<UsageCounts> m_counting;  // of the question on its way, or of the last one
    std::stop_source m_stop;                  // of the last look
    int m_waiting = 0;  // questions that are not answered, on disks that hang perhaps
    QTimer m_timer;     // who holds an arrow key down sees many files for a moment
    QString m_size, m_kind, m_gain;
    QLabel* m_picture;
    QLabel* m_text;
    QLabel* m_name;
    QLabel* m_facts;
};

}  // namespace orrinvale
