// Controls and keys stand in tables; what does more than store has an operation of its own.
#include "ui/preferences/PreferencePage.h"

#include <fmt/format.h>

#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QLocale>
#include <QPointer>
#include <QSignalBlocker>
#include <QSlider>
#include <QTimer>
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "engine/base/Log.h"
#include "engine/base/MainQueue.h"
#include "engine/cleaning/cleanNotices.h"
#include "engine/diskusage/history/ScanHistory.h"
#include "engine/duplicates/cache/HashCache.h"
#include "engine/loginitems/LoginItemRegistry.h"
#include "engine/loginitems/launchAtLogin.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/keepRunning.h"
#include "engine/settings/settingNotices.h"
#include "engine/text/UtilityFunction.h"
#include "engine/updates/UpdateCheck.h"
#include "services/foundation/runAside.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/SegmentedControl.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/preferences/NumberField.h"
#include "ui/preferences/PreferenceGroup.h"
#include "ui/tray/trayNotices.h"

namespace orrinvale {
namespace {

using Group = PreferenceViews::Group;
using Int = std::int64_t;

struct Category {
    const char* key;
    Result<void> (*store)(SettingValue);
};

constexpr std::array<Category, 6> categories{{
    {ZvSystemCachesKey, &PreferenceViewController::setSystemCashesClicked},
    {ZvUserCachesKey, &PreferenceViewController::setUserCashesClicked},
    {ZvSystemLogsKey, &PreferenceViewController::setSystemLogsClicked},
    {ZvUserLogsKey, &PreferenceViewController::setUserLogsClicked},
    {ZvUserTrashKey, &PreferenceViewController::setUserTrashClicked},
    {ZvUserDownloadsKey, &PreferenceViewController::setUserDownLoadsFolderClicked},
}};

struct BoxKey {
    TickBox* PreferenceViews::*box;
    const char* key;
    void (PreferencePage::*action)() = nullptr;  // null: it stores, and nothing else
};

constexpr std::array<BoxKey, 11> boxKeys{{
    {&PreferenceViews::spaceWarningsBox, spaceWarningsKey},
    {&PreferenceViews::hideCheckBox, ZvHidenDuplication, &PreferencePage::changeHiddenDuplicates},
    {&PreferenceViews::sysCheckBox, ZvSystemDuplication, &PreferencePage::changeSysDuplicates},
    {&PreferenceViews::compareBox, compareBeforeRemovingKey},
    {&PreferenceViews::trashFirstBox, trashFirstKey},
    {&PreferenceViews::rememberBox, rememberContentsKey},
    {&PreferenceViews::oneFileSystemBox, oneFileSystemKey},
    {&PreferenceViews::rememberScansBox, rememberScansKey},
    {&PreferenceViews::autoCheckUpdates, SUEnableAutomaticChecks,
     &PreferencePage::changeAutoUpdate},
    {&PreferenceViews::startHiddenBox, ZvLoginItemIsHide, &PreferencePage::changeStartHidden},
    {&PreferenceViews::logBox, logKey},
}};

struct ChoiceKey {
    QComboBox* PreferenceViews::*choice;
    const char* key;
    void (PreferencePage::*action)() = nullptr;
};

constexpr std::array<ChoiceKey, 6> choiceKeys{{
    {&PreferenceViews::sizeInfo, ZvDuplicatesUnit, &PreferencePage::changeLimitUnit},
    {&PreferenceViews::diskUsageUnit, ZvDiskUsageUnit, &PreferencePage::changeDiskUsageUnit},
    {&PreferenceViews::updateTime, SUScheduledCheckInterval, &PreferencePage::changeCheckInterval},
    {&PreferenceViews::themeChoice, themeKey},
    {&PreferenceViews::languageChoice, languageKey},
    {&PreferenceViews::logFileChoice, logFileKey},
}};

// What "Restore Defaults" of a group sets.
std::vector<const char*> keysOf(Group group) {
    switch (group) {
        case Group::Cleaning: break;
        case Group::Warnings: return {ZvSpaceAlarmKey, ZvMemoryAlarmKey, spaceWarningsKey};
        case Group::Duplicates:
            return {ZvDuplicationLimit,  ZvDuplicatesUnit,         ZvHidenDuplication,
                    ZvSystemDuplication, compareBeforeRemovingKey, trashFirstKey,
                    rememberContentsKey};
        case Group::DiskUsage:
            return {ZvDiskUsageLimit, ZvDiskUsageUnit, oneFileSystemKey, rememberScansKey};
        case Group::Updates: return {SUEnableAutomaticChecks, SUScheduledCheckInterval};
        case Group::General:
            return {ZvLoginItemIsHide, ZvShowStatusItem, keepRunningKey, themeKey,
                    languageKey,       logFileKey,       logKey};
        case Group::GroupCount: break;
    }
    std::vector<const char*> keys;
    keys.reserve(categories.size());
    for (const Category& each : categories) keys.push_back(each.key);
    return keys;
}

// Whether both read alike: true and 1, 0.1 and its nearest float.
bool readsAlike(const SettingValue& one, const SettingValue& other) {
    if (std::holds_alternative<float>(other)) return floatOf(one) == floatOf(other);
    if (std::holds_alternative<bool>(other)) {
        const bool isNumber = std::holds_alternative<Int>(one);
        return isNumber ? integerOf(one) == integerOf(other) : boolOf(one) == boolOf(other);
    }
    if (std::holds_alternative<Int>(other)) return integerOf(one) == integerOf(other);
    return isSame(one, other);
}

SettingValue tagOf(const QComboBox& choice) {
    const QVariant tag = choice.currentData();
    if (tag.typeId() == QMetaType::QString) return tag.toString().toStdString();
    return Int{tag.toInt()};
}

// Of a tag that no item has the first item shows: units that are none count as bytes, other words
// as the desktop's.
void selectItemWithTag(QComboBox& choice, const SettingValue& value) {
    const auto* const text = std::get_if<std::string>(&value);
    const QVariant tag = text != nullptr && choice.itemData(0).typeId() == QMetaType::QString
                             ? QVariant(QString::fromStdString(*text))
                             : QVariant(static_cast<int>(integerOf(value)));
    choice.setCurrentIndex(std::max(0, choice.findData(tag)));
}

QString percentWords(float share) {
    // Hundredths of which at most one digit behind the point counts.
    const double percent = std::round(double{std::clamp(share, 0.0F, 1.0F)} * 1000) / 10;
    return shownPercent(QLocale::c().toString(percent, 'g', 4));
}

}  // namespace

PreferencePage::PreferencePage(const PageServices& services, PreferenceParts parts)
    : m_services(services), m_parts(std::move(parts)) {
    loadView();
}

PreferencePage::~PreferencePage() = default;

void PreferencePage::loadView() {
    m_views = std::make_unique<PreferenceViews>();
    showFaults();
    readSettings();
    connectControls();
    connectBoxes();
    m_views->mainView->installEventFilter(this);
    followSettings();
}

bool PreferencePage::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show) {
        showFaults();
        readRemembered();
        // A desktop that has just begun takes that long to say whether it has a tray.
        constexpr int trayPatience = 3500;
        QTimer::singleShot(trayPatience, this, &PreferencePage::showFaults);
    }
    return QObject::eventFilter(watched, event);
}

// A setting may change on any thread, several at a time, and after this object's end.
void PreferencePage::followSettings() {
    m_roadObservation =
        notice::updateRoadFound.observe(*m_services.notifications, [this] { showFaults(); });
    m_logObservation =
        notice::logFileLookedAt.observe(*m_services.notifications, [this] { showFaults(); });
    m_observation = m_services.defaults->addObserverOfAll(
        [self = QPointer(this), queue = m_services.mainQueue] {
            queue->async([self] {
                if (self.isNull() || std::exchange(self->m_isAwaitingRead, true)) return;
                QTimer::singleShot(0, self, [page = self.data()] {
                    page->m_isAwaitingRead = false;
                    page->readSettings();
                });
            });
        });
}

void PreferencePage::connectControls() {
    PreferenceViews& views = *m_views;
    const auto segments = views.categories();
    for (std::size_t i = 0; i < segments.size(); ++i)
        connect(segments.at(i), &SegmentedControl::chosen, this,
                [this, tag = static_cast<int>(i) + 1] { changeCategory(tag); });
    connect(views.alarmSlider, &QSlider::valueChanged, this,
            &PreferencePage::changeArlarmSliderValue);
    connect(views.memorySlider, &QSlider::valueChanged, this,
            &PreferencePage::changeMemorySliderVaule);
    for (QSlider* const slider : {views.alarmSlider, views.memorySlider})
        connect(slider, &QSlider::sliderReleased, this,
                [this] { tell(m_services.defaults->synchronize()); });
    for (NumberField* const field : {views.infoSizeTextFiled, views.diskUsageLimit}) {
        connect(field, &QLineEdit::textEdited, this,
                [this, field] { controlTextDidChange(*field); });
        // An empty one is left with the number that it stands for.
        connect(field, &QLineEdit::editingFinished, this,
                [field] { field->setText(QString::number(field->number())); });
    }
    for (const ChoiceKey& each : choiceKeys) {
        QComboBox* const choice = views.*each.choice;
        connect(choice, &QComboBox::activated, this, [this, choice, each] {
            if (each.action != nullptr) (this->*each.action)();
            else keep(tagOf(*choice), each.key);
        });
    }
}

void PreferencePage::connectBoxes() {
    for (const BoxKey& each : boxKeys) {
        TickBox* const box = m_views.get()->*each.box;
        connect(box, &TickBox::clicked, this, [this, box, each] {
            if (each.action != nullptr) (this->*each.action)();
            else keep(box->state() == TickState::All, each.key);
        });
    }
    connect(m_views->keepRunningChoice, &QComboBox::activated, this,
            &PreferencePage::changeKeepRunning);
    connect(m_views->showStatusBtn, &TickBox::clicked, this,
            &PreferencePage::changeShowStatusBtnClick);
    connect(m_views->checkBoxBtn, &TickBox::clicked, this, &PreferencePage::loginButtonAction);
    connect(m_views->forgetButton, &HoverButton::clicked, this, &PreferencePage::forgetContents);
    connect(m_views->forgetScansButton, &HoverButton::clicked, this, &PreferencePage::forgetScans);
    for (int group = 0; group < PreferenceViews::GroupCount; ++group)
        connect(m_views->boxes.at(std::size_t(group))->restoreButton(), &HoverButton::clicked, this,
                [this, group] { restoreDefaults(static_cast<Group>(group)); });
}

// --- What the controls show

void PreferencePage::readSettings() {
    PreferenceViews& views = *m_views;
    readCategories();
    readWarnings();
    for (const BoxKey& each : boxKeys)
        (views.*each.box)
            ->setState(boolOf(settingInForce(each.key)) ? TickState::All : TickState::Nothing);
    views.showStatusBtn->setState(getHiddenStatusItem() ? TickState::All : TickState::Nothing);
    views.infoSizeTextFiled->setNumber(integerOf(settingInForce(ZvDuplicationLimit)));
    views.diskUsageLimit->setNumber(integerOf(settingInForce(ZvDiskUsageLimit)));
    for (const ChoiceKey& each : choiceKeys)
        selectItemWithTag(*(views.*each.choice), settingInForce(each.key));
    const auto goesOn = keepRunningAnswer(*m_services.defaults);
    views.keepRunningChoice->setCurrentIndex(!goesOn   ? PreferenceViews::Ask
                                             : *goesOn ? PreferenceViews::KeepRunning
                                                       : PreferenceViews::Quit);
    // Of a number that is none of the items' the schedule has an opinion of its own.
    selectItemWithTag(
        *views.updateTime,
        Int{checkInterval(integerOf(settingInForce(SUScheduledCheckInterval))).count()});
    showRestorable();
    // Somebody else has switched it, who changes the entry too.
    const Int check = integerOf(settingInForce(ZvLoginCheckKey));
    const bool isNew = std::exchange(m_loginCheck, check) != check;
    if (isNew && m_loginErrands == 0 && LoginItemRegistry::parts().items != nullptr) readLogin();
}

// The number counts and not whether there is one: a category of which 0 is stored is off.
void PreferencePage::readCategories() {
    const auto segments = m_views->categories();
    for (std::size_t i = 0; i < segments.size(); ++i) {
        const Int number = integerOf(settingInForce(categories.at(i).key));
        const bool isSome = number != PreferenceViews::Off && number != PreferenceViews::On;
        segments.at(i)->setSegmentShown(PreferenceViews::Some, isSome);
        segments.at(i)->setSelectedSegment(isSome ? PreferenceViews::Some
                                                  : static_cast<int>(number));
    }
}

void PreferencePage::readWarnings() {
    const struct {
        const char* key;
        QSlider* slider;
        QLabel* words;
    } rows[] = {{ZvSpaceAlarmKey, m_views->alarmSlider, m_views->alarmWords},
                {ZvMemoryAlarmKey, m_views->memorySlider, m_views->memoryWords}};
    for (const auto& row : rows) {
        const float stored = floatOf(settingInForce(row.key));
        const float share = std::isfinite(stored) ? std::clamp(stored, 0.0F, 1.0F) : 0.0F;
        const QSignalBlocker silent(row.slider);
        if (!row.slider->isSliderDown())
            row.slider->setValue(static_cast<int>(std::lround(share * 100)));
        row.words->setText(tr("less than %1").arg(percentWords(share)));
        row.slider->setAccessibleDescription(row.words->text());
    }
}

void PreferencePage::showRestorable() {
    for (int group = 0; group < PreferenceViews::GroupCount; ++group) {
        const auto keys = keysOf(static_cast<Group>(group));
        const bool isUsual = std::ranges::all_of(keys, [](const char* key) {
            return readsAlike(settingInForce(key), usualSetting(key).value_or(false));
        });
        const bool isLoginSet =
            group == PreferenceViews::General && m_views->checkBoxBtn->state() == TickState::All;
        m_views->boxes.at(std::size_t(group))->restoreButton()->setEnabled(!isUsual || isLoginSet);
    }
}

void PreferencePage::showFaults() {
    const PreferenceViews& views = *m_views;
    const auto grey = [&](Group group, const QWidget* control, bool isThere, const QString& why) {
        views.boxes.at(group)->setFault(control, isThere ? QString() : why);
    };
    grey(Group::General, views.showStatusBtn, m_parts.hasTray && m_parts.hasTray(),
         tr("Nothing on this desktop shows such an icon."));
    grey(Group::Warnings, views.spaceWarningsBox, m_parts.hasDesktopNotes,
         tr("Nothing on this desktop shows such words."));
    for (const QWidget* const each : std::initializer_list<const QWidget*>{
             views.diskUsageLimit, views.oneFileSystemBox, views.rememberScansBox})
        grey(Group::DiskUsage, each, m_parts.hasDiskUsage, tr("There is no page Disk Usage here."));
    for (const QWidget* const each :
         std::initializer_list<const QWidget*>{views.autoCheckUpdates, views.updateTime})
        grey(Group::Updates, each, updateFault().isEmpty(), updateFault());
    views.boxes.at(Group::General)
        ->setRemark(views.logFileChoice, m_parts.logFault ? m_parts.logFault() : QString());
    const bool hasLogin = LoginItemRegistry::parts().items != nullptr;
    const QString noLogin = tr("Nothing here starts it at login.");
    grey(Group::General, views.checkBoxBtn, hasLogin, noLogin);
    grey(Group::General, views.startHiddenBox, hasLogin, noLogin);
    if (hasLogin) readLogin();
    showRemembered();
}

// Why the program never looks for newer versions by itself.
QString PreferencePage::updateFault() const {
    const std::optional<UpdateRoad> road =
        m_parts.updateRoad ? m_parts.updateRoad() : UpdateRoad::NoKeys;
    if (!road) return tr("Where newer versions come from is still being looked up.");
    if (road == UpdateRoad::Package) return tr("Newer versions come with your system.");
    if (road == UpdateRoad::NoKeys) return tr("This copy does not look for newer versions.");
    return {};
}

void PreferencePage::readRemembered() {
    runAside(
        this, "readRemembered",
        [stateFolder = m_services.stateFolder] {
            return RememberedBytes{hashCacheSize(hashCachePath()).bytes,
                                   stateFolder.empty() ? 0 : ScanHistory(stateFolder).size()};
        },
        [this](const RememberedBytes& remembered) {
            m_remembered = remembered;
            showRemembered();
        });
}

void PreferencePage::showRemembered() {
    const auto show = [](HoverButton& button, std::uint64_t bytes) {
        const QString size = shownSize(UtilityFunction::convertVolSpace(bytes));
        button.setText(bytes == 0 ? tr("Nothing Remembered") : tr("Forget %1").arg(size));
        button.setEnabled(bytes != 0);
    };
    show(*m_views->forgetButton, m_remembered.contents);
    show(*m_views->forgetScansButton, m_remembered.scans);
}

// The box shows what is so, and not what was wanted once.
void PreferencePage::readLogin() {
    ++m_loginErrands;
    runAside(
        this, "readLogin", [] { return startsAtLogin(); },
        [this](bool starts) { showLogin(starts); });
}

void PreferencePage::showLogin(bool starts) {
    if (--m_loginErrands > 0) return;
    m_views->checkBoxBtn->setEnabled(true);
    m_views->checkBoxBtn->setState(starts ? TickState::All : TickState::Nothing);
    showRestorable();
}

// --- What a person changes

void PreferencePage::tell(const Result<void>& stored) {
    m_views->failureLine->setVisible(!stored);
    if (stored) return;
    m_views->failureLine->setText(tr("Not saved: %1. It holds until the program ends.")
                                      .arg(inWords(stored.error().reason())));
}

void PreferencePage::keep(SettingValue value, const char* key) {
    tell(storeSetting(std::move(value), key));
}

void PreferencePage::changeCategory(int tag) {
    const auto at = static_cast<std::size_t>(tag) - 1;
    const int number = m_views->categories().at(at)->selectedSegment();
    tell(categories.at(at).store(Int{number}));
    notice::changeCheckBox.post(*m_services.notifications, {tag, number == PreferenceViews::Off});
    notice::updateSelectNumber.post(*m_services.notifications, {tag - 1});  // the lists follow
}

// While the slider is dragged each step counts at once, and is saved when it is let go of.
void PreferencePage::changeSlider(const QSlider& slider, const char* key) {
    const float share = static_cast<float>(slider.value()) / 100.0F;
    if (slider.isSliderDown()) m_services.defaults->setFloat(share, key);
    else keep(share, key);
    readWarnings();
}

void PreferencePage::changeArlarmSliderValue() {
    changeSlider(*m_views->alarmSlider, ZvSpaceAlarmKey);
}
void PreferencePage::changeMemorySliderVaule() {
    changeSlider(*m_views->memorySlider, ZvMemoryAlarmKey);
}
void PreferencePage::changeLimitUnit() { keep(tagOf(*m_views->sizeInfo), ZvDuplicatesUnit); }
void PreferencePage::changeDiskUsageUnit() {
    keep(tagOf(*m_views->diskUsageUnit), ZvDiskUsageUnit);
}
void PreferencePage::changeCheckInterval() {
    keep(tagOf(*m_views->updateTime), SUScheduledCheckInterval);
}
void PreferencePage::changeAutoUpdate() {
    keep(m_views->autoCheckUpdates->state() == TickState::All, SUEnableAutomaticChecks);
}
void PreferencePage::changeSysDuplicates() {
    keep(m_views->sysCheckBox->state() == TickState::All, ZvSystemDuplication);
}
void PreferencePage::changeHiddenDuplicates() {
    keep(m_views->hideCheckBox->state() == TickState::All, ZvHidenDuplication);
}

void PreferencePage::changeShowStatusBtnClick() {
    const bool isHidden = !getHiddenStatusItem();
    Log::line(fmt::format("ischose:{}", isHidden ? 1 : 0));
    m_views->showStatusBtn->setState(isHidden ? TickState::All : TickState::Nothing);
    tell(setHiddenStatusItem(isHidden));
    notice::setStatusBarHidden.post(*m_services.notifications, isHidden);
}

void PreferencePage::loginButtonAction() {
    const int state = m_views->checkBoxBtn->state() == TickState::All ? 1 : 0;
    m_views->checkBoxBtn->setEnabled(false);
    ++m_loginErrands;
    runAside(
        this, "loginButtonAction:",
        [state] {
            const bool isDone = launchAtLogin(state);
            return std::pair(isDone, startsAtLogin());
        },
        [this](const std::pair<bool, bool>& done) {
            m_views->failureLine->setVisible(!done.first);
            m_views->failureLine->setText(tr("The entry for the login could not be changed."));
            showLogin(done.second);
        });
}

void PreferencePage::changeStartHidden() {
    keep(m_views->startHiddenBox->state() == TickState::All, ZvLoginItemIsHide);
    runAside(
        this, "changeStartHidden", [] { startHiddenAsSet(); }, [] {});
}

void PreferencePage::forgetContents() {
    m_views->forgetButton->setEnabled(false);
    runAside(
        this, "forgetContents", [] { return clearHashCache(hashCachePath()); },
        [this](const Result<void>& cleared) {
            tellForgotten(
                cleared
                    ? QString()
                    : tr("It could not be forgotten: %1").arg(inWords(cleared.error().reason())));
        });
}

void PreferencePage::forgetScans() {
    m_views->forgetScansButton->setEnabled(false);
    runAside(
        this, "forgetScans",
        [history = ScanHistory(m_services.stateFolder)] { return history.clear(); },
        [this](bool isClear) {
            tellForgotten(isClear ? QString() : tr("The scans could not be forgotten."));
        });
}

// Empty where it could.
void PreferencePage::tellForgotten(const QString& fault) {
    m_views->failureLine->setVisible(!fault.isEmpty());
    m_views->failureLine->setText(fault);
    readRemembered();
}

void PreferencePage::changeKeepRunning() {
    const int wanted = m_views->keepRunningChoice->currentData().toInt();
    if (wanted == PreferenceViews::Ask) keep(std::string(askToKeepRunning), keepRunningKey);
    else keep(wanted == PreferenceViews::KeepRunning, keepRunningKey);
}

void PreferencePage::controlTextDidChange(NumberField& field) {
    constexpr int digits = 4;
    const int place = field.cursorPosition();
    const QString text = field.text().toUpper();
    if (text.size() > digits) {
        field.setText(text.left(digits));
        field.setCursorPosition(std::min(place, digits));
    }
    const Int number = field.number();
    if (field.tag() == PreferenceViews::duplicateLimitTag) keep(number, ZvDuplicationLimit);
    else if (field.tag() == PreferenceViews::diskUsageLimitTag) keep(number, ZvDiskUsageLimit);
}

// Others hear of it as of a change by hand.
void PreferencePage::restoreDefaults(Group group) {
    const bool wasHidden = getHiddenStatusItem();
    for (const char* const key : keysOf(group))
        if (const auto usual = usualSetting(key); usual && !readsAlike(settingInForce(key), *usual))
            m_services.defaults->setValue(*usual, key);
    tell(m_services.defaults->synchronize());
    readSettings();
    if (group == Group::Cleaning)
        for (int tag = 1; tag <= static_cast<int>(categories.size()); ++tag)
            notice::changeCheckBox.post(
                *m_services.notifications,
                {tag, integerOf(settingInForce(categories.at(std::size_t(tag) - 1).key)) == 0});
    if (group == Group::General && m_views->checkBoxBtn->state() == TickState::All)
        m_views->checkBoxBtn->click();
    if (getHiddenStatusItem() != wasHidden)
        notice::setStatusBarHidden.post(*m_services.notifications, !wasHidden);
}

PageDescriptor preferencePage(const PageServices& services, const PreferenceParts& parts) {
    return {
        .identifier = QStringLiteral("preferences"),
        .label = PreferencePage::tr("Preferences"),
        .picture = QStringLiteral("preferences"),
        .make = [services, parts] { return std::make_unique<PreferencePage>(services, parts); }};
}

}  // namespace orrinvale
