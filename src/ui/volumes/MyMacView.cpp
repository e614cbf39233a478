#include "ui/volumes/MyMacView.h"

#include <QVBoxLayout>
#include <algorithm>
#include <cstdlib>

#include "engine/settings/UtilityFunctionOfData.h"
#include "engine/volumes/volumeNotices.h"
#include "ui/volumes/CustomVolumView.h"

namespace orrinvale {

MyMacView::MyMacView(VolumeList volumes, const NotificationCenter& notifications,
                     CustomVolumViewDelegate& delegate, QWidget* parent)
    : QWidget(parent), m_volumes(std::move(volumes)) {
    setObjectName(QStringLiteral("myMacView"));
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins({});
    const std::vector<SeenVolume> seen = m_volumes();
    const auto boot =
        std::ranges::find_if(seen, [](const auto& each) { return each.record->bIsDefaultVol; });
    if (boot == seen.end()) return;
    const auto settings = UtilityFunctionOfData::getMyData().readerTxtForSettingValue();
    m_customView = new CustomVolumView(*boot->record, errorValueOf(settings->errorValue),
                                       warningLevelIn(settings->digital),
                                       static_cast<std::int32_t>(boot - seen.begin()), delegate);
    column->addWidget(m_customView);
    notice::FreeTotleArr.post(notifications, {boot->record->totalSpace, boot->record->freeSpace});
}

void MyMacView::updateViewAndData() {
    const std::vector<SeenVolume> seen = m_volumes();
    if (m_customView == nullptr || seen.empty()) return;
    const ZvVolumeInfo& first = *seen.front().record;
    m_customView->setFreeTextFieldSpace(first.freeSpace);
    m_customView->setTotleTextFieldSpace(first.totalSpace);
    m_customView->setVolumName(first.volumeName);
    m_customView->setVolRootDir(first.volRootDir);
    m_customView->setNTotalSize(first.nTotalSize);
    m_customView->setNFreeSize(first.nFreeSize);
    m_customView->setNReservedSize(first.nReservedSize);
    m_customView->setSilence(seen.front().silence);
    m_customView->setPrograssImage();
}

}  // namespace orrinvale
