// LevelModel: a TickModel of rows within rows that may grow and move while it is shown. An index
// holds its row and a pointer to its level.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "ui/kit/lists/TickModel.h"

namespace orrinvale {

/// For each level that was opened it keeps a list of pointers to the rows shown, and reads
/// everything else from the rows. What a view sees of the rows' order changes only with refresh().
/// Rows outlive the model, or are replaced before. Main thread only.
template <class Row> class LevelModel : public TickModelOf<Row> {
public:
    /// How many rows of a level are shown at first, and come with each showMore().
    static constexpr std::size_t rowsAtOnce = 5000;

    using TickModelOf<Row>::TickModelOf;

    /// Null for an index of no row.
    [[nodiscard]] Row* node(const QModelIndex& index) const {
        if (!index.isValid()) return nullptr;
        const auto& rows = levelOf(index)->rows;
        const auto row = std::size_t(index.row());
        return row < rows.size() ? rows[row] : nullptr;
    }

    /// Brings the rows of the open levels into the order of this moment, and what a view remembers
    /// of them with it. A row that is no longer among those shown is closed.
    void refresh() override {
        if (!m_top) return;
        if (!isStale(*m_top)) return TickModel::refresh();
        Q_EMIT this->layoutAboutToBeChanged();
        const std::vector<Remembered> remembered = rememberedRows();
        refreshStale(*m_top);
        placeRemembered(remembered);
        Q_EMIT this->layoutChanged();
    }

    /// A level that grows meanwhile gets its new rows at the next refresh, and does not jump under
    /// a person who scrolls.
    [[nodiscard]] bool hasMore(const QModelIndex& parent) const override {
        const Level* const level = levelBelow(parent);
        return level != nullptr && level->rows.size() >= level->wanted &&
               level->rows.size() < countBelow(level->opened);
    }
    void showMore(const QModelIndex& parent) override {
        if (!hasMore(parent)) return;
        Level& level = *levelBelow(parent);
        level.wanted = level.rows.size() + rowsAtOnce;
        level.revision = neverRead;
        refresh();
    }

    [[nodiscard]] QModelIndex index(int row, int column,
                                    const QModelIndex& parent = {}) const override {
        Level* const level = levelBelow(parent);
        const bool isThere = level != nullptr && row >= 0 && std::size_t(row) < level->rows.size();
        return isThere && column >= 0 && column < this->columnCount()
                   ? this->createIndex(row, column, level)
                   : QModelIndex();
    }
    [[nodiscard]] QModelIndex parent(const QModelIndex& child) const override {
        if (!child.isValid()) return {};
        const Level* const level = levelOf(child);
        return level->above != nullptr ? this->createIndex(level->row, 0, level->above)
                                       : QModelIndex();
    }
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override {
        const Level* const level = levelBelow(parent);
        return level != nullptr ? int(level->rows.size()) : 0;
    }
    [[nodiscard]] bool hasChildren(const QModelIndex& parent = {}) const override {
        if (!parent.isValid()) return m_top && !m_top->rows.empty();
        const Row* const shown = node(parent);
        return shown != nullptr && parent.column() == 0 && isOpenable(*shown);
    }

protected:
    /// The first rows below a row, or of the top where it is null, in the order in which they are
    /// shown; more than `wanted` are cut off.
    [[nodiscard]] virtual std::vector<Row*> rowsBelow(Row* above, std::size_t wanted) const = 0;
    [[nodiscard]] virtual std::size_t countBelow(Row* above) const = 0;
    /// Another number when the rows of any level are others, or in another order.
    [[nodiscard]] virtual std::uint64_t revision() const = 0;
    [[nodiscard]] virtual bool isOpenable(const Row& /*row*/) const { return false; }
    /// A level that is closed keeps its old rows until it is opened: nobody sees them, and there
    /// may be many.
    [[nodiscard]] virtual bool isOpen(const Row& /*row*/) const { return true; }
    virtual void close(Row& /*row*/) {}

    /// Runs what replaces all rows, and shows the new top, or nothing.
    template <class Change> void restart(bool hasRows, Change change) {
        this->beginResetModel();
        change();
        m_top.reset();
        if (hasRows) {
            m_top = std::make_unique<Level>();
            fill(*m_top);
        }
        this->endResetModel();
        m_closed.clear();
    }

    [[nodiscard]] Row* rowAt(const QModelIndex& index) const final { return node(index); }

private:
    static constexpr std::uint64_t neverRead = ~std::uint64_t{0};

    struct Level {
        Row* opened = nullptr;   // the row that it lies below; null for the top
        Level* above = nullptr;  // null for the top
        int row = 0;             // of `opened`, in the level above
        std::size_t wanted = rowsAtOnce;
        std::uint64_t revision = neverRead;  // when the rows were read
        std::vector<Row*> rows;
        std::unordered_map<const Row*, std::unique_ptr<Level>> below;
    };
    // A persistent index: a view keeps the open, the current and the selected rows by them.
    struct Remembered {
        QModelIndex index;
        Level* level = nullptr;
        const Row* row = nullptr;
    };

    static Level* levelOf(const QModelIndex& index) {
        return static_cast<Level*>(index.internalPointer());
    }

    // Made when a view first asks what is below a row.
    Level* levelBelow(const QModelIndex& parent) const {
        if (!parent.isValid()) return m_top.get();
        Row* const opened = node(parent);
        if (opened == nullptr || parent.column() != 0 || !isOpenable(*opened)) return nullptr;
        Level* const above = levelOf(parent);
        std::unique_ptr<Level>& level = above->below[opened];
        if (!level) {
            level = std::make_unique<Level>();
            level->opened = opened;
            level->above = above;
            level->row = parent.row();
            fill(*level);
        }
        return level.get();
    }

    void fill(Level& level) const {
        level.rows = rowsBelow(level.opened, level.wanted);
        if (level.rows.size() > level.wanted) level.rows.resize(level.wanted);
        level.revision = revision();
    }

    bool isStale(const Level& level) const {
        if (level.revision != revision()) return true;
        return std::ranges::any_of(level.below, [this](const auto& below) {
            return isOpen(*below.second->opened) && isStale(*below.second);
        });
    }

    void refreshStale(Level& level) {
        if (level.revision != revision()) fill(level);
        if (level.below.empty()) return;
        const auto rows =
            placesIn(level, [&](const Row* row) { return level.below.contains(row); });
        for (auto below = level.below.begin(); below != level.below.end();) {
            const auto found = rows.find(below->first);
            if (found == rows.end()) {
                closeLevel(std::move(below->second));
                below = level.below.erase(below);
                continue;
            }
            below->second->row = found->second;
            if (isOpen(*below->second->opened)) refreshStale(*below->second);
            ++below;
        }
    }

    void closeLevel(std::unique_ptr<Level> level) {
        close(*level->opened);
        level->rows = {};
        for (auto& [row, below] : level->below) closeLevel(std::move(below));
        level->below.clear();
        m_closed.push_back(std::move(level));
    }

    template <class Wanted>
    std::unordered_map<const Row*, int> placesIn(const Level& level, Wanted isWanted) const {
        std::unordered_map<const Row*, int> places;
        for (std::size_t row = 0; row < level.rows.size(); ++row)
            if (isWanted(level.rows[row])) places.emplace(level.rows[row], int(row));
        return places;
    }

    std::vector<Remembered> rememberedRows() const {
        std::vector<Remembered> remembered;
        for (const QModelIndex& index : this->persistentIndexList())
            remembered.push_back({index, levelOf(index), node(index)});
        return remembered;
    }

    void placeRemembered(const std::vector<Remembered>& remembered) {
        std::unordered_map<const Level*, std::unordered_map<const Row*, int>> placesOf;
        QModelIndexList before, after;
        for (const auto& [index, level, row] : remembered) {
            auto& places = placesOf[level];
            if (places.empty()) places = placesIn(*level, [](const Row*) { return true; });
            const auto found = places.find(row);
            before.push_back(index);
            after.push_back(found == places.end()
                                ? QModelIndex()
                                : this->createIndex(found->second, index.column(), level));
        }
        this->changePersistentIndexList(before, after);
    }

    std::unique_ptr<Level> m_top;
    // A view may hold indexes of a level until it lays its rows out anew, so a level outlives its
    // closing.
    std::vector<std::unique_ptr<Level>> m_closed;
};

}  // namespace orrinvale
