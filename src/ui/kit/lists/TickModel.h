// TickModel: a list of a page as a table of columns and a few functions over its rows. LevelModel.h
// adds rows within rows; RowDelegate.h draws the cells, TickOutline.h shows them.
#pragma once

#include <QAbstractItemModel>
#include <QIcon>
#include <QStringList>
#include <functional>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

#include "ui/kit/controls/pathText.h"
#include "ui/kit/lists/paintTickBox.h"

namespace orrinvale {

/// How RowDelegate draws a cell.
enum class CellLook {
    Text,      ///< cut at its end
    Figure,    ///< likewise, on the right, over the bar of its share
    Box,       ///< nothing but the box
    Name,      ///< icon and name, cut in its middle
    PathName,  ///< icon, signs and a path whose folder is in the background
    TwoLines,  ///< a larger icon, a name, and a line of small words below it
    Path,      ///< a path, cut where it tells least
    Sign,      ///< a picture that tells something
    Button     ///< a picture to press
};

/// The look of the column that names the row.
[[nodiscard]] constexpr bool isNamed(CellLook look) {
    return look == CellLook::Name || look == CellLook::PathName || look == CellLook::TwoLines;
}

/// The part of it that does not know what a row is. Main thread only.
class TickModel : public QAbstractItemModel {
    Q_OBJECT
public:
    enum Role {
        StateRole = Qt::UserRole,  ///< of the cell with the box a TickState's number; else none
        LookRole,                  ///< a CellLook's number
        IconRole,                  ///< a QIcon, made when it is drawn
        SignsRole,                 ///< the names of small pictures before a path
        SecondRole,                ///< the line below a name
        FolderRole,                ///< below which all lies that is shown together, see pathText.h
        ShareRole,                 ///< from 0 to 1; none where there is no bar
        StrongRole,                ///< a row over others
        GreyRole                   ///< a row that is out of play
    };

    using QAbstractItemModel::QAbstractItemModel;

    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const final;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const final;
    [[nodiscard]] bool hasChildren(const QModelIndex& parent = {}) const override;
    /// A click on the box of a row, whatever the value: what the state becomes is the page's to
    /// say.
    bool setData(const QModelIndex& index, const QVariant& value, int role) final;

    /// The column with the boxes, -1 where there is none, and the one with the names.
    [[nodiscard]] int boxColumn() const { return m_boxColumn; }
    [[nodiscard]] int nameColumn() const { return m_nameColumn; }
    [[nodiscard]] CellLook look(int column) const { return m_heads[std::size_t(column)].look; }
    /// In points; 0 for one that takes its share of what the others leave.
    [[nodiscard]] int columnWidth(int column) const;
    /// What a click on the column's title sorts by; none where it sorts nothing.
    [[nodiscard]] std::optional<int> sortKey(int column) const;

    /// States and texts of every row may have changed, also of those below others.
    virtual void refresh();

    /// Whether there are rows below this one that are not shown yet, and showing the next ones.
    [[nodiscard]] virtual bool hasMore(const QModelIndex& /*parent*/) const { return false; }
    virtual void showMore(const QModelIndex& /*parent*/) {}

protected:
    struct Head {
        QString title, name;
        CellLook look = CellLook::Text;
        int width = 0;
        std::optional<int> sortKey;
        bool hasBox = false;
    };
    void addColumn(Head head);
    /// Only of a cell whose flags have Qt::ItemIsUserCheckable. False where nothing came of it.
    virtual bool clickBox(const QModelIndex& index) = 0;

private:
    std::vector<Head> m_heads;
    int m_boxColumn = -1, m_nameColumn = 0;
};

/// One column of a table of rows. Functions that are left out give nothing.
template <class Row> struct TickColumn {
    QString title = QString();  ///< over the column; none over boxes and pictures
    QString name = QString();   ///< for screen readers, where there is no title
    CellLook look = CellLook::Text;
    int width = 0;  ///< in points; 0 takes a share of what the others leave
    std::optional<int> sortKey = std::nullopt;
    bool hasBox = false;  ///< before whatever else the cell shows
    std::function<QString(const Row&)> text = nullptr;
    std::function<QString(const Row&)> second = nullptr;   ///< the line below, of TwoLines
    std::function<QString(const Row&)> toolTip = nullptr;  ///< where it is not that of the row
    std::function<QIcon(const Row&)> icon = nullptr;
    std::function<double(const Row&)> share = nullptr;
};

/// A model of rows of one type. What derives from it says where a row stands, by index(), parent()
/// and rowCount().
template <class Row> class TickModelOf : public TickModel {
public:
    using Column = TickColumn<Row>;
    // GCC 12 fails with an internal error at tables of columns unless it is asked this first.
    static_assert(std::is_nothrow_destructible_v<Column>);

    explicit TickModelOf(std::vector<Column> columns, QObject* parent = nullptr)
        : TickModel(parent), m_columns(std::move(columns)) {
        for (const Column& each : m_columns)
            addColumn({each.title, each.name, each.look, each.width, each.sortKey, each.hasBox});
    }

    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override {
        const Row* const row = rowAt(index);
        if (row == nullptr) return Qt::NoItemFlags;
        const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
        return index.column() == boxColumn() && mayTick(*row) ? flags | Qt::ItemIsUserCheckable
                                                              : flags;
    }
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override {
        const Row* const row = rowAt(index);
        return row != nullptr ? cell(*row, index.column(), role) : QVariant();
    }

protected:
    /// Null for an index of no row.
    [[nodiscard]] virtual Row* rowAt(const QModelIndex& index) const = 0;
    /// None for a row without a box.
    [[nodiscard]] virtual std::optional<TickState> stateOf(const Row& /*row*/) const { return {}; }
    /// Whether a person may click its box.
    [[nodiscard]] virtual bool mayTick(const Row& row) const { return stateOf(row).has_value(); }
    [[nodiscard]] virtual QString toolTipOf(const Row& /*row*/) const { return {}; }
    /// What a screen reader says of the row after its name.
    [[nodiscard]] virtual QString descriptionOf(const Row& /*row*/) const { return {}; }
    [[nodiscard]] virtual QString folderOf(const Row& /*row*/) const { return {}; }
    [[nodiscard]] virtual QStringList signsOf(const Row& /*row*/) const { return {}; }
    [[nodiscard]] virtual bool isStrong(const Row& /*row*/) const { return false; }
    [[nodiscard]] virtual bool isGrey(const Row& /*row*/) const { return false; }

private:
    template <class Function> static QVariant of(const Function& function, const Row& row) {
        return function ? QVariant::fromValue(function(row)) : QVariant();
    }

    [[nodiscard]] QVariant cell(const Row& row, int number, int role) const {
        const Column& column = m_columns[std::size_t(number)];
        switch (role) {
            case Qt::DisplayRole: return of(column.text, row);
            case Qt::ToolTipRole:
                return column.toolTip ? of(column.toolTip, row) : asToolTip(toolTipOf(row));
            case Qt::AccessibleTextRole:
                if (column.look == CellLook::Button || column.look == CellLook::Sign)
                    return of(column.toolTip, row);
                return column.look == CellLook::Box
                           ? of(m_columns[std::size_t(nameColumn())].text, row)
                           : of(column.text, row);
            case Qt::AccessibleDescriptionRole:
                return number == nameColumn() ? descriptionOf(row) : QVariant();
            case StateRole:
            case Qt::CheckStateRole: return number == boxColumn() ? box(row, role) : QVariant();
            case LookRole: return int(column.look);
            case IconRole: return of(column.icon, row);
            case ShareRole: return of(column.share, row);
            case SecondRole: return of(column.second, row);
            case SignsRole: return signsOf(row);
            case FolderRole: return folderOf(row);
            case StrongRole: return isStrong(row);
            case GreyRole: return isGrey(row);
            default: return {};
        }
    }
    [[nodiscard]] QVariant box(const Row& row, int role) const {
        const std::optional<TickState> state = stateOf(row);
        if (!state) return {};
        return role == StateRole ? int(*state) : int(checkState(*state));
    }

    std::vector<Column> m_columns;
};

}  // namespace orrinvale
