#include "ui/volumes/DiskSizeView.h"

#include <fmt/format.h>

#include <QLayout>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>
#include <utility>

#include "engine/base/Log.h"
#include "engine/settings/UtilityFunctionOfData.h"
#include "ui/kit/look/Theme.h"
#include "ui/volumes/CustomVolumView.h"

namespace orrinvale {
namespace {

std::string namesOf(const std::vector<SeenVolume>& volumes) {
    std::string text;
    for (const SeenVolume& each : volumes)
        text += (text.empty() ? "" : ", ") + each.record->volumeName;
    return text;
}

}  // namespace

DiskSizeView::DiskSizeView(VolumeList volumes, CustomVolumViewDelegate& delegate)
    : m_volumes(std::move(volumes)), m_delegate(delegate) {}

void DiskSizeView::initDiskSizeView(QWidget* page) {
    m_allItemArr.clear();
    delete m_scrollArea.data();
    const std::vector<SeenVolume> seen = m_volumes();
    const auto settings = UtilityFunctionOfData::getMyData().readerTxtForSettingValue();
    auto* const document = new QWidget;
    auto* const column = new QVBoxLayout(document);
    column->setContentsMargins(Theme::gapLarge, Theme::gapLarge, Theme::gapLarge,
                               Theme::gapLarge - Theme::gapSmall);
    column->setSpacing(0);
    for (const SeenVolume& each : seen) {
        auto* const card = new CustomVolumView(
            *each.record, errorValueOf(settings->errorValue), warningLevelIn(settings->digital),
            static_cast<std::int32_t>(m_allItemArr.size()), m_delegate);
        card->showFigures(each);
        column->addWidget(card);
        m_allItemArr.push_back(card);
    }
    column->addStretch();  // few stand at the top
    Log::line(fmt::format("initAllItemArr +++++++=={}", namesOf(seen)));

    m_scrollArea = new QScrollArea;
    m_scrollArea->setObjectName(QStringLiteral("volumeList"));
    m_scrollArea->setFrameShape(QFrame::NoFrame);
    m_scrollArea->setWidgetResizable(true);
    m_scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scrollArea->setWidget(document);
    m_scrollArea->setFocusPolicy(Qt::NoFocus);
    page->layout()->addWidget(m_scrollArea);
    m_scrollArea->verticalScrollBar()->setValue(0);
}

void DiskSizeView::updateViewAndData() {
    const std::vector<SeenVolume> seen = m_volumes();
    if (m_allItemArr.empty()) return;
    for (std::size_t row = 0; row < seen.size(); ++row)
        m_allItemArr.at(row)->showFigures(seen[row]);
}

}  // namespace orrinvale
