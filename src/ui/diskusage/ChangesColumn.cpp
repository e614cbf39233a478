// The rows are numbers of the difference, which is whole and never changes; what is there now the
// tree tells.
#include "ui/diskusage/ChangesColumn.h"

#include <QCoreApplication>
#include <QLocale>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "engine/diskusage/FSNode.h"
#include "engine/diskusage/history/changeWords.h"
#include "ui/diskusage/FSNodeColumn.h"
#include "ui/kit/controls/pathText.h"

namespace orrinvale {
namespace {

QString changesText(const char* source, int count = -1) {
    return QCoreApplication::translate("ChangesColumn", source, nullptr, count);
}

std::uint64_t sizeOfChange(std::int64_t change) {
    return change < 0 ? 0 - std::uint64_t(change) : std::uint64_t(change);
}

QString changedName(const ScanDifference& difference, const ScanChange& change) {
    return onOneLine(QString::fromStdString(std::string(difference.name(change))));
}

// What the engine says of changes, for the translators.
[[maybe_unused]] constexpr std::array translatedChanges{
    QT_TRANSLATE_NOOP("ChangesColumn", "new"),
    QT_TRANSLATE_NOOP("ChangesColumn", "new, or under %1 before"),
    QT_TRANSLATE_NOOP("ChangesColumn", "new, in the place of a file"),
    QT_TRANSLATE_NOOP("ChangesColumn", "new, in the place of a folder"),
    QT_TRANSLATE_NOOP("ChangesColumn", "gone"),
    QT_TRANSLATE_NOOP("ChangesColumn", "gone, or under %1 now"),
    QT_TRANSLATE_NOOP("ChangesColumn", "gone, a file is in its place"),
    QT_TRANSLATE_NOOP("ChangesColumn", "gone, a folder is in its place"),
    QT_TRANSLATE_NOOP("ChangesColumn", "another file system there"),
    QT_TRANSLATE_NOOP("ChangesColumn", "another file system in it"),
    QT_TRANSLATE_NOOP("ChangesColumn", "could not be read each time"),
    QT_TRANSLATE_NOOP("ChangesColumn", "not all of it could be read")};

QString shownWord(const std::optional<ChangeWord>& word) {
    if (!word) return {};
    const QString text = changesText(word->text);
    return word->bytes != 0 ? text.arg(bytesWords(word->bytes)) : text;
}

// The entry below that is the reason of most of it; empty where there is none.
QString mostlyText(const ScanDifference& difference, std::uint32_t number, bool isWithPath) {
    const std::uint32_t most = difference.mostly(number);
    if (most == number) return {};
    return changesText(QT_TRANSLATE_NOOP("ChangesColumn", "mostly %1"))
        .arg(isWithPath ? onOneLine(QString::fromStdString(difference.path(most)))
                        : changedName(difference, difference.all()[most]));
}

// In a row there is room for a word. What is not known of nearly every new file the row leaves to
// its tip, what is rare it says itself.
QString noteOfChange(const ScanDifference& difference, std::uint32_t number) {
    const ScanChange& change = difference.all()[number];
    const std::optional<ChangeWord> doubt = doubtWord(change);
    if (change.isReplaced) return shownWord(comingWord(difference, change));
    if (doubt && (change.isUnseen || change.isCovered)) return shownWord(doubt);
    if (change.kind == ScanChange::Kind::Came)
        return changesText(QT_TRANSLATE_NOOP("ChangesColumn", "new"));
    if (change.kind == ScanChange::Kind::Went)
        return changesText(QT_TRANSLATE_NOOP("ChangesColumn", "gone"));
    return mostlyText(difference, number, false);
}

// From the root on.
std::vector<std::uint32_t> wayTo(const ScanDifference& difference, std::uint32_t number) {
    std::vector<std::uint32_t> way;
    for (; number != 0; number = difference.all()[number].parent) way.push_back(number);
    std::ranges::reverse(way);
    return way;
}

// What came in the place of something of the other kind is another entry of the same name. One that
// a scan could not look into may have changed its kind in the comparison alone.
bool isNodeOf(const ScanChange& change, const FSNode& node) {
    return change.kind == ScanChange::Kind::Changed || change.isFolder == node.isDirectory();
}

}  // namespace

QString changeText(std::int64_t change) {
    QString size = bytesWords(sizeOfChange(change));
    constexpr std::int64_t least = 10;  // two places of a KB
    if (std::abs(change) < least) return size;
    return QLatin1Char(change > 0 ? '+' : '-') + size;
}

QString aboutText(const QString& size, bool isDoubtful) {
    return isDoubtful ? QStringLiteral("\u2248 ") + size : size;
}

// From the root on; of what is in a new folder the folder tells.
NodeChange changeOfNode(const ScanDifference& difference, const FSNode& node, std::uint64_t size) {
    std::vector<const FSNode*> way;
    for (const FSNode* each = &node; each->father() != nullptr; each = each->father())
        way.push_back(each);
    const ScanChange* change = &difference.root();
    for (auto each = way.rbegin(); each != way.rend(); ++each) {
        if (change->kind == ScanChange::Kind::Came) break;
        const auto found = difference.find(*change, (*each)->name());
        if (!found) return {};
        change = &difference.all()[*found];
    }
    const std::int64_t bytes = changeOf(change->sizeBefore, size);
    if (change->kind == ScanChange::Kind::Came) return {NodeChange::Kind::Came, bytes};
    constexpr std::uint64_t worthTelling = 1000;
    if (sizeOfChange(bytes) < worthTelling) return {};
    return {bytes > 0 ? NodeChange::Kind::Grew : NodeChange::Kind::Shrank, bytes};
}

QString markText(const NodeChange& change) {
    if (change.kind == NodeChange::Kind::None) return {};
    return change.kind == NodeChange::Kind::Came
               ? changesText(QT_TRANSLATE_NOOP("ChangesColumn", "new"))
               : changeText(change.bytes);
}

QString changeMark(const ScanDifference& difference, const FSNode& node) {
    if (node.has(FSNode::Unread) || node.has(FSNode::Foreign)) return {};
    return markText(changeOfNode(difference, node, node.size()));
}

ChangedNode nodeOfChange(const ScanDifference& difference, std::uint32_t number, FSNode& root) {
    FSNode* node = &root;
    for (const std::uint32_t each : wayTo(difference, number)) {
        const ScanChange& change = difference.all()[each];
        const auto children = node->children();
        const auto found = std::ranges::find(children, difference.name(change), &FSNode::name);
        if (found == children.end() || !isNodeOf(change, **found)) return {node, false};
        node = *found;
    }
    return {node, true};
}

ChangesColumn::ChangesColumn(std::shared_ptr<const ShownScan> scan, std::uint32_t folder)
    : m_scan(std::move(scan)), m_difference(m_scan->compared), m_folder(folder) {
    const ScanChange& whole = m_difference->all()[folder];
    const auto children = m_difference->children(whole);
    m_rest = whole.change();
    for (const std::uint32_t each : children) {
        const ScanChange& change = m_difference->all()[each];
        // What is, or holds, the biggest comes first.
        if (change.weight == 0 || change.weight < m_scan->limit) break;
        m_rows.push_back({each, change.sizeAfter});
        m_rest = restOfChange(m_rest, change.change());
    }
    m_restCount = children.size() - m_rows.size();
    m_hasRest = m_rest != 0 || m_restCount != 0;
    if (m_scan->hasChanged) takePresentSizes();
}

bool ChangesColumn::hadNode(const ScanChange& change) const {
    return change.sizeAfter != 0 && change.sizeAfter >= m_scan->limit;
}

// What is too small for the tree stays as the scan had it.
void ChangesColumn::takePresentSizes() {
    const auto [folder, isThere] = nodeOfChange(*m_difference, m_folder, m_scan->tree->root());
    std::unordered_map<std::string_view, const FSNode*> nodes;
    if (isThere)
        for (const FSNode* const each : folder->children()) nodes.emplace(each->name(), each);
    const ScanChange& whole = m_difference->all()[m_folder];
    m_rest = changeOf(whole.sizeBefore, isThere          ? folder->size()
                                        : hadNode(whole) ? 0
                                                         : whole.sizeAfter);
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        const ScanChange& change = changeAt(int(i));
        const auto found = nodes.find(m_difference->name(change));
        const bool hasNode = found != nodes.end() && isNodeOf(change, *found->second);
        m_rows[i].isRemoved = !hasNode && hadNode(change);
        m_rows[i].now = hasNode               ? found->second->size()
                        : m_rows[i].isRemoved ? 0
                                              : change.sizeAfter;
        m_rest -= this->change(int(i));
    }
}

void ChangesColumn::reload() {
    if (!m_scan->hasChanged || rowCount() == 0) return;
    takePresentSizes();
    Q_EMIT dataChanged(index(0), index(rowCount() - 1));
}

std::optional<std::uint32_t> ChangesColumn::number(int row) const {
    if (row < 0 || row >= int(m_rows.size())) return std::nullopt;
    return m_rows[std::size_t(row)].number;
}

const ScanChange& ChangesColumn::changeAt(int row) const {
    return m_difference->all()[m_rows.at(std::size_t(row)).number];
}

std::int64_t ChangesColumn::change(int row) const {
    return number(row) ? changeOf(changeAt(row).sizeBefore, m_rows[std::size_t(row)].now) : m_rest;
}

QString ChangesColumn::sizeText(int row) const {
    return aboutText(changeText(change(row)), number(row) && doubtWord(changeAt(row)));
}

// What a folder grew by mostly may have been removed meanwhile.
QString ChangesColumn::note(int row) const {
    if (!number(row)) return {};
    if (m_rows[std::size_t(row)].isRemoved)
        return changesText(QT_TRANSLATE_NOOP("ChangesColumn", "removed"));
    if (m_scan->hasChanged && changeAt(row).kind == ScanChange::Kind::Changed) return {};
    return noteOfChange(*m_difference, m_rows[std::size_t(row)].number);
}

bool ChangesColumn::isGone(int row) const {
    return number(row) &&
           (changeAt(row).kind == ScanChange::Kind::Went || m_rows[std::size_t(row)].isRemoved);
}

double ChangesColumn::share(int row) const {
    if (!number(row)) return 0;
    return double(sizeOfChange(change(row))) / double(changeAt(0).weight);
}

// All that there is to say, where the row has room for a word.
QStringList ChangesColumn::wholeNote(int row, bool isWithPath) const {
    if (!number(row)) return {};
    const Row& shown = m_rows[std::size_t(row)];
    const ScanChange& change = changeAt(row);
    QStringList words;
    if (shown.isRemoved) words << note(row);
    else if (change.kind != ScanChange::Kind::Changed)
        words << shownWord(comingWord(*m_difference, change));
    else if (!m_scan->hasChanged) words << mostlyText(*m_difference, shown.number, isWithPath);
    words << shownWord(doubtWord(change));
    words.removeAll(QString());
    return words;
}

QString ChangesColumn::tip(int row) const {
    if (!number(row)) return restText() + QStringLiteral(": ") + sizeText(row);
    const ScanChange& change = changeAt(row);
    QStringList lines{
        onOneLine(QString::fromStdString(m_difference->path(m_rows[std::size_t(row)].number))),
        changesText(QT_TRANSLATE_NOOP("ChangesColumn", "%1, now %2"))
            .arg(bytesWords(change.sizeBefore), bytesWords(m_rows[std::size_t(row)].now))};
    // Another name of a file that was there before takes no room.
    if (!m_scan->hasChanged && bytesWords(sizeOfChange(change.onDiskChange())) !=
                                   bytesWords(sizeOfChange(change.change())))
        lines.push_back(changesText(QT_TRANSLATE_NOOP("ChangesColumn", "%1 on disk"))
                            .arg(changeText(change.onDiskChange())));
    return (lines + wholeNote(row, true)).join(QLatin1Char('\n'));
}

QString ChangesColumn::restText() const {
    if (m_restCount == 0) {
        const QString files = bytesWords(m_difference->filesFrom());
        if (m_difference->foldersFrom() == 0)
            return changesText(QT_TRANSLATE_NOOP("ChangesColumn", "Files under %1")).arg(files);
        return changesText(QT_TRANSLATE_NOOP("ChangesColumn", "Files under %1, folders under %2"))
            .arg(files, bytesWords(m_difference->foldersFrom()));
    }
    return m_restCount == 1 ? changesText(QT_TRANSLATE_NOOP("ChangesColumn", "1 smaller change"))
                            : changesText(QT_TRANSLATE_NOOP("ChangesColumn", "%Ln smaller changes"),
                                          int(m_restCount));
}

std::unique_ptr<ColumnModel> ChangesColumn::open(int row) const {
    const auto opened = number(row);
    if (!opened || changeAt(row).childCount == 0) return nullptr;
    return std::make_unique<ChangesColumn>(m_scan, *opened);
}

int ChangesColumn::rowCount(const QModelIndex& parent) const {
    if (parent.isValid()) return 0;
    return int(m_rows.size()) + (m_hasRest ? 1 : 0);
}

QVariant ChangesColumn::data(const QModelIndex& index, int role) const {
    const auto shown = number(index.row());
    switch (role) {
        case Qt::DisplayRole:
            return shown ? changedName(*m_difference, changeAt(index.row())) : restText();
        case Qt::ToolTipRole: return asToolTip(tip(index.row()));
        case Qt::AccessibleTextRole: {
            const QStringList said{data(index, Qt::DisplayRole).toString(), sizeText(index.row())};
            return (said + wholeNote(index.row(), false)).join(QStringLiteral(", "));
        }
        default: return {};
    }
}

QVariant ChangesColumn::headerData(int section, Qt::Orientation orientation, int role) const {
    if (section != 0 || orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    return onOneLine(QString::fromStdString(m_difference->path(m_folder)));
}

}  // namespace orrinvale
