#include "ui/cleaning/ScanListModel.h"

#include <QDateTime>
#include <QLocale>
#include <algorithm>
#include <chrono>
#include <numeric>

#include "platform/paths.h"
#include "ui/cleaning/cleanWords.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/lists/columnWidths.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr int scanSizeWidth = 92;
constexpr int ageColumnWidth = 96;

std::int64_t now() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

QString dateText(const ScanListRow& row) {
    constexpr std::int64_t perMillisecond = 1'000'000;
    return QLocale().toString(QDateTime::fromMSecsSinceEpoch(row.newest / perMillisecond),
                              QLocale::ShortFormat);
}

std::vector<TickColumn<ScanListRow>> scanColumns(ScanListModel::IconSource icons) {
    return {
        {.name = ScanListModel::tr("Ticked"), .look = CellLook::Box, .width = boxColumnWidth},
        {.title = ScanListModel::tr("Name"),
         .look = CellLook::PathName,
         .sortKey = int(CleanOrder::Name),
         .text = [](const ScanListRow& row) { return QString::fromStdString(row.info->path); },
         .icon = [icons = std::move(icons)](
                     const ScanListRow& row) { return icons ? icons(row.info->icon) : QIcon(); }},
        {.title = ScanListModel::tr("Size"),
         .look = CellLook::Figure,
         .width = scanSizeWidth,
         .sortKey = int(CleanOrder::Size),
         .text = [](const ScanListRow& row) { return shownSize(row.info->size); }},
        {.title = ScanListModel::tr("Age"),
         .width = ageColumnWidth,
         .sortKey = int(CleanOrder::Age),
         .text = [](const ScanListRow& row) { return ageWords(now() - row.newest); },
         .toolTip = dateText},
        {.name = ScanListModel::tr("Show in File Manager"),
         .look = CellLook::Button,
         .width = boxColumnWidth,
         .toolTip =
             [](const ScanListRow& /*row*/) { return ScanListModel::tr("Show in File Manager"); },
         .icon =
             [](const ScanListRow& /*row*/) { return picture(QStringLiteral("search_file.png")); }},
    };
}

}  // namespace

QString cameBackWords() { return ScanListModel::tr("Came back since it was last cleaned"); }

ScanListModel::ScanListModel(IconSource icons, BoxClicked boxClicked,
                             const std::unordered_set<std::string>& cleaned, QObject* parent)
    : TickModelOf(scanColumns(std::move(icons)), parent),
      m_boxClicked(std::move(boxClicked)),
      m_cleaned(cleaned) {}

void ScanListModel::setList(const ScanViewController& list) {
    beginResetModel();
    m_rows.clear();
    if (list.scanFiles) {
        const std::vector<CleanRow>& listed = list.listing().rows;
        m_rows.reserve(list.scanFiles->size());
        for (std::size_t i = 0; i < list.scanFiles->size(); ++i)
            m_rows.push_back({(*list.scanFiles)[i], i, i < listed.size() ? listed[i].newest : 0});
    }
    arrange();
    endResetModel();
}

void ScanListModel::takeOut(const std::string& path) {
    const auto row = std::ranges::find(
        m_rows, path, [](const auto& each) -> const std::string& { return each.info->path; });
    if (row == m_rows.end()) return;
    const auto place = std::size_t(row - m_rows.begin());
    const auto shown = std::ranges::find(m_shown, place);
    const int line = shown != m_shown.end() ? int(shown - m_shown.begin()) : -1;
    if (line >= 0) beginRemoveRows({}, line, line);
    for (auto later = m_rows.erase(row); later != m_rows.end(); ++later) --later->number;
    if (line >= 0) m_shown.erase(shown);
    for (std::size_t& each : m_shown)
        if (each > place) --each;
    if (line >= 0) endRemoveRows();
}

void ScanListModel::clear() {
    beginResetModel();
    m_rows.clear();
    m_shown.clear();
    endResetModel();
}

void ScanListModel::setFilter(const QString& words) {
    if (words == m_filter) return;
    beginResetModel();
    m_filter = words;
    arrange();
    endResetModel();
}

void ScanListModel::setOrder(std::optional<CleanOrder> order, bool isDescending) {
    beginResetModel();
    m_order = order;
    m_isDescending = isDescending;
    arrange();
    endResetModel();
}

void ScanListModel::arrange() {
    m_shown.clear();
    for (std::size_t i = 0; i < m_rows.size(); ++i)
        if (hasWords(m_rows[i].info->name, m_filter)) m_shown.push_back(i);
    if (!m_order) return;
    const auto isBefore = [this](std::size_t a, std::size_t b) {
        const ScanListRow& first = m_rows[m_isDescending ? b : a];
        const ScanListRow& second = m_rows[m_isDescending ? a : b];
        switch (*m_order) {
            case CleanOrder::Size: return first.info->fileSizeNum < second.info->fileSizeNum;
            case CleanOrder::Age: return first.newest > second.newest;
            default: return first.info->name < second.info->name;
        }
    };
    std::ranges::stable_sort(m_shown, isBefore);
}

std::vector<std::size_t> ScanListModel::shownNumbers() const {
    std::vector<std::size_t> numbers;
    for (const std::size_t each : m_shown) numbers.push_back(m_rows[each].number);
    return numbers;
}

CleanSums ScanListModel::shownSums() const {
    CleanSums sums;
    for (const std::size_t each : m_shown) sums.add(*m_rows[each].info);
    return sums;
}

ScanViewController::Rows ScanListModel::shownTicked() const {
    std::vector<std::size_t> ticked;
    for (const std::size_t each : m_shown)
        if (m_rows[each].info->bIsSelected) ticked.push_back(each);
    std::ranges::sort(ticked);
    ScanViewController::Rows rows;
    for (const std::size_t each : ticked) rows.push_back(m_rows[each].info);
    return rows;
}

QModelIndex ScanListModel::index(int row, int column, const QModelIndex& parent) const {
    const bool isThere = !parent.isValid() && row >= 0 && row < rowCount() && column >= 0;
    return isThere && column < ColumnCount ? createIndex(row, column) : QModelIndex();
}

int ScanListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_shown.size());
}

ScanListRow* ScanListModel::rowAt(const QModelIndex& index) const {
    const auto row = std::size_t(index.row());
    return index.isValid() && row < m_shown.size() ? &m_rows[m_shown[row]] : nullptr;
}

std::optional<TickState> ScanListModel::stateOf(const ScanListRow& row) const {
    return row.info->bIsSelected ? TickState::All : TickState::Nothing;
}

QString ScanListModel::toolTipOf(const ScanListRow& row) const {
    QString text = QString::fromStdString(row.info->path);
    if (m_cleaned.contains(row.info->path)) text += QLatin1Char('\n') + cameBackWords();
    return text;
}

QString ScanListModel::descriptionOf(const ScanListRow& row) const {
    return m_cleaned.contains(row.info->path) ? cameBackWords() : QString();
}

// What all of them share tells nothing apart.
QString ScanListModel::folderOf(const ScanListRow& row) const {
    return QString::fromStdString(::orrinvale::folderOf(row.info->path)) + QLatin1Char('/');
}

QStringList ScanListModel::signsOf(const ScanListRow& row) const {
    return m_cleaned.contains(row.info->path) ? QStringList{QStringLiteral("sign_back")}
                                              : QStringList();
}

bool ScanListModel::clickBox(const QModelIndex& index) {
    const ScanListRow* const clicked = rowAt(index);
    if (clicked == nullptr || !m_boxClicked) return false;
    m_boxClicked(clicked->number);
    return true;
}

}  // namespace orrinvale
