#include "ui/cleaning/CustomTableView.h"

#include <QPainter>
#include <algorithm>

#include "engine/base/saturating.h"
#include "engine/cleaning/CleanPageRows.h"
#include "engine/cleaning/cleanNotices.h"
#include "engine/settings/UserDefaults.h"
#include "engine/text/UtilityFunction.h"
#include "ui/cleaning/cleanWords.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

constexpr int finished = 101;  // the number of a run that is over

const char* const boxImages[] = {"option_no.png", "option_yes.png", "option_a.png"};

LeftRow::Content contentOf(int row) {
    const std::string image(cleanPageRows.at(std::size_t(row)).image);
    return {.title = cleanRowTitle(row),
            .picture = QString::fromStdString(image),
            .isStrong = row == overviewRow,
            .height = row == utilitiesRow ? Theme::rowHeight : LeftLinkTabviewCell::cellHeight};
}

}  // namespace

LeftLinkTabviewCell::LeftLinkTabviewCell(int row, const NotificationCenter& notifications,
                                         QWidget* parent)
    : LeftRow(contentOf(row), parent), m_row(row), m_notifications(notifications) {
    setObjectName(QStringLiteral("leftCell%1").arg(row));
    if (row == utilitiesRow) setEnabled(false);
}

void LeftLinkTabviewCell::clickCheckBox() {
    if (!isCategoryRow(m_row)) return;
    UserDefaults& defaults = UserDefaults::standardUserDefaults();
    const auto key = cleanCategories.at(std::size_t(m_row) - 1).settingKey;
    const bool old = defaults.objectForKey(key).has_value();
    notice::changeCheckBox.post(m_notifications, {m_row, old});
    defaults.setInteger(old ? 0 : 1, key);
}

void LeftLinkTabviewCell::paintEvent(QPaintEvent* event) {
    if (m_row != utilitiesRow) return LeftRow::paintEvent(event);
    QPainter painter(this);
    painter.setFont(Theme::shared().font(Theme::Text::Caption));
    painter.setPen(Theme::shared().color(Theme::Color::TextSecondary));
    painter.drawText(
        rect().adjusted(Theme::gapSmall, 0, -Theme::gapSmall, 0),
        int(QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft)) | Qt::AlignVCenter, title());
}

CustomTableView::CustomTableView(NotificationCenter& notifications, QWidget* parent)
    : LeftRail(parent), m_notifications(notifications) {
    setObjectName(QStringLiteral("customTableView"));
    setAccessibleName(tr("What can be cleaned"));
    setFixedWidth(tableWidth);
    for (int row = 0; row < int(cleanPageRows.size()); ++row) {
        const LeftRow::Content content = contentOf(row);
        m_dataArr.push_back({content.title, content.picture, {}, {}});
        auto* const added = new LeftLinkTabviewCell(row, notifications);
        if (isCategoryRow(row)) added->setBox(TickState::Nothing);
        add(added);
        connect(added, &LeftRow::boxClicked, this, [this, row] { Q_EMIT boxClicked(row); });
    }
    makeRoomForSizes(shownSize("888.88 MB"));
    select(overviewRow);
    m_observation = notice::changeCheckBox.observe(
        notifications, [this](SwitchedCategory each) { changeCheckBox(each.tag, each.flag); });
}

LeftLinkTabviewCell& CustomTableView::cell(int row) const {
    return static_cast<LeftLinkTabviewCell&>(this->row(row));
}

void CustomTableView::setSelectArray(std::vector<std::string> states) {
    m_selectArray = std::move(states);
    reloadData();
}

void CustomTableView::changeCheckBox(std::int32_t tag, bool flag) {
    const auto category = std::size_t(tag) - 1;
    if (!isCategoryRow(tag) || category >= m_selectArray.size()) return;
    m_selectArray[category] = std::string(1, flag ? '0' : '1');
    reloadData();
    notice::updateSelectNumberOfAll.post(m_notifications, m_selectArray);
}

void CustomTableView::reloadData() {
    for (std::size_t i = 0; i < m_selectArray.size(); ++i) {
        TableViewCellItemObj& item = m_dataArr[i + 1];
        const int state = m_selectArray[i] == "1" ? 1 : m_selectArray[i] == "2" ? 2 : 0;
        item.checkBoxImage = QLatin1String(boxImages[state]);
        item.size = m_found.at(i);
        cell(int(i) + 1).setBox(static_cast<TickState>(state));
        cell(int(i) + 1).setSizeText(foundWords(item.size));
    }
}

void CustomTableView::observeFoundText(const std::string& context, const std::string& size) {
    std::string* const found = m_found.of(context);
    if (found == nullptr) return;
    *found = size;
    for (std::size_t i = 0; i < cleanCategories.size(); ++i)
        if (cleanCategories.at(i).context == context)
            cell(int(i) + 1).setSizeText(foundWords(size));
}

void CustomTableView::comeBackStringValue() {
    m_found.comeBackStringValue();
    reloadData();
}

std::uint64_t CustomTableView::totalScanSize() const {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < cleanCategories.size(); ++i)
        addSaturating(sum, UtilityFunction::getVolSpaceFromString(m_found.at(i)));
    return sum;
}

std::string CustomTableView::getTotalSize() const {
    const std::uint64_t sum = totalScanSize();
    return sum == 0 ? "0.00KB" : UtilityFunction::convertVolSpace(sum);
}

int CustomTableView::cleanedPercent() const {
    if (m_totalSelectNum >= finished || m_selectTotalSize == 0) return 100;
    return std::min(100, static_cast<int>(100 * static_cast<double>(m_cleanedSize) /
                                          static_cast<double>(m_selectTotalSize)));
}

QString CustomTableView::getTotalSizeImage() const {
    return QStringLiteral("%1_progress_bar.png").arg(cleanedPercent());
}

}  // namespace orrinvale
