// DiskUsageAppController: the places on its left, and how one comes to them and leaves them.
#include <QScrollArea>
#include <algorithm>
#include <utility>

#include "engine/diskusage/UsageSelection.h"
#include "engine/volumes/SpaceLevel.h"
#include "ui/diskusage/DiskUsageAppController.h"
#include "ui/diskusage/DiskUsageViews.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/lists/LeftRail.h"
#include "ui/page/PageStack.h"
#include "ui/volumes/levelNow.h"

namespace orrinvale {
namespace {

DiskUsageLeftCell::Place placeOf(const ZvVolumeInfo& volume) {
    const VolumeSpace space = spaceOf(volume);
    DiskUsageLeftCell::Place place;
    place.name = onOneLine(QString::fromStdString(volume.volumeName));
    place.path = volume.volRootDir;
    place.picture =
        volume.bIsDefaultVol ? QStringLiteral("disk_mac") : QStringLiteral("disk_ico_1");
    place.total = shownSize(volume.totalSpace);
    place.free = shownSize(volume.freeSpace);
    place.isShort = isShortOfSpace(space, static_cast<float>(warningLevelIn(levelNow())));
    if (space.total != 0)
        place.fullness = 1.0 - std::min(1.0, double(space.free) / double(space.total));
    return place;
}

}  // namespace

void DiskUsageAppController::look(bool isOnScreen) {
    m_watching.reset();
    if (isOnScreen && m_own.watch != nullptr)
        m_watching = m_own.watch->observe(SystemWatch::Part::Volumes,
                                          [this](const SystemSight& seen) { volumesSeen(seen); });
}

// A volume that comes or goes while something runs gets or loses its row at the end of that.
void DiskUsageAppController::volumesSeen(const SystemSight& seen) {
    m_localDiskArr = seen;
    m_hasNewVolumes = true;
    if (isFree()) getLocalDiskInfo();
}

std::vector<DiskUsageLeftCell::Place> DiskUsageAppController::placesNow() const {
    std::vector<DiskUsageLeftCell::Place> places;
    DiskUsageLeftCell::Place home;
    home.name = m_own.userName;
    home.path = m_own.home;
    home.picture = QStringLiteral("home_disk");
    home.free = QStringLiteral(" ");
    places.push_back(home);
    for (const SeenVolume& each : m_localDiskArr.volumes)
        if (each.record->volType == LocalVolume) places.push_back(placeOf(*each.record));
    if (m_pathStrDrag.empty()) return places;
    DiskUsageLeftCell::Place custom;
    custom.name = onOneLine(pathParts(QString::fromStdString(m_pathStrDrag)).name);
    custom.path = m_pathStrDrag;
    custom.picture = QStringLiteral("folder");
    places.push_back(custom);
    return places;
}

// What was scanned before a volume came lies under it now, or went with the volume before. A folder
// of one's own at its place has become that volume.
void DiskUsageAppController::giveWayToVolumes() {
    for (const SeenVolume& each : m_localDiskArr.volumes) {
        const std::string& path = each.record->volRootDir;
        if (each.record->volType != LocalVolume || m_own.home == path) continue;
        const auto row = std::ranges::find(m_leftCellArr, path, &DiskUsageLeftCell::pathName);
        const bool isOther =
            row != m_leftCellArr.end() && (*row)->title() != placeOf(*each.record).name;
        if (m_pathStrDrag != path && !isOther) continue;
        m_scans.erase(path);
        if (m_pathStrDrag == path) m_pathStrDrag.clear();
        if (m_selectedPath == path) m_selectedPath.clear();
    }
}

// Rows that stand get new figures; other rows are made anew, and what was selected is found by its
// path.
void DiskUsageAppController::getLocalDiskInfo() {
    m_hasNewVolumes = false;
    giveWayToVolumes();
    const auto places = placesNow();
    const bool isSame = std::ranges::equal(
        places, m_leftCellArr, [this](const auto& place, const DiskUsageLeftCell* cell) {
            return place.path == cell->pathName() && place.name == cell->title() &&
                   m_scans.contains(place.path) == cell->isScaned();
        });
    if (!isSame) {
        makeRows(places);
        return;
    }
    for (std::size_t row = 0; row < places.size(); ++row)
        if (places[row].fullness) m_leftCellArr[row]->setFigures(places[row]);
}

void DiskUsageAppController::makeRows(const std::vector<DiskUsageLeftCell::Place>& places) {
    auto* const rail = new LeftRail;
    rail->setObjectName(QStringLiteral("leftRail"));
    rail->setAccessibleName(tr("Places"));
    m_leftCellArr.clear();
    for (const DiskUsageLeftCell::Place& place : places) {
        const auto row = std::int32_t(m_leftCellArr.size());
        auto* const cell = new DiskUsageLeftCell(row, place, *m_parts.notifications);
        const auto scanned = m_scans.find(place.path);
        cell->setIsScaned(scanned != m_scans.end());
        if (row == 0) cell->setSelectedType(DiskUsageLeftCell::HomeType);
        if (row == 0 && scanned != m_scans.end())
            cell->updateSize(bytesWords(scanned->second.shown->tree->root().size()));
        if (!m_pathStrDrag.empty() && row + 1 == int(places.size())) {
            cell->setSelectedType(DiskUsageLeftCell::LastType);
            cell->updateCustomCellPath();
        }
        rail->add(cell);
        m_leftCellArr.push_back(cell);
    }
    m_views->setRail(rail);
    // What a volume held says nothing of another one that comes to its place.
    std::erase_if(m_scans, [this](const auto& each) {
        return rowOfPath(each.first) < 0 && (isFree() || each.first != m_selectedPath);
    });
    m_beforeSelectRow = rowOfPath(m_selectedPath);
    rail->select(m_beforeSelectRow);
    if (m_beforeSelectRow < 0 && m_state == State::Result) clickBackBtn();
}

std::int32_t DiskUsageAppController::customRowNum() const {
    return std::int32_t(m_leftCellArr.size()) - (m_pathStrDrag.empty() ? 0 : 1);
}

std::int32_t DiskUsageAppController::rowOfPath(const std::string& path) const {
    if (path.empty()) return -1;
    // The custom row comes last, and may be of a folder that has a row of its own too.
    const auto found = std::ranges::find(m_leftCellArr, path, &DiskUsageLeftCell::pathName);
    return found == m_leftCellArr.end() ? -1 : std::int32_t(found - m_leftCellArr.begin());
}

std::vector<FSNodeTree*> DiskUsageAppController::allScanArr() const {
    std::vector<FSNodeTree*> all;
    for (const DiskUsageLeftCell* const cell : m_leftCellArr) {
        const auto found = m_scans.find(cell->pathName());
        all.push_back(found != m_scans.end() ? found->second.shown->tree.get() : nullptr);
    }
    return all;
}

void DiskUsageAppController::updateLeftCellBackGrounImage(const ClickedPlace& clicked) {
    if (!isFree()) return;
    m_itemPath = clicked.path;
    if (clicked.row == m_beforeSelectRow) return;
    selectRow(clicked.row);
    if (current() != nullptr) {
        forwardViewForAnimation();
        enter(State::Result);
    } else {
        getLocalPath();
    }
}

void DiskUsageAppController::selectRow(std::int32_t row) {
    m_beforeSelectRow = row;
    m_selectedPath = m_leftCellArr.at(std::size_t(row))->pathName();
    static_cast<LeftRail*>(m_views->leftView->widget())->select(row);
    m_outcome = {};
    showTree();
}

// A folder of one's own gets a row of its own, and no other row's tree is replaced. One that is on
// the left already is that row.
void DiskUsageAppController::takeCustomFolder(const std::string& path) {
    const std::int32_t before = rowOfPath(path);
    if (before < 0 || before == customRowNum()) {
        m_scans.erase(std::exchange(m_pathStrDrag, path));
        m_scans.erase(path);
        m_selectedPath.clear();
        getLocalDiskInfo();
    }
    m_beforeSelectRow = -1;
    updateLeftCellBackGrounImage({rowOfPath(path), path});
}

void DiskUsageAppController::clickIconAction() {
    if (isFree()) m_entrance.choose(m_mainWindow, "/");
}

void DiskUsageAppController::forwardViewForAnimation() {
    m_views->stack->showView(m_views->resultView);
}

void DiskUsageAppController::backViewForAnimation() {
    m_views->stack->showView(m_views->diskUsageView);
}

// With the custom row its ticks go.
void DiskUsageAppController::goBack() {
    const bool isCustom = m_beforeSelectRow >= 0 && m_beforeSelectRow == customRowNum();
    if (!isCustom || !isFree()) return clickBackBtn();
    const auto leave = [this] {
        backButtonAction();
        clickBackBtn();
    };
    if (rootNode() == nullptr || !hasTicks(*rootNode())) return leave();
    Alert question;
    question.title = tr("Leave this folder?");
    question.text = tr("What is ticked in it is forgotten, and nothing is removed.");
    question.buttons = QStringList{tr("Leave"), tr("Cancel")};
    question.cancelButton = 1;
    m_parts.dialogs->alert(m_mainWindow, question,
                           [self = QPointer(this), leave, asked = m_pathStrDrag](int button) {
                               if (self == nullptr || button != 0 || !self->isFree()) return;
                               if (self->m_selectedPath == asked && self->m_pathStrDrag == asked)
                                   leave();
                           });
}

void DiskUsageAppController::clickBackBtn() {
    if (!isFree()) return;
    m_beforeSelectRow = -1;
    m_selectedPath.clear();
    static_cast<LeftRail*>(m_views->leftView->widget())->select(-1);
    showTree();
    backViewForAnimation();
    enter(State::Start);
    m_views->chooseButton->setFocus();
}

void DiskUsageAppController::backButtonAction() {
    m_leftCellArr.at(m_pathStrDrag.empty() ? m_leftCellArr.size() : std::size_t(customRowNum()))
        ->setIsScaned(false);
    m_scans.erase(std::exchange(m_pathStrDrag, {}));
    m_selectedPath.clear();
    showTree();
    getLocalDiskInfo();
    m_beforeSelectRow = customRowNum();
}

}  // namespace orrinvale
