// FileNodeModel: see FileNodeModel.h. An index holds its row and a pointer to its level.
#include "ui/largefiles/FileNodeModel.h"

#include <QLocale>
#include <algorithm>
#include <utility>

#include "engine/files/bundleName.h"
#include "engine/largefiles/PublicUtilities.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/paintTickBox.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {

struct FileNodeModel::Level {
    FileNode* folder = nullptr;
    Level* above = nullptr;  // null for the top
    int row = 0;             // of the folder, in the level above
    std::size_t wanted = rowsAtOnce;
    std::uint64_t revision = 0;  // of the tree when the rows were read
    std::vector<FileNode*> rows;
    std::unordered_map<const FileNode*, std::unique_ptr<Level>> below;
};

// A persistent index: a view keeps the open, the current and the selected rows by them.
struct FileNodeModel::Remembered {
    QModelIndex index;
    Level* level = nullptr;
    const FileNode* node = nullptr;
};

namespace {

constexpr std::uint64_t neverRead = ~std::uint64_t{0};

QString sizeText(std::uint64_t bytes) {
    return shownSize(PublicUtilities::byteToSizeWithByte(bytes));
}

// What the size alone would leave a person wondering about.
QString sizeToolTip(const FileNode& node) {
    const QString size = sizeText(node.size());
    const QString onDisk = sizeText(node.sizeOnDisk());
    QString text = size;
    if (size != onDisk) text = FileNodeModel::tr("%1, %2 on disk").arg(size, onDisk);
    if (!node.isDirectory() && node.links() > 1)
        text += QLatin1Char('\n') +
                FileNodeModel::tr("shared by %1 names").arg(QLocale().toString(node.links()));
    return text;
}

}  // namespace

FileNodeModel::FileNodeModel(IconSource icons, BoxClicked boxClicked, QObject* parent)
    : QAbstractItemModel(parent), m_icons(std::move(icons)), m_boxClicked(std::move(boxClicked)) {}

FileNodeModel::~FileNodeModel() = default;

void FileNodeModel::setTree(std::shared_ptr<FileNodeTree> tree) {
    beginResetModel();
    m_tree = std::move(tree);
    m_top.reset();
    if (m_tree) {
        m_top = std::make_unique<Level>();
        m_top->folder = &m_tree->root();
        fill(*m_top);
    }
    endResetModel();
    m_closed.clear();
}

void FileNodeModel::fill(Level& level) const {
    const auto all = level.folder->biggestChildren(level.wanted);
    level.rows.assign(
        all.begin(), all.begin() + static_cast<std::ptrdiff_t>(std::min(level.wanted, all.size())));
    level.revision = m_tree->revision();
}

bool FileNodeModel::isStale(const Level& level) const {
    if (level.revision != m_tree->revision()) return true;
    return std::ranges::any_of(level.below, [this](const auto& below) {
        return below.second->folder->isExpand() && isStale(*below.second);
    });
}

void FileNodeModel::refresh() {
    if (!m_top) return;
    if (!isStale(*m_top)) {
        if (rowCount() > 0) Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
        return;
    }
    Q_EMIT layoutAboutToBeChanged();
    const std::vector<Remembered> remembered = rememberedRows();
    refreshStale(*m_top);
    placeRemembered(remembered);
    Q_EMIT layoutChanged();
}

// A level that is closed keeps its old rows until it is opened: nobody sees them, and there may be
// many.
void FileNodeModel::refreshStale(Level& level) {
    if (level.revision != m_tree->revision()) fill(level);
    if (level.below.empty()) return;
    std::unordered_map<const FileNode*, int> rows;
    for (std::size_t row = 0; row < level.rows.size(); ++row)
        if (level.below.contains(level.rows[row]))
            rows.emplace(level.rows[row], static_cast<int>(row));
    for (auto below = level.below.begin(); below != level.below.end();) {
        const auto found = rows.find(below->first);
        if (found == rows.end()) {
            close(std::move(below->second));
            below = level.below.erase(below);
            continue;
        }
        below->second->row = found->second;
        if (below->second->folder->isExpand()) refreshStale(*below->second);
        ++below;
    }
}

void FileNodeModel::close(std::unique_ptr<Level> level) {
    level->folder->setIsExpand(false);
    level->rows = {};
    for (auto& [folder, below] : level->below) close(std::move(below));
    level->below.clear();
    m_closed.push_back(std::move(level));
}

std::vector<FileNodeModel::Remembered> FileNodeModel::rememberedRows() const {
    std::vector<Remembered> remembered;
    for (const QModelIndex& index : persistentIndexList())
        remembered.push_back({index, static_cast<Level*>(index.internalPointer()), node(index)});
    return remembered;
}

void FileNodeModel::placeRemembered(const std::vector<Remembered>& remembered) {
    std::unordered_map<const Level*, std::unordered_map<const FileNode*, int>> rowsOf;
    QModelIndexList before;
    QModelIndexList after;
    for (const auto& [index, level, node] : remembered) {
        auto& rows = rowsOf[level];
        if (rows.empty())
            for (std::size_t row = 0; row < level->rows.size(); ++row)
                rows.emplace(level->rows[row], static_cast<int>(row));
        const auto found = rows.find(node);
        before.push_back(index);
        after.push_back(found == rows.end() ? QModelIndex()
                                            : createIndex(found->second, index.column(), level));
    }
    changePersistentIndexList(before, after);
}

bool FileNodeModel::hasMore(const QModelIndex& parent) const {
    const Level* const level = levelBelow(parent);
    // A level that grows under a scan gets its new rows at the next refresh, and does not jump
    // under a person who scrolls.
    return level != nullptr && level->rows.size() >= level->wanted &&
           level->rows.size() < level->folder->childCount();
}

void FileNodeModel::showMore(const QModelIndex& parent) {
    if (!hasMore(parent)) return;
    Level& level = *levelBelow(parent);
    level.wanted = level.rows.size() + rowsAtOnce;
    level.revision = neverRead;
    refresh();
}

// Made when a view first asks what is in a folder.
FileNodeModel::Level* FileNodeModel::levelBelow(const QModelIndex& parent) const {
    if (!parent.isValid()) return m_top.get();
    FileNode* const folder = node(parent);
    if (folder == nullptr || parent.column() != 0 || !isItemExpandable(*folder)) return nullptr;
    auto* const above = static_cast<Level*>(parent.internalPointer());
    std::unique_ptr<Level>& level = above->below[folder];
    if (!level) {
        level = std::make_unique<Level>();
        level->folder = folder;
        level->above = above;
        level->row = parent.row();
        fill(*level);
    }
    return level.get();
}

FileNode* FileNodeModel::node(const QModelIndex& index) const {
    if (!index.isValid()) return nullptr;
    const auto& rows = static_cast<const Level*>(index.internalPointer())->rows;
    const auto row = static_cast<std::size_t>(index.row());
    return row < rows.size() ? rows[row] : nullptr;
}

bool FileNodeModel::isItemExpandable(const FileNode& node) {
    return node.childCount() > 0 && !isClosedAmongLargeFiles(node.name());
}

QModelIndex FileNodeModel::index(int row, int column, const QModelIndex& parent) const {
    Level* const level = levelBelow(parent);
    if (level == nullptr || row < 0 || static_cast<std::size_t>(row) >= level->rows.size())
        return {};
    return column >= 0 && column < ColumnCount ? createIndex(row, column, level) : QModelIndex();
}

QModelIndex FileNodeModel::parent(const QModelIndex& child) const {
    if (!child.isValid()) return {};
    const auto* const level = static_cast<const Level*>(child.internalPointer());
    return level->above != nullptr ? createIndex(level->row, 0, level->above) : QModelIndex();
}

int FileNodeModel::rowCount(const QModelIndex& parent) const {
    const Level* const level = levelBelow(parent);
    return level != nullptr ? static_cast<int>(level->rows.size()) : 0;
}

int FileNodeModel::columnCount(const QModelIndex& /*parent*/) const { return ColumnCount; }

bool FileNodeModel::hasChildren(const QModelIndex& parent) const {
    if (!parent.isValid()) return m_top && !m_top->rows.empty();
    const FileNode* const shown = node(parent);
    return shown != nullptr && parent.column() == 0 && isItemExpandable(*shown);
}

Qt::ItemFlags FileNodeModel::flags(const QModelIndex& index) const {
    const FileNode* const shown = node(index);
    if (shown == nullptr) return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (index.column() == CheckBox && !shown->isSystemFile()) flags |= Qt::ItemIsUserCheckable;
    return flags;
}

QVariant FileNodeModel::text(const FileNode& node, int column) const {
    switch (column) {
        case Name: return QString::fromStdString(node.displayName());
        case Size: return sizeText(node.size());
        case Path: return QString::fromStdString(node.path());
        default: return {};
    }
}

// The row of a folder has the picture of folders, but for a bundle, which has that of its kind.
QIcon FileNodeModel::icon(const FileNode& node) const {
    if (node.isDirectory() && !isClosedAmongLargeFiles(node.name()))
        return picture(QStringLiteral("folder"));
    return m_icons ? m_icons({IconRequest::BareName, node.displayName()}) : QIcon();
}

QVariant FileNodeModel::data(const QModelIndex& index, int role) const {
    const FileNode* const shown = node(index);
    if (shown == nullptr) return {};
    const int column = index.column();
    const bool isBox = column == CheckBox && (role == StateRole || role == Qt::CheckStateRole) &&
                       !shown->isSystemFile();
    switch (role) {
        case Qt::DisplayRole: return text(*shown, column);
        case Qt::ToolTipRole:
            if (column == Size) return sizeToolTip(*shown);
            if (column == OpenFinder) return tr("Show in Folder");
            if (column == Pareview) return shown->isDirectory() ? QVariant() : tr("Preview");
            return asToolTip(QString::fromStdString(shown->path()));
        case Qt::AccessibleTextRole:
            if (column == OpenFinder || column == Pareview) return data(index, Qt::ToolTipRole);
            return text(*shown, column == CheckBox ? int(Name) : column);
        case Qt::TextAlignmentRole:
            return column == Size ? QVariant(Qt::AlignRight | Qt::AlignVCenter)
                                  : QVariant(Qt::AlignLeft | Qt::AlignVCenter);
        case StateRole: return isBox ? QVariant(int(shown->state())) : QVariant();
        case Qt::CheckStateRole:
            return isBox ? QVariant(int(checkState(tickState(QVariant(int(shown->state()))))))
                         : QVariant();
        case ScannedFolderRole: return QString::fromStdString(m_tree->root().path());
        case IconRole:
            if (column == Name) return icon(*shown);
            if (column == OpenFinder) return picture(QStringLiteral("locate"));
            return column == Pareview && !shown->isDirectory() ? picture(QStringLiteral("preview"))
                                                               : QVariant();
        default: return {};
    }
}

bool FileNodeModel::setData(const QModelIndex& index, const QVariant& /*value*/, int role) {
    FileNode* const clicked = node(index);
    if (clicked == nullptr || (role != StateRole && role != Qt::CheckStateRole)) return false;
    if (!flags(index).testFlag(Qt::ItemIsUserCheckable) || !m_boxClicked) return false;
    // What the state becomes is not the box's to say: nothing is ticked while the tree still grows.
    m_boxClicked(*clicked);
    return true;
}

QVariant FileNodeModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::TextAlignmentRole && section == Size)
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    // Columns of boxes and pictures have no words over them, but a name for those who do not see
    // them.
    const bool isNamed = role == Qt::AccessibleTextRole;
    if (role != Qt::DisplayRole && !isNamed) return {};
    switch (section) {
        case CheckBox: return isNamed ? QVariant(tr("Ticked")) : QVariant();
        case OpenFinder: return isNamed ? QVariant(tr("Show in Folder")) : QVariant();
        case Pareview: return isNamed ? QVariant(tr("Preview")) : QVariant();
        case Name: return tr("Name");
        case Size: return tr("Size");
        case Path: return tr("Path");
        default: return {};
    }
}

}  // namespace orrinvale
