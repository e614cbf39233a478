// PreferenceViews: the controls of the preferences, by group. PreferencePage.h says what they do.
#pragma once

#include <QCoreApplication>
#include <QPointer>
#include <array>

class QComboBox;
class QLabel;
class QScrollArea;
class QSlider;
class QWidget;

namespace orrinvale {

class ElidedLabel;
class HoverButton;
class LeftRail;
class NumberField;
class PreferenceGroup;
class SegmentedControl;
class TickBox;

/// Knows nothing of settings. The view is deleted with this object unless a window took it over.
/// Main thread only.
struct PreferenceViews final {
    Q_DECLARE_TR_FUNCTIONS(PreferenceViews)

public:
    static constexpr int duplicateLimitTag = 1024;
    static constexpr int diskUsageLimitTag = 2048;
    /// In the order of the rail.
    enum Group { Cleaning, Warnings, Duplicates, DiskUsage, Updates, General, GroupCount };
    /// Of a category.
    enum Segment { Off, On, Some };
    /// What happens when its window is closed and no tray shows it.
    enum Unseen { Ask, KeepRunning, Quit };

    PreferenceViews();
    ~PreferenceViews();
    PreferenceViews(const PreferenceViews&) = delete;
    PreferenceViews& operator=(const PreferenceViews&) = delete;

    [[nodiscard]] std::array<SegmentedControl*, 6> categories() const {
        return {SystemCashSege, userCachSege,  systenLogSege,
                userLogSege,    userTrashSege, userDownSege};
    }

    QPointer<QWidget> mainView;
    std::array<PreferenceGroup*, GroupCount> boxes{};
    SegmentedControl* SystemCashSege = nullptr;
    SegmentedControl* userCachSege = nullptr;
    SegmentedControl* systenLogSege = nullptr;
    SegmentedControl* userLogSege = nullptr;
    SegmentedControl* userTrashSege = nullptr;
    SegmentedControl* userDownSege = nullptr;
    QSlider* alarmSlider = nullptr;  ///< in hundredths, as the other one
    QLabel* alarmWords = nullptr;
    QSlider* memorySlider = nullptr;
    QLabel* memoryWords = nullptr;
    TickBox* spaceWarningsBox = nullptr;
    NumberField* infoSizeTextFiled = nullptr;
    QComboBox* sizeInfo = nullptr;
    TickBox* hideCheckBox = nullptr;
    TickBox* sysCheckBox = nullptr;
    TickBox* compareBox = nullptr;
    TickBox* trashFirstBox = nullptr;
    TickBox* rememberBox = nullptr;
    HoverButton* forgetButton = nullptr;  ///< says how much is remembered
    NumberField* diskUsageLimit = nullptr;
    QComboBox* diskUsageUnit = nullptr;
    TickBox* oneFileSystemBox = nullptr;
    TickBox* rememberScansBox = nullptr;
    HoverButton* forgetScansButton = nullptr;  ///< likewise
    TickBox* autoCheckUpdates = nullptr;
    QComboBox* updateTime = nullptr;
    TickBox* checkBoxBtn = nullptr;
    TickBox* startHiddenBox = nullptr;
    TickBox* showStatusBtn = nullptr;
    QComboBox* keepRunningChoice = nullptr;
    QComboBox* themeChoice = nullptr;
    QComboBox* languageChoice = nullptr;
    TickBox* logBox = nullptr;
    QComboBox* logFileChoice = nullptr;
    ElidedLabel* failureLine = nullptr;  ///< of what could not be saved

private:
    void makeCleaning();
    void makeWarnings();
    void makeDuplicates();
    void makeDiskUsage();
    void makeUpdates();
    void makeGeneral();
    void putTogether();
    void followScrolling();

    LeftRail* m_rail = nullptr;
    QScrollArea* m_area = nullptr;
};

}  // namespace orrinvale
