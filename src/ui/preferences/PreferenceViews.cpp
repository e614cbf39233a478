// A function a group, and one that puts them beside the rail.
#include "ui/preferences/PreferenceViews.h"

#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>
#include <vector>

#include "engine/settings/PreferenceViewController.h"
#include "engine/text/Localized.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/Panel.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/controls/SegmentedControl.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/lists/LeftRail.h"
#include "ui/kit/lists/LeftRow.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/page/ResultFrame.h"
#include "ui/preferences/NumberField.h"
#include "ui/preferences/PreferenceGroup.h"

namespace orrinvale {
namespace {

constexpr int leastFreeShare = 1;  // per cent
constexpr int mostShare = 50;
constexpr int sliderWidth = 220;

// Turning the wheel over a page that scrolls changes nothing but the place.
class WheelGuard final : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto* const control = static_cast<QWidget*>(watched);
        if (event->type() != QEvent::Wheel || control->hasFocus()) return false;
        event->ignore();
        return true;
    }
};

template <class Control> Control* guarded(Control* control) {
    control->setFocusPolicy(Qt::StrongFocus);
    control->installEventFilter(new WheelGuard(control));
    return control;
}

using Items = std::vector<std::pair<QString, QVariant>>;

QComboBox* makeChoice(const char* name, const Items& items) {
    auto* const made = guarded(named(new QComboBox, name));
    for (const auto& [title, tag] : items) made->addItem(title, tag);
    made->setFixedHeight(Theme::controlHeight);
    return made;
}

QSlider* makeSlider(const char* name) {
    constexpr int step = 10;
    auto* const made = guarded(named(new QSlider(Qt::Horizontal), name));
    made->setRange(leastFreeShare, mostShare);
    made->setPageStep(step);
    made->setTickInterval(step);
    made->setTickPosition(QSlider::TicksBelow);
    made->setFixedWidth(sliderWidth);
    return made;
}

Items unitItems() {
    return {{PreferenceViews::tr("Bytes"), 0},
            {QStringLiteral("KB"), 1},
            {QStringLiteral("MB"), 2},
            {QStringLiteral("GB"), 3},
            {QStringLiteral("TB"), 4}};
}

QLabel* makeWords(const char* name) {
    QLabel* const made = makeLabel(name, Theme::Text::Body);
    made->setAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    return made;
}

}  // namespace

PreferenceViews::PreferenceViews() {
    makeCleaning();
    makeWarnings();
    makeDuplicates();
    makeDiskUsage();
    makeUpdates();
    makeGeneral();
    putTogether();
    followScrolling();
}

PreferenceViews::~PreferenceViews() {
    if (mainView != nullptr && mainView->parentWidget() == nullptr) delete mainView.data();
}

void PreferenceViews::makeCleaning() {
    boxes[Cleaning] = new PreferenceGroup("box1", tr("Cleaning"));
    const struct {
        SegmentedControl*& control;
        const char *name, *title, *effect;
    } rows[] = {
        {SystemCashSege, "SystemCashSege", "TITLE_CLEAN_SYS_CACHES", "DESC_CLEAN_SYS_CACHES"},
        {userCachSege, "userCachSege", "TITLE_CLEAN_USR_CACHES", "DESC_CLEAN_USR_CACHES"},
        {systenLogSege, "systenLogSege", "TITLE_CLEAN_SYS_LOGS", "DESC_CLEAN_SYS_LOGS"},
        {userLogSege, "userLogSege", "TITLE_CLEAN_USR_LOGS", "DESC_CLEAN_USR_LOGS"},
        {userTrashSege, "userTrashSege", "TITLE_CLEAN_TRASH", "DESC_CLEAN_TRASH"},
        {userDownSege, "userDownSege", "TITLE_CLEAN_DOWNLOADS", "DESC_CLEAN_DOWNLOADS"},
    };
    for (const auto& row : rows) {
        row.control = named(new SegmentedControl({tr("Off"), tr("On"), tr("Some")}), row.name);
        row.control->segment(On)->setToolTip(tr("Its entries are ticked on the page Clean."));
        row.control->segment(Some)->setToolTip(
            tr("Some entries of this category are ticked on the page Clean."));
        boxes[Cleaning]->add(QString::fromStdString(getLocalizedString(row.title)), row.control,
                             QString::fromStdString(getLocalizedString(row.effect)));
    }
}

void PreferenceViews::makeWarnings() {
    boxes[Warnings] = new PreferenceGroup("box2", tr("Warnings"));
    alarmSlider = makeSlider("alarmSlider");
    alarmWords = makeWords("alarmWords");
    memorySlider = makeSlider("memorySlider");
    memoryWords = makeWords("memoryWords");
    spaceWarningsBox = named(new TickBox(tr("Tell me on the desktop")), "spaceWarningsBox");
    PreferenceGroup& box = *boxes[Warnings];
    box.add(tr("Free space"), alarmSlider, tr("A disk with less than that is marked."), alarmWords);
    box.add({}, spaceWarningsBox, tr("A word when a disk falls to this level."));
    box.add(tr("Free memory"), memorySlider, tr("Memory is marked when less than that is free."),
            memoryWords);
}

void PreferenceViews::makeDuplicates() {
    boxes[Duplicates] = new PreferenceGroup("box3", tr("Duplicates"));
    infoSizeTextFiled = named(new NumberField(duplicateLimitTag), "infoSizeTextFiled");
    sizeInfo = named(makeChoice("sizeInfo", unitItems()), "sizeInfo", tr("Unit of the size"));
    hideCheckBox = named(new TickBox(tr("Search hidden files too")), "hideCheckBox");
    sysCheckBox = named(new TickBox(tr("Search the system's files too")), "sysCheckBox");
    compareBox = named(new TickBox(tr("Compare once more before removing")), "compareBox");
    trashFirstBox = named(new TickBox(tr("Offer the trash first")), "trashFirstBox");
    PreferenceGroup& box = *boxes[Duplicates];
    box.add(tr("Files larger than"), infoSizeTextFiled,
            tr("With 0 files of any size are compared."), sizeInfo);
    box.add({}, hideCheckBox);
    box.add({}, sysCheckBox);
    box.add({}, compareBox,
            tr("A copy goes only if it still has the same bytes as the one that stays."));
    box.add({}, trashFirstBox,
            tr("What is in the trash can be brought back, and takes up room until it is emptied."));
    rememberBox = named(new TickBox(tr("Remember what files contain")), "rememberBox");
    forgetButton = named(new HoverButton, "forgetButton");
    box.add({}, rememberBox,
            tr("The next search reads only what has changed. Checksums are kept, no names and no "
               "contents."),
            forgetButton);
}

void PreferenceViews::makeDiskUsage() {
    boxes[DiskUsage] = new PreferenceGroup("box4", tr("Disk usage"));
    diskUsageLimit = named(new NumberField(diskUsageLimitTag), "diskUsageLimit");
    diskUsageUnit =
        named(makeChoice("diskUsageUnit", unitItems()), "diskUsageUnit", tr("Unit of the size"));
    oneFileSystemBox = named(new TickBox(tr("Stay on one file system")), "oneFileSystemBox");
    rememberScansBox = named(new TickBox(tr("Remember scans")), "rememberScansBox");
    forgetScansButton = named(new HoverButton, "forgetScansButton");
    PreferenceGroup& box = *boxes[DiskUsage];
    box.add(tr("List from"), diskUsageLimit, tr("Smaller entries are added up in one line."),
            diskUsageUnit);
    box.add({}, oneFileSystemBox, tr("Other disks that are mounted in a folder are left out."));
    box.add({}, rememberScansBox,
            tr("Names and sizes of folders are kept, for you alone, to tell what grew since."),
            forgetScansButton);
}

void PreferenceViews::makeUpdates() {
    constexpr int daily = 86'400;  // seconds
    constexpr int weekly = 604'800;
    constexpr int monthly = 2'592'000;
    boxes[Updates] = new PreferenceGroup("box5", tr("Updates"));
    autoCheckUpdates = named(new TickBox(tr("Look for updates by itself")), "autoCheckUpdates");
    updateTime = makeChoice(
        "updateTime",
        {{tr("Every day"), daily}, {tr("Every week"), weekly}, {tr("Every month"), monthly}});
    boxes[Updates]->add({}, autoCheckUpdates);
    boxes[Updates]->add(tr("How often"), updateTime);
}

void PreferenceViews::makeGeneral() {
    boxes[General] = new PreferenceGroup("box6", tr("General"));
    checkBoxBtn = named(new TickBox(tr("Start at login")), "checkBoxBtn");
    startHiddenBox = named(new TickBox(tr("Start hidden")), "startHiddenBox");
    showStatusBtn = named(new TickBox(tr("Hide the tray icon")), "showStatusBtn");
    const QString desktop = QLatin1String(followsDesktop.data(), followsDesktop.size());
    themeChoice = makeChoice("themeChoice", {{tr("As the desktop"), desktop},
                                             {tr("Light"), QStringLiteral("light")},
                                             {tr("Dark"), QStringLiteral("dark")}});
    // Each in its own words, for whoever can not read the others.
    languageChoice =
        makeChoice("languageChoice", {{tr("As the desktop"), desktop},
                                      {QStringLiteral("English"), QStringLiteral("en")},
                                      {QStringLiteral("Deutsch"), QStringLiteral("de")}});
    keepRunningChoice =
        makeChoice("keepRunningChoice", {{tr("Ask me"), PreferenceViews::Ask},
                                         {tr("Keep running"), PreferenceViews::KeepRunning},
                                         {tr("Quit"), PreferenceViews::Quit}});
    logFileChoice = makeChoice("logFileChoice", {{tr("When needed"), QStringLiteral("auto")},
                                                 {tr("Always"), QStringLiteral("always")},
                                                 {tr("Never"), QStringLiteral("never")}});
    logBox = named(new TickBox(tr("Log each step of a search")), "logBox");
    PreferenceGroup& box = *boxes[General];
    box.add({}, checkBoxBtn);
    box.add({}, startHiddenBox, tr("Started at login, it stays in the tray without a window."));
    box.add({}, showStatusBtn);
    box.add(tr("Without a window"), keepRunningChoice,
            tr("When its window is closed and no tray shows it."));
    box.add(tr("Colours"), themeChoice);
    box.add(tr("Language"), languageChoice, tr("From the next start on."));
    box.add(tr("Log file"), logFileChoice,
            tr("Needed where neither a terminal nor the system's journal keeps the log."));
    box.add({}, logBox, tr("For reports of faults. What is removed is always logged."));
}

void PreferenceViews::putTogether() {
    constexpr std::array pictures{"fast_clean", "warning", "duplicates_file",
                                  "free_space", "refresh", "preferences"};
    mainView = named(new Panel(Theme::Color::Window), "preferencesView");
    auto* const head = new Panel(Theme::Color::Surface, Qt::BottomEdge);
    head->setFixedHeight(ResultFrame::barHeight);
    auto* const title = named(new ElidedLabel, "titleLabel");
    title->setFont(Theme::shared().font(Theme::Text::BodyStrong));
    title->setText(tr("Everything here holds as soon as you change it"));
    failureLine = named(new ElidedLabel, "failureLine");
    failureLine->setForegroundRole(QPalette::BrightText);  // that of Theme::Color::Danger
    failureLine->hide();
    auto* const headRow = new QHBoxLayout(head);
    headRow->setContentsMargins(Theme::gapLarge, 0, Theme::gapLarge, 0);
    headRow->setSpacing(Theme::gapSmall);
    headRow->addWidget(new PictureView(QStringLiteral("preferences"), {20, 20}));
    headRow->addWidget(title, 1);
    headRow->addWidget(failureLine, 1);

    int labels = 0;
    for (const PreferenceGroup* const each : boxes) labels = std::max(labels, each->labelWidth());
    auto* const sheet = new QWidget;
    auto* const column = new QVBoxLayout(sheet);
    column->setContentsMargins(Theme::gapLarge, Theme::gapLarge, Theme::gapLarge, Theme::gapLarge);
    column->setSpacing(Theme::gapLarge);
    m_rail = new LeftRail;
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        boxes.at(i)->setLabelWidth(labels);
        column->addWidget(boxes.at(i));
        m_rail->add(new LeftRow(
            {.title = boxes.at(i)->accessibleName(), .picture = QLatin1String(pictures.at(i))}));
    }
    column->addStretch();
    m_area = named(new QScrollArea, "scrollArea");
    m_area->setFrameShape(QFrame::NoFrame);
    m_area->setWidgetResizable(true);
    m_area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_area->setFocusPolicy(Qt::NoFocus);
    m_area->setWidget(sheet);

    auto* const right = new QVBoxLayout;
    right->setSpacing(0);
    right->addWidget(head);
    right->addWidget(m_area, 1);
    auto* const row = new QHBoxLayout(mainView);
    row->setContentsMargins({});
    row->setSpacing(0);
    row->addWidget(m_rail);
    row->addLayout(right, 1);
}

// The rail leads to a group, and shows which one stands at the top.
void PreferenceViews::followScrolling() {
    m_rail->select(0);
    QScrollBar* const bar = m_area->verticalScrollBar();
    QObject::connect(m_rail, &LeftRail::chosen, mainView, [this, bar](int number) {
        bar->setValue(boxes.at(std::size_t(number))->y() - Theme::gapLarge);
        m_rail->select(number);
    });
    QObject::connect(bar, &QScrollBar::valueChanged, mainView, [this, bar](int value) {
        int number = 0;
        for (std::size_t i = 0; i < boxes.size(); ++i)
            if (boxes.at(i)->y() <= value + Theme::gapSection) number = static_cast<int>(i);
        if (value == bar->maximum()) number = static_cast<int>(boxes.size()) - 1;
        m_rail->select(number);
    });
}

}  // namespace orrinvale
