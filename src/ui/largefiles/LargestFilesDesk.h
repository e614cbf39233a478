// LargestFilesDesk: fills the list of largest files and follows its filters and titles. The page
// says which tree, when it changed, and what a tick comes to.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "ui/largefiles/LargestFilesModel.h"

class QAction;
class QMenu;

namespace orrinvale {

class LargestFilesView;

/// Gathers the files of a tree in turns of some milliseconds, when somebody looks at the list, and
/// anew when the tree has changed. Main thread only.
class LargestFilesDesk final : public QObject {
    Q_OBJECT
public:
    LargestFilesDesk(LargestFilesView& view, LargestFilesModel::IconSource icons,
                     QObject* parent = nullptr);

    /// A tree that is scanned to its end, whose disks are asked aside whether they note openings;
    /// null while there is none.
    void setTree(std::shared_ptr<FileNodeTree> tree);
    void setShown(bool isShown);
    /// The tree or its ticks have changed. What was taken out leaves the list in batches, as often
    /// as the view can bear.
    void refresh();
    /// A removal has ended: what is said beside the list is made true.
    void settle();

    /// What stands in the view; null before.
    [[nodiscard]] const LargestFiles* list() const { return m_list.get(); }
    /// Bytes of what is ticked in it; nothing while they are being counted.
    [[nodiscard]] std::optional<std::uint64_t> tickedBytes() const;
    /// Counts them now, which takes some 50 ms for a million rows.
    void finishCounting();

Q_SIGNALS:
    void boxClicked(orrinvale::FileNode* node);
    void headerClicked(bool isTicking);
    void changed();  ///< what is listed, or how much of it is ticked

private:
    void takeTurn();
    void start(bool isAnew);
    void startRest();
    void askOfOpenings(std::chrono::milliseconds patience);
    void showList();
    bool countTicked(const QElapsedTimer& clock, qint64 milliseconds);
    void countAnew();
    [[nodiscard]] bool mayCount() const;
    void showHeaderBox();
    void showNote();
    void sortBy(int column);
    void showKindMenu();
    void showAgeMenu();
    QMenu* makeMenu(const char* name);
    void showFilters();
    void choose(FileWish wish);

    LargestFilesView& m_view;
    LargestFilesModel m_model;
    std::shared_ptr<FileNodeTree> m_tree;
    std::shared_ptr<LargestFiles> m_list;
    std::unique_ptr<LargestFiles> m_building;         // until it is complete
    bool m_isRest = false;                            // what is built is the rest of what is seen
    std::shared_ptr<const OpeningInquiry> m_inquiry;  // of the tree
    FileWish m_wish;
    int m_age = 0;  // which entry of the menu of ages holds
    int m_sortColumn = LargestFilesModel::Size;
    bool m_isShown = false;
    bool m_isAnew = true;       // what is built is another list than the one that is seen
    bool m_isOutdated = false;  // a disk has answered since the list was made
    std::size_t m_counted = 0, m_ordered = 0;
    std::uint64_t m_ticked = 0, m_tickedBytes = 0;
    bool m_isCounted = false;  // these are of the rows and ticks as they are
    std::uint64_t m_countedTicked = 0, m_countedBytes = 0;  // so far
    QTimer m_timer;
    QTimer m_pause;  // while it runs what was taken out stays to be seen
};

}  // namespace orrinvale
