// The rows are a copy of the folder's list: nodes stay where they are for the life of their tree.
#include "ui/diskusage/FSNodeColumn.h"

#include <QCoreApplication>
#include <algorithm>
#include <utility>

#include "engine/diskusage/UsageSelection.h"
#include "engine/text/UtilityFunction.h"
#include "ui/diskusage/ChangesColumn.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/lists/paintTickBox.h"

namespace orrinvale {
namespace {

QString columnText(const char* source, int count = -1) {
    return QCoreApplication::translate("FSNodeColumn", source, nullptr, count);
}

QString leftOutTip(const FSNode& folder, std::uint64_t limit) {
    const LeftOut leftOut = folder.leftOut();
    return QStringLiteral("%1: %2").arg(leftOutWords(leftOut.entries, limit),
                                        bytesWords(leftOut.size));
}

QString tipOf(const FSNode& node, bool isRunning) {
    QString tip = onOneLine(QString::fromStdString(node.path())) + QLatin1Char('\n') +
                  sizeWords(node, isRunning);
    const QString onDisk = bytesWords(node.onDisk());
    if (!node.has(FSNode::Undecided) && onDisk != bytesWords(node.size()))
        tip += QStringLiteral(", ") +
               columnText(QT_TRANSLATE_NOOP("FSNodeColumn", "%1 on disk")).arg(onDisk);
    if (node.has(FSNode::ForeignWithin))
        tip += QLatin1Char('\n') +
               columnText(QT_TRANSLATE_NOOP("FSNodeColumn", "Without what lies on other disks"));
    return tip;
}

QString spokenState(const FSNode& node) {
    if (node.isButtonState() == FSNode::Selected)
        return columnText(QT_TRANSLATE_NOOP("FSNodeColumn", "ticked"));
    if (node.isButtonState() == FSNode::Mixed)
        return columnText(QT_TRANSLATE_NOOP("FSNodeColumn", "partly ticked"));
    return {};
}

}  // namespace

QString bytesWords(std::uint64_t bytes) {
    return shownSize(UtilityFunction::convertVolSpace(bytes));
}

QString leftOutWords(std::uint64_t entries, std::uint64_t limit) {
    const QString words =
        entries == 1
            ? columnText(QT_TRANSLATE_NOOP("FSNodeColumn", "1 item under %1"))
            : columnText(QT_TRANSLATE_NOOP("FSNodeColumn", "%Ln items under %1"), int(entries));
    return words.arg(bytesWords(limit));
}

QString sizeWords(const FSNode& node, bool isRunning) {
    if (node.has(FSNode::Unread))
        return columnText(QT_TRANSLATE_NOOP("FSNodeColumn", "could not be read"));
    if (node.has(FSNode::Foreign))
        return columnText(QT_TRANSLATE_NOOP("FSNodeColumn", "on another disk"));
    QString size = bytesWords(node.size());
    if (node.has(FSNode::Undecided)) {
        if (node.size() == 0)
            return isRunning ? QString(QChar(0x2026))
                             : columnText(QT_TRANSLATE_NOOP("FSNodeColumn", "not counted"));
        if (isRunning) return size;
    }
    const bool isPart = node.has(FSNode::Undecided) || node.has(FSNode::CutWithin) ||
                        node.has(FSNode::UnreadWithin);
    return isPart ? QStringLiteral("\u2265 ") + size : size;
}

QString entryTip(const FSNode& node, const ShownScan& scan) {
    const QString mark = scan.compared != nullptr ? changeMark(*scan.compared, node) : QString();
    const QString tip = tipOf(node, scan.isRunning);
    return asToolTip(mark.isEmpty() ? tip : tip + QLatin1Char('\n') + mark);
}

FSNodeColumn::FSNodeColumn(std::shared_ptr<const ShownScan> scan, FSNode& folder)
    : m_scan(std::move(scan)), m_folder(folder) {
    load();
}

void FSNodeColumn::load() {
    const auto children = openColumn(m_folder);
    m_rows.assign(children.begin(), children.end());
    m_hasLastLine = m_folder.leftOut().entries != 0;
}

FSNode* FSNodeColumn::node(int row) const {
    return row >= 0 && row < int(m_rows.size()) ? m_rows[std::size_t(row)] : nullptr;
}

int FSNodeColumn::rowOf(const FSNode& node) const {
    const auto found = std::ranges::find(m_rows, &node);
    return found == m_rows.end() ? -1 : int(found - m_rows.begin());
}

std::unique_ptr<ColumnModel> FSNodeColumn::open(int row) const {
    FSNode* const opened = node(row);
    if (opened == nullptr || !opened->isDirectory()) return nullptr;
    return std::make_unique<FSNodeColumn>(m_scan, *opened);
}

void FSNodeColumn::reload() {
    Q_EMIT layoutAboutToBeChanged();
    const QModelIndexList before = persistentIndexList();
    std::vector<FSNode*> nodes;
    for (const QModelIndex& each : before) nodes.push_back(node(each.row()));
    load();
    const QModelIndex lastLine = m_hasLastLine ? index(int(m_rows.size())) : QModelIndex();
    QModelIndexList after;
    for (FSNode* const each : nodes)
        after.push_back(each != nullptr ? index(rowOf(*each)) : lastLine);
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged();
}

int FSNodeColumn::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_rows.size()) + (m_hasLastLine ? 1 : 0);
}

QVariant FSNodeColumn::data(const QModelIndex& index, int role) const {
    const FSNode* const shown = node(index.row());
    if (shown == nullptr) {
        if (role == Qt::DisplayRole) return leftOutWords(m_folder.leftOut().entries, m_scan->limit);
        if (role == Qt::AccessibleTextRole || role == Qt::ToolTipRole)
            return leftOutTip(m_folder, m_scan->limit);
        return {};
    }
    switch (role) {
        case Qt::DisplayRole: return QString::fromStdString(shown->displayName());
        case Qt::ToolTipRole: return entryTip(*shown, *m_scan);
        case Qt::CheckStateRole: return int(checkState(tickState(int(shown->isButtonState()))));
        case Qt::AccessibleTextRole: {
            QStringList said{
                onOneLine(QString::fromStdString(shown->displayName())),
                sizeWords(*shown, m_scan->isRunning),
                m_scan->compared != nullptr ? changeMark(*m_scan->compared, *shown) : QString(),
                spokenState(*shown)};
            said.removeAll(QString());
            return said.join(QStringLiteral(", "));
        }
        default: return {};
    }
}

QVariant FSNodeColumn::headerData(int /*section*/, Qt::Orientation /*orientation*/,
                                  int role) const {
    return role == Qt::DisplayRole ? onOneLine(QString::fromStdString(m_folder.displayName()))
                                   : QVariant();
}

}  // namespace orrinvale
