#include "ui/cleaning/CleanTreeModel.h"

#include <QDateTime>
#include <QLocale>
#include <algorithm>
#include <chrono>

#include "engine/cleaning/CleanPageRows.h"
#include "engine/text/UtilityFunction.h"
#include "platform/paths.h"
#include "ui/cleaning/ScanListModel.h"
#include "ui/cleaning/cleanWords.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/lists/columnWidths.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr int cleanCountWidth = 80;
constexpr int cleanSizeWidth = 92;

CleanCategory categoryOf(const SimpleNodeData& group) {
    return static_cast<CleanCategory>(categoryOfGroup(group.name()));
}

QString nameOfItem(const TreeNode& node) {
    const SimpleNodeData& data = *simpleData(node);
    return data.isGroup() ? categoryTitle(categoryOf(data)) : QString::fromStdString(data.name());
}

QIcon iconOf(const TreeNode& node, const CleanTreeModel::IconSource& icons) {
    const SimpleNodeData& data = *simpleData(node);
    if (data.isGroup()) {
        const auto& row = cleanPageRows.at(std::size_t(categoryOf(data)) + 1);
        return picture(QString::fromStdString(std::string(row.image)));
    }
    return data.iconRep() && icons ? icons(*data.iconRep()) : QIcon();
}

QString dateText(const TreeNode& node) {
    const auto& date = simpleData(node)->ModificationDate();
    if (!date) return {};
    constexpr std::int64_t perMillisecond = 1'000'000;
    return QLocale().toString(QDateTime::fromMSecsSinceEpoch(date->nanoseconds / perMillisecond),
                              QLocale::ShortFormat);
}

QString ageText(const TreeNode& node) {
    const auto& date = simpleData(node)->ModificationDate();
    if (!date) return {};
    const auto now = std::chrono::duration_cast<std::chrono::nanoseconds>(
        std::chrono::system_clock::now().time_since_epoch());
    return ageWords(now.count() - date->nanoseconds);
}

double shareOf(const TreeNode& node) {
    const TreeNode* const above = node.nodeParent();
    if (above == nullptr || simpleData(node)->isGroup()) return 0;
    const auto whole = simpleData(*above)->fileSize();
    return whole == 0
               ? 0
               : static_cast<double>(simpleData(node)->fileSize()) / static_cast<double>(whole);
}

std::vector<TickColumn<TreeNode>> columns(CleanTreeModel::IconSource icons) {
    return {
        {.name = CleanTreeModel::tr("Ticked"), .look = CellLook::Box, .width = boxColumnWidth},
        {.title = CleanTreeModel::tr("Name"),
         .look = CellLook::PathName,
         .sortKey = int(SortKey::Name),
         .text = nameOfItem,
         .icon = [icons = std::move(icons)](const TreeNode& node) { return iconOf(node, icons); }},
        {.title = CleanTreeModel::tr("Selected"),
         .width = cleanCountWidth,
         .text =
             [](const TreeNode& node) {
                 return QString::fromStdString(simpleData(node)->showSelectNumStr());
             }},
        {.title = CleanTreeModel::tr("Size"),
         .look = CellLook::Figure,
         .width = cleanSizeWidth,
         .sortKey = int(SortKey::Size),
         .text = [](const TreeNode& node) { return sizeWords(simpleData(node)->fileSize()); },
         .share = shareOf},
        {.title = CleanTreeModel::tr("Modified"),
         .width = dateColumnWidth(),
         .sortKey = int(SortKey::Date),
         .text = dateText,
         .toolTip = ageText},
    };
}

}  // namespace

CleanTreeModel::CleanTreeModel(IconSource icons, BoxClicked boxClicked,
                               const std::unordered_set<std::string>& cleaned, QObject* parent)
    : LevelModel(columns(std::move(icons)), parent),
      m_boxClicked(std::move(boxClicked)),
      m_cleaned(cleaned) {}

void CleanTreeModel::setTree(TreeNode* root) {
    restart(root != nullptr, [&] {
        m_root = root;
        ++m_revision;
    });
}

void CleanTreeModel::setFilter(const QString& words) {
    if (words == m_filter) return;
    m_filter = words;
    ++m_revision;
    refresh();
}

void CleanTreeModel::sort(SortKey key, bool isDescending) {
    if (m_root == nullptr) return;
    std::vector<TreeNode*> groups;
    for (std::size_t i = 0; i < m_root->numberOfChildren(); ++i)
        groups.push_back(m_root->childAtIndex(i).get());
    TreeNode::sortLevel(groups, key, isDescending);
    ++m_revision;
    refresh();
}

bool CleanTreeModel::isShown(const TreeNode& node) const {
    if (m_filter.isEmpty()) return true;
    const SimpleNodeData& data = *simpleData(node);
    if (data.isLeaf()) return hasWords(lastPathComponent(data.name()), m_filter);
    for (std::size_t i = 0; i < node.numberOfChildren(); ++i)
        if (isShown(*node.childAtIndex(i))) return true;
    return false;
}

std::vector<TreeNode*> CleanTreeModel::rowsBelow(TreeNode* above, std::size_t wanted) const {
    const TreeNode& level = above != nullptr ? *above : *m_root;
    std::vector<TreeNode*> rows;
    for (std::size_t i = 0; i < level.numberOfChildren() && rows.size() < wanted; ++i)
        if (isShown(*level.childAtIndex(i))) rows.push_back(level.childAtIndex(i).get());
    return rows;
}

std::size_t CleanTreeModel::countBelow(TreeNode* above) const {
    const TreeNode& level = above != nullptr ? *above : *m_root;
    return isFiltered() ? shownLeaves(level).size() : level.numberOfChildren();
}

std::vector<TreeNode*> CleanTreeModel::shownLeaves(const TreeNode& group) const {
    std::vector<TreeNode*> leaves;
    for (std::size_t i = 0; i < group.numberOfChildren(); ++i)
        if (isShown(*group.childAtIndex(i))) leaves.push_back(group.childAtIndex(i).get());
    return leaves;
}

std::int32_t CleanTreeModel::shownState() const {
    std::size_t all = 0, ticked = 0;
    for (std::size_t i = 0; m_root != nullptr && i < m_root->numberOfChildren(); ++i)
        for (const TreeNode* const leaf : shownLeaves(*m_root->childAtIndex(i))) {
            ++all;
            if (simpleData(*leaf)->selectNum() == 1) ++ticked;
        }
    return ticked == 0 ? 0 : ticked == all ? 1 : 2;
}

void CleanTreeModel::rowsWent() {
    ++m_revision;
    refresh();
}

bool CleanTreeModel::isOpenable(const TreeNode& node) const {
    return simpleData(node)->isExpandable() && node.numberOfChildren() > 0;
}

std::optional<TickState> CleanTreeModel::stateOf(const TreeNode& node) const {
    return tickState(QVariant(simpleData(node)->selectNum()));
}

bool CleanTreeModel::isBack(const TreeNode& node) const {
    return simpleData(node)->isLeaf() && m_cleaned.contains(simpleData(node)->name());
}

QString CleanTreeModel::toolTipOf(const TreeNode& node) const {
    if (simpleData(node)->isGroup())
        return cleanRowDescription(int(categoryOf(*simpleData(node))) + 1);
    return isBack(node) ? nameOfItem(node) + QLatin1Char('\n') + cameBackWords() : nameOfItem(node);
}

QString CleanTreeModel::descriptionOf(const TreeNode& node) const {
    return isBack(node) ? cameBackWords() : QString();
}

// What all of them share tells nothing apart.
QString CleanTreeModel::folderOf(const TreeNode& node) const {
    if (simpleData(node)->isGroup()) return {};
    return QString::fromStdString(::orrinvale::folderOf(simpleData(node)->name())) +
           QLatin1Char('/');
}

QStringList CleanTreeModel::signsOf(const TreeNode& node) const {
    return isBack(node) ? QStringList{QStringLiteral("sign_back")} : QStringList();
}

bool CleanTreeModel::isStrong(const TreeNode& node) const { return simpleData(node)->isGroup(); }

bool CleanTreeModel::clickBox(const QModelIndex& index) {
    TreeNode* const clicked = node(index);
    if (clicked == nullptr || !m_boxClicked) return false;
    m_boxClicked(*clicked, index);
    return true;
}

}  // namespace orrinvale
