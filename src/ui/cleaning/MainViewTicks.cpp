// MainViewController: ticks. Lists, rows, the left table, the boxes above and the settings say the
// same after whatever a person clicks.
#include "engine/cleaning/CleanPageRows.h"
#include "engine/cleaning/cleanNotices.h"
#include "engine/settings/UserDefaults.h"
#include "ui/cleaning/CleanViews.h"
#include "ui/cleaning/MainViewController.h"
#include "ui/cleaning/ScanListModel.h"
#include "ui/cleaning/ScanListView.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/lists/TickBox.h"

namespace orrinvale {

std::vector<std::string> MainViewController::getDefaultsValue() const {
    std::vector<std::string> values;
    values.reserve(std::size(cleanCategories));
    for (const CleanCategoryNames& each : cleanCategories)
        values.push_back(
            std::to_string(UserDefaults::standardUserDefaults().integerForKey(each.settingKey)));
    return values;
}

// What stands there already is not set again: a setting that changes is written to the disk.
void MainViewController::changeCheckBoxInUserDefaults(std::size_t category,
                                                      std::int32_t number) const {
    UserDefaults& defaults = UserDefaults::standardUserDefaults();
    const auto key = cleanCategories.at(category).settingKey;
    if (defaults.integerForKey(key) != number) defaults.setInteger(number, key);
}

// Once a click, for all who show it: lists may have tens of thousands of rows.
void MainViewController::countTicks() {
    CleanSums all;
    for (std::size_t i = 0; i < m_tableControllers.size(); ++i) {
        const ScanListModel& model = *m_models.at(i);
        m_sums.at(i) = sumsOf(*m_tableControllers.at(i));
        m_shownSums.at(i) = model.isFiltered() ? model.shownSums() : m_sums.at(i);
        all += m_sums.at(i);
    }
    selectCount2Clean = static_cast<int>(all.ticked);
    allSelectTotalSize = all.bytes;
}

// Of what the filter shows, since nothing goes that nobody sees.
CleanSums MainViewController::shownSums() const {
    if (isCategoryRow(selectRowNum)) return m_shownSums.at(std::size_t(selectRowNum) - 1);
    CleanSums all;
    for (const CleanSums& each : m_shownSums) all += each;
    return all;
}

CleanChoice MainViewController::choice(unsigned categories) const {
    CleanChoice chosen;
    for (std::size_t i = 0; i < m_models.size(); ++i) {
        if ((categories >> i & 1U) == 0) continue;
        chosen.rows.at(i) = m_models.at(i)->shownTicked();
        chosen.sums += m_models.at(i)->shownSums();
    }
    return chosen;
}

void MainViewController::filterTyped(const QString& words) {
    for (const auto& each : m_models) each->setFilter(words);
    filterChanged(words);
    countTicks();
    refreshLists();
    setCleanButtonState();
    showSelection();
}

void MainViewController::checkBoxAction(std::size_t category) {
    // The box has turned by itself.
    if (!isFree())
        return m_views->allNewViewArr.at(category)->refCheckBox(m_sums.at(category).state());
    const std::string old = getDefaultsValue().at(category);
    const std::int32_t state = old == "1" ? 0 : 1;
    m_views->allNewViewArr.at(category)->refCheckBox(state);
    changeCheckBoxInUserDefaults(category, state);
    notice::updateSelectNumber.post(*m_parts.pages.notifications, {std::int32_t(category)});
}

void MainViewController::updateSelectNumber(std::int32_t category) {
    if (!isFree() || category < 0 || category >= std::ssize(m_tableControllers)) return;
    selectArray = getDefaultsValue();
    m_views->customTableView->setSelectArray(selectArray);
    ScanViewController& list = *m_tableControllers.at(std::size_t(category));
    if (selectArray.at(std::size_t(category)) == "0") list.setNoCheckBoxSelect();
    else list.setAllCheckBoxSelect();
    cleanShowSelectNumInBottomNotice.post(*m_parts.pages.notifications, {});
}

void MainViewController::cleanShowSelectNumInBottom(const CleanSelection& selection) {
    if (selection.isAnimated && selection.state.value_or(false)) {
        const auto* const from = std::any_cast<QWidget*>(&selection.startButton);
        if (from != nullptr) fly(*from);
    }
    // Rows that a scan has just brought are ticked by nobody yet, and say nothing to the settings;
    // before the first scan there are none.
    if (bClickScanBtn || isFirstComeIn) return showSelection();
    ticksChanged();
    cleanShowSelectNumCommAction();
    setCleanButtonState();
}

void MainViewController::cleanShowSelectNumCommAction() {
    countTicks();
    for (std::size_t i = 0; i < m_tableControllers.size(); ++i) {
        ScanViewController& list = *m_tableControllers.at(i);
        const std::int32_t state = m_sums.at(i).state();
        list.selectButton = state == 1;
        m_views->allNewViewArr.at(i)->refCheckBox(state);
        changeCheckBoxInUserDefaults(i, state);
    }
    selectArray = getDefaultsValue();
    m_views->customTableView->setSelectArray(selectArray);
    refreshLists();
    showSelection();
}

void MainViewController::listBoxClicked(std::size_t category, std::size_t row) {
    if (isFree()) m_tableControllers.at(category)->toggleRow(row);
}

// What a filter hides is left as it is.
void MainViewController::listHeaderClicked(std::size_t category) {
    ScanViewController& list = *m_tableControllers.at(category);
    const ScanListModel& model = *m_models.at(category);
    if (!isFree() || !list.scanFiles) return refreshLists();
    const bool isOn = m_shownSums.at(category).state() != 1;
    if (!model.isFiltered()) {
        QWidget* const from = m_views->lists.at(category)->headerBox();
        return list.cleanShowSelectNumInBottom(isOn, std::any(from));
    }
    for (const std::size_t row : model.shownNumbers()) (*list.scanFiles)[row]->bIsSelected = isOn;
    cleanShowSelectNumInBottomNotice.post(*m_parts.pages.notifications, {.state = isOn});
}

void MainViewController::refreshLists() {
    for (std::size_t i = 0; i < m_models.size(); ++i) {
        m_views->lists.at(i)->headerBox()->setState(
            static_cast<TickState>(m_shownSums.at(i).state()));
        if (m_views->lists.at(i)->isVisible()) m_models.at(i)->refresh();
    }
}

}  // namespace orrinvale
