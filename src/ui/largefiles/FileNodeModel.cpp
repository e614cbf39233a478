// columns() says what each column shows; the rest answers LevelModel, which keeps the rows.
#include "ui/largefiles/FileNodeModel.h"

#include <QStringList>
#include <utility>

#include "engine/files/bundleName.h"
#include "engine/largefiles/PublicUtilities.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/lists/columnWidths.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr int sizeOfFileWidth = 96;

QString sizeText(std::uint64_t bytes) {
    return shownSize(PublicUtilities::byteToSizeWithByte(bytes));
}

// The row of a folder has the picture of folders, but for a bundle, which has that of its kind.
QIcon iconOf(const FileNode& node, const FileNodeModel::IconSource& icons) {
    if (node.isDirectory() && !isClosedAmongLargeFiles(node.name()))
        return picture(QStringLiteral("folder"));
    return icons ? icons({IconRequest::BareName, node.displayName()}) : QIcon();
}

std::vector<TickColumn<FileNode>> columns(FileNodeModel::IconSource icons) {
    return {
        {.name = FileNodeModel::tr("Ticked"), .look = CellLook::Box, .width = boxColumnWidth},
        {.title = FileNodeModel::tr("Name"),
         .look = CellLook::Name,
         .text = [](const FileNode& node) { return QString::fromStdString(node.displayName()); },
         .icon = [icons = std::move(icons)](const FileNode& node) { return iconOf(node, icons); }},
        {.title = FileNodeModel::tr("Size"),
         .look = CellLook::Figure,
         .width = sizeOfFileWidth,
         .text = [](const FileNode& node) { return sizeText(node.size()); },
         .toolTip = sizeToolTip},
        {.title = FileNodeModel::tr("Path"),
         .look = CellLook::Path,
         .text = [](const FileNode& node) { return QString::fromStdString(node.path()); }},
        {.name = FileNodeModel::tr("Show in Folder"),
         .look = CellLook::Button,
         .width = boxColumnWidth,
         .toolTip = [](const FileNode& /*node*/) { return FileNodeModel::tr("Show in Folder"); },
         .icon = [](const FileNode& /*node*/) { return picture(QStringLiteral("locate")); }},
        {.name = FileNodeModel::tr("Preview"),
         .look = CellLook::Button,
         .width = boxColumnWidth,
         .toolTip =
             [](const FileNode& node) {
                 return node.isDirectory() ? QString() : FileNodeModel::tr("Preview");
             },
         .icon =
             [](const FileNode& node) {
                 return node.isDirectory() ? QIcon() : picture(QStringLiteral("preview"));
             }},
    };
}

}  // namespace

QString otherNamesText(const FileNode& node) {
    if (node.isDirectory() || node.links() < 2) return {};
    return FileNodeModel::tr("One of %Ln names of one file; its space is free when all are gone",
                             nullptr, int(node.links()));
}

QString sizeToolTip(const FileNode& node) {
    const QString size = sizeText(node.size());
    const QString onDisk = sizeText(node.sizeOnDisk());
    QStringList lines{size == onDisk ? size : FileNodeModel::tr("%1, %2 on disk").arg(size, onDisk),
                      otherNamesText(node)};
    lines.removeAll(QString());
    return lines.join(QLatin1Char('\n'));
}

FileNodeModel::FileNodeModel(IconSource icons, BoxClicked boxClicked, QObject* parent)
    : LevelModel(columns(std::move(icons)), parent), m_boxClicked(std::move(boxClicked)) {}

void FileNodeModel::setTree(std::shared_ptr<FileNodeTree> tree) {
    restart(tree != nullptr, [&] { m_tree = std::move(tree); });
}

FileNode* FileNodeModel::folder(FileNode* above) const {
    return above != nullptr ? above : &m_tree->root();
}

std::vector<FileNode*> FileNodeModel::rowsBelow(FileNode* above, std::size_t wanted) const {
    const auto biggest = folder(above)->biggestChildren(wanted);
    return {biggest.begin(), biggest.begin() + std::ptrdiff_t(std::min(wanted, biggest.size()))};
}

std::size_t FileNodeModel::countBelow(FileNode* above) const { return folder(above)->childCount(); }

bool FileNodeModel::isItemExpandable(const FileNode& node) {
    return node.childCount() > 0 && !isClosedAmongLargeFiles(node.name());
}

bool FileNodeModel::isOpenable(const FileNode& node) const { return isItemExpandable(node); }

std::optional<TickState> FileNodeModel::stateOf(const FileNode& node) const {
    if (node.isSystemFile()) return {};
    return tickState(QVariant(int(node.state())));
}

QString FileNodeModel::toolTipOf(const FileNode& node) const {
    return QString::fromStdString(node.path());
}

QString FileNodeModel::folderOf(const FileNode& /*node*/) const {
    return QString::fromStdString(m_tree->root().path());
}

bool FileNodeModel::clickBox(const QModelIndex& index) {
    if (m_boxClicked) m_boxClicked(*node(index));
    return m_boxClicked != nullptr;
}

}  // namespace orrinvale
