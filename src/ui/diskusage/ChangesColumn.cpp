// The rows are numbers of the difference, which is whole and never changes.
#include "ui/diskusage/ChangesColumn.h"

#include <QCoreApplication>
#include <QLocale>
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "engine/diskusage/FSNode.h"
#include "ui/diskusage/FSNodeColumn.h"
#include "ui/kit/controls/pathText.h"

namespace orrinvale {
namespace {

QString changesText(const char* source, int count = -1) {
    return QCoreApplication::translate("ChangesColumn", source, nullptr, count);
}

std::uint64_t bytesOf(std::int64_t change) {
    return change < 0 ? 0 - std::uint64_t(change) : std::uint64_t(change);
}

QString nameText(const ScanDifference& difference, const ScanChange& change) {
    return onOneLine(QString::fromStdString(std::string(difference.name(change))));
}

QString tipOfChange(const ScanDifference& difference, std::uint32_t number) {
    const ScanChange& change = difference.all()[number];
    QString tip = onOneLine(QString::fromStdString(difference.path(number))) + QLatin1Char('\n') +
                  changesText(QT_TRANSLATE_NOOP("ChangesColumn", "%1, now %2"))
                      .arg(bytesWords(change.sizeBefore), bytesWords(change.sizeAfter));
    if (const QString note = changeNote(difference, number); !note.isEmpty())
        tip += QLatin1Char('\n') + note;
    if (change.isPartial)
        tip += QLatin1Char('\n') + changesText(QT_TRANSLATE_NOOP(
                                       "ChangesColumn", "Not all of it could be read each time"));
    return tip;
}

}  // namespace

QString changeText(std::int64_t change) {
    const QString size = bytesWords(bytesOf(change));
    constexpr std::int64_t least = 10;  // two places of a KB
    if (std::abs(change) < least) return size;
    return QLatin1Char(change > 0 ? '+' : '-') + size;
}

QString changeNote(const ScanDifference& difference, std::uint32_t number) {
    const ScanChange& change = difference.all()[number];
    if (change.kind == ScanChange::Kind::Came)
        return changesText(QT_TRANSLATE_NOOP("ChangesColumn", "new"));
    if (change.kind == ScanChange::Kind::Went)
        return changesText(QT_TRANSLATE_NOOP("ChangesColumn", "gone"));
    const std::uint32_t most = difference.mostly(number);
    if (most == number) return {};
    QString way;
    for (std::uint32_t each = most; each != number; each = difference.all()[each].parent)
        way = nameText(difference, difference.all()[each]) +
              (way.isEmpty() ? QString() : QLatin1Char('/') + way);
    return changesText(QT_TRANSLATE_NOOP("ChangesColumn", "mostly %1")).arg(way);
}

// From the root on; of what is in a new folder the folder tells.
QString changeMark(const ScanDifference& difference, const FSNode& node) {
    if (node.has(FSNode::Unread) || node.has(FSNode::Foreign)) return {};
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
    if (change->kind == ScanChange::Kind::Came)
        return changesText(QT_TRANSLATE_NOOP("ChangesColumn", "new"));
    constexpr std::uint64_t worthTelling = 1000;
    return bytesOf(change->change()) < worthTelling ? QString() : changeText(change->change());
}

ChangesColumn::ChangesColumn(std::shared_ptr<const ScanDifference> difference, std::uint32_t folder,
                             std::uint64_t limit)
    : m_difference(std::move(difference)), m_folder(folder), m_limit(limit) {
    const ScanChange& whole = m_difference->all()[folder];
    const auto children = m_difference->children(whole);
    m_rest = whole.change();
    for (const std::uint32_t each : children) {
        const std::int64_t change = m_difference->all()[each].change();
        if (change == 0 || bytesOf(change) < limit) break;  // the biggest come first
        m_rows.push_back(each);
        m_rest -= change;
    }
    m_restCount = children.size() - m_rows.size();
}

std::optional<std::uint32_t> ChangesColumn::number(int row) const {
    if (row < 0 || row >= int(m_rows.size())) return std::nullopt;
    return m_rows[std::size_t(row)];
}

const ScanChange& ChangesColumn::changeAt(int row) const {
    return m_difference->all()[m_rows.at(std::size_t(row))];
}

QString ChangesColumn::sizeText(int row) const {
    return changeText(number(row) ? changeAt(row).change() : m_rest);
}

double ChangesColumn::share(int row) const {
    if (!number(row)) return 0;
    return double(bytesOf(changeAt(row).change())) / double(bytesOf(changeAt(0).change()));
}

QString ChangesColumn::restText() const {
    if (m_restCount == 0)
        return changesText(QT_TRANSLATE_NOOP("ChangesColumn", "Files under %1"))
            .arg(bytesWords(m_difference->filesFrom()));
    return m_restCount == 1 ? changesText(QT_TRANSLATE_NOOP("ChangesColumn", "1 smaller change"))
                            : changesText(QT_TRANSLATE_NOOP("ChangesColumn", "%Ln smaller changes"),
                                          int(m_restCount));
}

std::unique_ptr<ColumnModel> ChangesColumn::open(int row) const {
    const auto opened = number(row);
    if (!opened || changeAt(row).childCount == 0) return nullptr;
    return std::make_unique<ChangesColumn>(m_difference, *opened, m_limit);
}

int ChangesColumn::rowCount(const QModelIndex& parent) const {
    if (parent.isValid()) return 0;
    return int(m_rows.size()) + (m_rest != 0 || m_restCount != 0 ? 1 : 0);
}

QVariant ChangesColumn::data(const QModelIndex& index, int role) const {
    const auto shown = number(index.row());
    switch (role) {
        case Qt::DisplayRole:
            return shown ? nameText(*m_difference, changeAt(index.row())) : restText();
        case Qt::ToolTipRole:
            return asToolTip(shown ? tipOfChange(*m_difference, *shown)
                                   : restText() + QStringLiteral(": ") + sizeText(index.row()));
        case Qt::AccessibleTextRole: {
            QString text = data(index, Qt::DisplayRole).toString() + QStringLiteral(", ") +
                           sizeText(index.row());
            const QString note = shown ? changeNote(*m_difference, *shown) : QString();
            return note.isEmpty() ? text : text + QStringLiteral(", ") + note;
        }
        default: return {};
    }
}

QVariant ChangesColumn::headerData(int section, Qt::Orientation orientation, int role) const {
    if (section != 0 || orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    return onOneLine(QString::fromStdString(m_difference->path(m_folder)));
}

}  // namespace orrinvale
