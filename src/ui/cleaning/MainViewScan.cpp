// MainViewController: the scan of all six lists.
#include <utility>

#include "engine/base/saturating.h"
#include "engine/cleaning/FolderUtilities.h"
#include "engine/settings/UserDefaults.h"
#include "ui/cleaning/CleanViews.h"
#include "ui/cleaning/MainViewController.h"
#include "ui/cleaning/ScanListModel.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/controls/ElidedLabel.h"

namespace orrinvale {
namespace {

constexpr const char* noSize = "0.00KB";
constexpr unsigned allCategories = 0b111111;

}  // namespace

void MainViewController::bindScanview(ScanViewController& list, std::size_t category,
                                      bool isClean) {
    const std::string context(cleanCategories.at(category).context);
    Binding& binding = m_bindings.at(category);
    binding.size = list.addObserver<std::string>(
        ScanViewController::filesSizeChange, context,
        [row = m_views->allNewViewArr.at(category)](
            const std::string& of, const std::string& size) { row->observeFoundText(of, size); });
    binding.tableSize =
        list.addObserver<std::string>(ScanViewController::filesSizeChange, context,
                                      [this](const std::string& of, const std::string& size) {
                                          m_views->customTableView->observeFoundText(of, size);
                                          showTitle();
                                      });
    binding.finish = list.addObserver<bool>(
        isClean ? ScanViewController::cleanFinishedChange : ScanViewController::scanFinishedChange,
        isClean ? KVO_CONTEXT_CLEAN_FINISH : KVO_CONTEXT_SCAN_FINISH,
        [this, category](const std::string& of, const bool& /*value*/) {
            if (of == KVO_CONTEXT_CLEAN_FINISH) cleanEnded(category);
            else scanEnded(category);
        });
}

void MainViewController::unbind(std::size_t category) { m_bindings.at(category) = {}; }

// What the last run tells late says nothing of this one.
void MainViewController::newRun(unsigned categories) {
    m_run = CleanRun(lists(), categories);
    ++m_runNumber;
    m_outcome = {};
    ResultFrame::showLine(*m_views->gainLabel, {});
    m_views->gainReason->hide();
    ResultFrame::showLine(*m_views->failureLine, {});
}

void MainViewController::scanButtonAction() {
    if (m_isAsking || isCleaning()) return;
    isFirstComeIn = false;
    isShowCleanedSize = false;
    if (!isCancelButton) return beginScan();
    enter(State::Stopping);
    for (ScanViewController* const each : m_run.lists()) each->cancelScanTask();
}

void MainViewController::beginScan() {
    newRun(allCategories);
    isCancelButton = bClickScanBtn = true;
    selectArray = getDefaultsValue();
    m_views->customTableView->setSelectArray(selectArray);
    m_views->customTableView->comeBackStringValue();
    m_views->customTableView->setIsCleanInfo(false);
    m_views->customTableView->setProImageNum(0);
    willScan();
    enter(State::Scanning);
    const auto run = std::make_shared<FoldersOfRun>();
    for (std::size_t i = 0; i < m_tableControllers.size(); ++i) {
        ScanViewController& list = *m_tableControllers.at(i);
        m_models.at(i)->clear();
        V3MainListView& row = *m_views->allNewViewArr.at(i);
        row.setBoxHidden(true);
        row.startPrograssAnimation();
        row.initSizeLable(noSize);
        bindScanview(list, i, false);
        // Even where the folders are is asked of a disk that may sleep.
        list.beginScanTask([utilities = m_parts.clean.utilities,
                            i] { return utilities->getFolderPath(static_cast<std::uint32_t>(i)); },
                           run);
    }
    showRow();
    showSelection();
}

void MainViewController::scanEnded(std::size_t category) {
    setHiddenCheckBoxAction();
    listEnded(category);
    if (!m_run.end(category)) return;
    leaveOutLate();
    m_views->customTableView->setProImageNum(100);
    takeSettings();
    for (std::size_t i = 0; i < m_tableControllers.size(); ++i) {
        unbind(i);
        V3MainListView& row = *m_views->allNewViewArr.at(i);
        row.setBoxHidden(false);
        row.stopPrograssAnimation();
    }
    countTicks();
    isCancelButton = bClickScanBtn = false;
    setHiddenCheckBoxAction();
    showShares();
    enter(State::Reviewing);
    scansEnded();
    refreshLists();
    showRow();
    showSelection();
    showKept();
    setCleanButtonState();
    m_views->forwardButton->show();
}

// Each list is there at its own end, ticked as it will be once all are.
void MainViewController::listEnded(std::size_t category) {
    ScanViewController& list = *m_tableControllers.at(category);
    if (getDefaultsValue().at(category) == "0") list.setNoCheckBoxSelect();
    else list.setAllCheckBoxSelect();
    m_models.at(category)->setList(list);
    if (selectRowNum != int(category) + 1) return;
    countTicks();
    refreshLists();
    showRow();
}

// Every scan begins with whole categories, since which rows were ticked before says nothing of
// what is there now.
void MainViewController::takeSettings() {
    selectArray = getDefaultsValue();
    for (std::size_t i = 0; i < m_tableControllers.size(); ++i) {
        ScanViewController& list = *m_tableControllers.at(i);
        if (selectArray.at(i) == "0") {
            list.setNoCheckBoxSelect();
        } else {
            list.setAllCheckBoxSelect();
            if (selectArray.at(i) == "2") changeCheckBoxInUserDefaults(i, 1);
        }
        m_views->allNewViewArr.at(i)->refCheckBox(selectArray.at(i) == "0" ? 0 : 1);
    }
    selectArray = getDefaultsValue();
    m_views->customTableView->setSelectArray(selectArray);
}

void MainViewController::setHiddenCheckBoxAction() {
    for (std::size_t i = 0; i < m_tableControllers.size(); ++i) {
        const auto& rows = m_tableControllers.at(i)->scanFiles;
        if (!rows || rows->empty()) m_views->allNewViewArr.at(i)->setBoxHidden(true);
    }
}

std::uint64_t MainViewController::foundBytes() const {
    std::uint64_t sum = 0;
    for (const auto& list : m_tableControllers) addSaturating(sum, list->totalBytes());
    return sum;
}

void MainViewController::showShares() {
    const auto total = static_cast<double>(foundBytes());
    for (std::size_t i = 0; i < m_tableControllers.size(); ++i) {
        const auto size = static_cast<double>(m_tableControllers.at(i)->totalBytes());
        m_views->allNewViewArr.at(i)->showShare(total > 0 ? size / total : 0);
    }
}

}  // namespace orrinvale
