#include "ui/cleaning/V3MainListView.h"

#include <QGridLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

#include "engine/cleaning/CleanCategory.h"
#include "engine/cleaning/CleanPageRows.h"
#include "engine/cleaning/cleanNotices.h"
#include "ui/cleaning/cleanWords.h"
#include "ui/kit/controls/Animation.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/controls/QnProgressView.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/kit/look/accessibleRole.h"

namespace orrinvale {
namespace {

constexpr const char* nothingYet = "0.00KB";
constexpr int barWidth = 310;

std::array<std::string FoundSizes::*, 6> fields() {
    return {&FoundSizes::sysCachesSize, &FoundSizes::usrCachesSize, &FoundSizes::sysLogsSize,
            &FoundSizes::usrLogsSize,   &FoundSizes::usrTrashSize,  &FoundSizes::usrDownloadsSize};
}

}  // namespace

void FoundSizes::comeBackStringValue() {
    for (const auto field : fields()) this->*field = nothingYet;
}

std::string* FoundSizes::of(const std::string& context) {
    for (const CleanCategoryNames& each : cleanCategories)
        if (each.context == context) return &(this->*fields().at(std::size_t(each.category)));
    return nullptr;
}

const std::string& FoundSizes::at(std::size_t category) const {
    return this->*fields().at(category);
}

V3MainListView::V3MainListView(std::int32_t listViewTag, const NotificationCenter& notifications,
                               QWidget* parent)
    : QWidget(parent), m_listViewTag(listViewTag), m_notifications(notifications) {
    setObjectName(QStringLiteral("summary%1").arg(listViewTag));
    setAttribute(Qt::WA_Hover);
    setMinimumHeight(leastHeight);
    setMaximumHeight(rowDistance);
    const QString title = cleanRowTitle(listViewTag + 1);
    setAccessibleName(title);
    setAccessibleTraits(*this, {.role = QAccessible::ListItem,
                                .isSelectable = false,
                                .press = [this] { Q_EMIT chosen(); }});
    checkBoxButton = named(new TickBox, "checkBoxButton", title);
    connect(checkBoxButton, &QAbstractButton::clicked, this, &V3MainListView::boxClicked);
    sizeLabel = makeLabel("sizeLabel", Theme::Text::BodyStrong);
    sizeLabel->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    cleanSizeLabel = makeLabel("cleanSizeLabel", Theme::Text::Caption, QPalette::PlaceholderText);
    cleanSizeLabel->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    animation = named(new Animation(notifications), "animation", title);
    progress = named(new QnProgressView, "progress", title);
    progress->setFixedWidth(barWidth);
    layOut();
    initSizeLable(nothingYet);
    showAnimation(false);
    setBoxHidden(true);
}

void V3MainListView::layOut() {
    auto* const title = makeLabel("title", Theme::Text::Body);
    title->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    title->setText(cleanRowTitle(m_listViewTag + 1));
    const std::string image(cleanPageRows.at(std::size_t(m_listViewTag) + 1).image);
    auto* const grid = new QGridLayout(this);
    grid->setContentsMargins(Theme::gapLarge, Theme::gapTiny, Theme::gapLarge, Theme::gapTiny);
    grid->setHorizontalSpacing(Theme::gap);
    grid->setVerticalSpacing(0);
    QSizePolicy keeps = checkBoxButton->sizePolicy();
    keeps.setRetainSizeWhenHidden(true);
    checkBoxButton->setSizePolicy(keeps);
    grid->addWidget(checkBoxButton, 0, 0, 2, 1, Qt::AlignVCenter);
    grid->addWidget(new PictureView(QString::fromStdString(image), {20, 20}), 0, 1, 2, 1,
                    Qt::AlignVCenter);
    grid->addWidget(title, 0, 2, Qt::AlignBottom);
    auto* const bars = new QWidget;
    bars->setFixedHeight(10);
    bars->setMinimumWidth(barWidth);
    animation->setParent(bars);
    progress->setParent(bars);
    progress->move(0, (bars->height() - progress->sizeHint().height()) / 2);
    grid->addWidget(bars, 1, 2, Qt::AlignTop);
    grid->addWidget(sizeLabel, 0, 3, Qt::AlignBottom | Qt::AlignRight);
    grid->addWidget(cleanSizeLabel, 1, 3, Qt::AlignTop | Qt::AlignRight);
    grid->setColumnStretch(2, 1);
}

void V3MainListView::observeFoundText(const std::string& context, const std::string& size) {
    std::string* const found = m_found.of(context);
    if (found == nullptr) return;
    *found = size;
    notice::refNewTableViewSizeLabel.post(m_notifications, {m_listViewTag});
}

const std::string& V3MainListView::getFoundText() const {
    return m_found.at(std::size_t(m_listViewTag));
}

void V3MainListView::initSizeLable(const std::string& size) {
    m_size = size;
    sizeLabel->setText(foundWords(size));
}

void V3MainListView::setSizeStrLabelString(const QString& size) {
    cleanSizeLabel->setText(size.isEmpty() ? QString() : tr("Cleaned:") + QLatin1Char(' ') + size);
}

void V3MainListView::refCheckBox(std::int32_t state) {
    checkBoxButton->setState(tickState(QVariant(state)));
}

void V3MainListView::setBoxHidden(bool isHidden) { checkBoxButton->setVisible(!isHidden); }

void V3MainListView::showShare(double share) {
    m_hasShare = share > 0;
    progress->changeProgressValue(static_cast<float>(share * 100));
    progress->setVisible(m_hasShare && !animation->isVisibleTo(this));
}

void V3MainListView::showAnimation(bool isOn) {
    animation->setVisible(isOn);
    progress->setVisible(!isOn && m_hasShare);
}

void V3MainListView::startPrograssAnimation() {
    setSizeStrLabelString({});
    showAnimation(true);
    animation->setIsAdd(true);
    animation->initZeroPrograss();
    animation->start();
}

void V3MainListView::stopPrograssAnimation() {
    animation->stop();
    showAnimation(false);
}

// The strip of a scan would run down by the clock, whatever has gone.
void V3MainListView::minishPrograss() {
    m_isCleaning = true;
    showAnimation(false);
    showCleaned(0, 0);
}

void V3MainListView::showCleaned(std::uint64_t gone, std::uint64_t all) {
    if (!m_isCleaning) return;
    const double share = all == 0 ? 0 : double(std::min(gone, all)) / double(all);
    progress->changeProgressValue(static_cast<float>(share * 100));
    progress->show();
    if (gone > 0) setSizeStrLabelString(sizeWords(gone));
}

void V3MainListView::setAnimationFinish() {
    m_isCleaning = false;
    showAnimation(false);
}

void V3MainListView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const Theme& theme = Theme::shared();
    if (underMouse()) painter.fillRect(rect(), theme.color(Theme::Color::Hover));
    painter.fillRect(0, height() - 1, width(), 1, theme.color(Theme::Color::Line));
}

void V3MainListView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) Q_EMIT chosen();
}

}  // namespace orrinvale
