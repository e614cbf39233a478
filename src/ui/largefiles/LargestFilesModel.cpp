// columns() says what each column shows; the rest answers LevelModel, which keeps the rows.
#include "ui/largefiles/LargestFilesModel.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QLocale>
#include <algorithm>
#include <optional>
#include <utility>

#include "engine/largefiles/FileAge.h"
#include "engine/largefiles/NodeSelection.h"
#include "engine/largefiles/PublicUtilities.h"
#include "platform/paths.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/lists/columnWidths.h"
#include "ui/kit/look/picture.h"
#include "ui/largefiles/FileNodeModel.h"

namespace orrinvale {
namespace {

// At least, of those with words: these are longer in other languages.
constexpr int listedSizeWidth = 96, listedAgeWidth = 88, listedKindWidth = 84;

QString listedSize(const FileNode& node) {
    return shownSize(PublicUtilities::byteToSizeWithByte(node.size()));
}

FileKind kindOfNode(const FileNode& node) { return kindOfExtension(pathExtension(node.name())); }

// In the largest unit of which it is at least two.
QString ageText(std::optional<std::int64_t> second) {
    if (!second) return QStringLiteral("\u2013");
    const qint64 age = QDateTime::currentSecsSinceEpoch() - qint64(*second);
    if (age < 0) return LargestFilesModel::tr("in the future");
    const int days = int(age / qint64(secondsOfDay));
    constexpr int twoMonths = 2 * int(daysOfMonth);
    constexpr int twoYears = 2 * int(daysOfYear);
    if (days == 0) return LargestFilesModel::tr("today");
    if (days == 1) return LargestFilesModel::tr("1 day");
    if (days < twoMonths) return LargestFilesModel::tr("%Ln days", nullptr, days);
    if (days < twoYears)
        return LargestFilesModel::tr("%Ln months", nullptr, days / int(daysOfMonth));
    return LargestFilesModel::tr("%Ln years", nullptr, days / int(daysOfYear));
}

int ageWidth() {
    constexpr int most = 99;
    return std::max(listedAgeWidth,
                    wordsColumnWidth({LargestFilesModel::tr("in the future"),
                                      LargestFilesModel::tr("%Ln days", nullptr, most),
                                      LargestFilesModel::tr("%Ln months", nullptr, most),
                                      LargestFilesModel::tr("%Ln years", nullptr, most)}));
}

int kindWidth() {
    QStringList titles;
    for (const FileKind kind : {FileKind::Documents, FileKind::Music, FileKind::Videos,
                                FileKind::Archives, FileKind::Pictures, FileKind::Others})
        titles << fileKindTitle(kind);
    return std::max(listedKindWidth, wordsColumnWidth(titles));
}

QString withOtherNames(const QString& text, const FileNode& node, const char* between) {
    const QString names = otherNamesText(node);
    return names.isEmpty() ? text : text + QLatin1String(between) + names;
}

QString dayText(std::int64_t second) {
    if (second == FileNode::before1970) return LargestFilesModel::tr("before 1970");
    if (second == FileNode::from2106) return LargestFilesModel::tr("2106 or later");
    return QLocale().toString(QDateTime::fromSecsSinceEpoch(second).date(), QLocale::LongFormat);
}

QString writingTip(std::optional<std::int64_t> second) {
    return second ? LargestFilesModel::tr("Last written: %1").arg(dayText(*second)) : QString();
}

QString openingTip(const FileWish& wish, const FileNode& node) {
    if (const auto second = wish.lastOpened(node))
        return LargestFilesModel::tr("Last read or written: %1").arg(dayText(*second));
    return wish.openingsAt(node) == OpeningNotes::Unanswered
               ? LargestFilesModel::tr("Its disk does not answer whether that is noted")
               : LargestFilesModel::tr("It is not noted here when a file is opened");
}

}  // namespace

QString fileKindTitle(FileKind kind) {
    const char* title = "Others";
    switch (kind) {
        case FileKind::Documents: title = "Documents"; break;
        case FileKind::Music: title = "Music"; break;
        case FileKind::Videos: title = "Videos"; break;
        case FileKind::Archives: title = "Archives"; break;
        case FileKind::Pictures: title = "Pictures"; break;
        case FileKind::Others: break;
    }
    return QCoreApplication::translate("ResultRow", title);
}

std::vector<TickColumn<FileNode>> LargestFilesModel::columns(const LargestFilesModel* model,
                                                             IconSource icons) {
    using Order = FileWish::Order;
    return {
        {.name = tr("Ticked"), .look = CellLook::Box, .width = boxColumnWidth},
        {.title = tr("Name"),
         .look = CellLook::Name,
         .sortKey = int(Order::Name),
         .text = [](const FileNode& node) { return QString::fromStdString(node.displayName()); },
         .icon =
             [icons = std::move(icons)](const FileNode& node) {
                 return icons ? icons({IconRequest::BareName, node.displayName()}) : QIcon();
             }},
        {.title = tr("Size"),
         .look = CellLook::Figure,
         .width = listedSizeWidth,
         .sortKey = int(Order::Size),
         .text = listedSize,
         .toolTip = sizeToolTip,
         .share = [model](const FileNode& node) { return model->shareOf(node); }},
        {.title = tr("Age"),
         .width = ageWidth(),
         .sortKey = int(Order::Written),
         .text = [](const FileNode& node) { return ageText(node.lastWritten()); },
         .toolTip = [](const FileNode& node) { return writingTip(node.lastWritten()); }},
        {.title = tr("Unopened"),
         .width = ageWidth(),
         .sortKey = int(Order::Opened),
         .text = [model](const FileNode& node) { return ageText(model->wish().lastOpened(node)); },
         .toolTip = [model](const FileNode& node) { return openingTip(model->wish(), node); }},
        {.title = tr("Kind"),
         .width = kindWidth(),
         .text = [](const FileNode& node) { return fileKindTitle(kindOfNode(node)); }},
        {.title = tr("Folder"),
         .look = CellLook::Path,
         .text =
             [](const FileNode& node) {
                 return QString::fromStdString(orrinvale::folderOf(node.path()));
             }},
        {.name = tr("Show in Folder"),
         .look = CellLook::Button,
         .width = boxColumnWidth,
         .toolTip = [](const FileNode& /*node*/) { return tr("Show in Folder"); },
         .icon = [](const FileNode& /*node*/) { return picture(QStringLiteral("locate")); }},
        {.name = tr("Preview"),
         .look = CellLook::Button,
         .width = boxColumnWidth,
         .toolTip =
             [](const FileNode& node) { return node.isDirectory() ? QString() : tr("Preview"); },
         .icon =
             [](const FileNode& node) {
                 return node.isDirectory() ? QIcon() : picture(QStringLiteral("preview"));
             }},
    };
}

LargestFilesModel::LargestFilesModel(IconSource icons, BoxClicked boxClicked, QObject* parent)
    : LevelModel(columns(this, std::move(icons)), parent), m_boxClicked(std::move(boxClicked)) {}

void LargestFilesModel::setList(std::shared_ptr<FileNodeTree> tree,
                                std::shared_ptr<LargestFiles> list, bool isAnew) {
    const auto change = [&] {
        m_list = std::move(list);
        m_tree = std::move(tree);
        ++m_revision;
    };
    if (isAnew || m_list == nullptr || list == nullptr) return restart(list != nullptr, change);
    change();
    refresh();
}

std::vector<FileNode*> LargestFilesModel::rowsBelow(FileNode* /*above*/, std::size_t wanted) const {
    const auto rows = m_list->first(wanted);
    std::vector<FileNode*> nodes;
    nodes.reserve(std::min(wanted, rows.size()));
    for (const LargestFiles::Row& row : rows.first(nodes.capacity())) nodes.push_back(row.node);
    return nodes;
}

std::size_t LargestFilesModel::countBelow(FileNode* /*above*/) const { return m_list->count(); }

double LargestFilesModel::shareOf(const FileNode& node) const {
    return m_list->biggest() == 0 ? 0 : double(node.size()) / double(m_list->biggest());
}

std::optional<TickState> LargestFilesModel::stateOf(const FileNode& node) const {
    if (node.isSystemFile()) return {};
    return tickState(QVariant(int(standingState(node))));
}

QString LargestFilesModel::toolTipOf(const FileNode& node) const {
    return withOtherNames(QString::fromStdString(node.path()), node, "\n");
}

QString LargestFilesModel::descriptionOf(const FileNode& node) const {
    return withOtherNames(tr("%1, age: %2").arg(listedSize(node), ageText(node.lastWritten())),
                          node, ", ");
}

QString LargestFilesModel::folderOf(const FileNode& /*node*/) const {
    return QString::fromStdString(m_tree->rootPath());
}

bool LargestFilesModel::clickBox(const QModelIndex& index) {
    if (m_boxClicked) m_boxClicked(*node(index));
    return m_boxClicked != nullptr;
}

}  // namespace orrinvale
