#include "ui/volumes/MyMacView.h"

#include <QVBoxLayout>
#include <cstdlib>

#include "engine/settings/UtilityFunctionOfData.h"
#include "engine/volumes/volumeNotices.h"
#include "ui/volumes/CustomVolumView.h"
#include "ui/volumes/levelNow.h"

namespace orrinvale {

MyMacView::MyMacView(VolumeList volumes, const NotificationCenter& notifications,
                     CustomVolumViewDelegate& delegate, QWidget* parent)
    : QWidget(parent), m_volumes(std::move(volumes)), m_level(levelNow()) {
    setObjectName(QStringLiteral("myMacView"));
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins({});
    const std::vector<SeenVolume> seen = m_volumes();
    const SeenVolume* const boot = bootVolume(seen);
    if (boot == nullptr) return;
    const auto settings = UtilityFunctionOfData::getMyData().readerTxtForSettingValue();
    m_customView = new CustomVolumView(*boot->record, m_level, warningLevelIn(settings->digital),
                                       static_cast<std::int32_t>(boot - seen.data()), delegate);
    column->addWidget(m_customView);
    notice::FreeTotleArr.post(notifications, {boot->record->totalSpace, boot->record->freeSpace});
}

void MyMacView::updateViewAndData() {
    const std::vector<SeenVolume> seen = m_volumes();
    if (m_customView != nullptr && !seen.empty()) m_customView->showFigures(seen.front());
}

}  // namespace orrinvale
