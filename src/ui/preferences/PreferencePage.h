// PreferencePage: the page on which a person edits the settings. PreferenceViewController has the
// accessors that other pages share, PreferenceViews the controls.
#pragma once

#include <QObject>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/UserDefaults.h"
#include "ui/page/Page.h"
#include "ui/page/PageServices.h"
#include "ui/preferences/PreferenceViews.h"

namespace orrinvale {

enum class UpdateRoad : std::uint8_t;

/// What there is of that which settings are about. A control whose service is missing is greyed
/// with the reason.
struct PreferenceParts {
    std::function<bool()> hasTray =
        {};                        ///< asked whenever the page is shown; empty: there is never one
    bool hasDesktopNotes = false;  ///< the desktop can show words
    bool hasDiskUsage = false;     ///< there is a page that heeds the limits
    /// Where newer versions come from, as far as that is known; empty: nobody looks for them. Asked
    /// whenever the page is shown, and at notice::updateRoadFound.
    std::function<std::optional<UpdateRoad>()> updateRoad = {};
    /// Why the log file can not be written, in words; empty where it can. Asked whenever the page
    /// is shown, and at notice::logFileLookedAt.
    std::function<QString()> logFault = {};
};

/// Each change is stored at once; one that somebody else makes is shown at once. Works on
/// UserDefaults::standardUserDefaults(). Main thread only.
class PreferencePage final : public QObject, public Page, public PreferenceViewController {
    Q_OBJECT
public:
    PreferencePage(const PageServices& services, PreferenceParts parts);
    ~PreferencePage() override;

    [[nodiscard]] QWidget* view() const override { return m_views->mainView; }
    void setMainWindow(QWidget* /*window*/) override {}
    [[nodiscard]] const PreferenceViews& views() const { return *m_views; }

    void loadView();
    /// The controls show what is stored.
    void readSettings();

    // What the controls do.
    void changeSysCachesState() { changeCategory(1); }
    void changeUserCaches() { changeCategory(2); }
    void changeSystemLogs() { changeCategory(3); }
    void changeUserLogs() { changeCategory(4); }
    void changeUserTrash() { changeCategory(5); }
    void changeUserDownloads() { changeCategory(6); }
    void changeArlarmSliderValue();
    void changeMemorySliderVaule();
    void changeLimitUnit();
    void changeDiskUsageUnit();
    void changeCheckInterval();
    void changeAutoUpdate();
    void changeSysDuplicates();
    void changeHiddenDuplicates();
    void changeShowStatusBtnClick();
    /// Takes the entry that starts the program at login away, and makes it anew where it is to
    /// start.
    void loginButtonAction();
    void changeStartHidden();
    void changeKeepRunning();
    /// Forgets what searches remember of files.
    void forgetContents();
    /// Forgets the kept scans of all places.
    void forgetScans();
    /// Four digits of the field stay, and the number is stored under the key of its tag.
    void controlTextDidChange(NumberField& field);

    void restoreDefaults(PreferenceViews::Group group);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void connectControls();
    void connectBoxes();
    void followSettings();
    void changeCategory(int tag);
    void changeSlider(const QSlider& slider, const char* key);
    void keep(SettingValue value, const char* key);
    void tell(const Result<void>& stored);
    void readCategories();
    void readWarnings();
    void showRestorable();
    void showFaults();
    [[nodiscard]] QString updateFault() const;
    void readRemembered();
    struct RememberedBytes {
        std::uint64_t contents = 0, scans = 0;
    };
    void showRemembered();
    void tellForgotten(const QString& fault);
    void readLogin();
    void showLogin(bool starts);

    const PageServices m_services;
    const PreferenceParts m_parts;
    std::unique_ptr<PreferenceViews> m_views;
    RememberedBytes m_remembered;
    bool m_isAwaitingRead = false;
    int m_loginErrands = 0;  // under way
    std::int64_t m_loginCheck = 0;
    UserDefaults::Observation m_observation;
    UserDefaults::Observation m_roadObservation;
    UserDefaults::Observation m_logObservation;
};

[[nodiscard]] PageDescriptor preferencePage(const PageServices& services,
                                            const PreferenceParts& parts);

}  // namespace orrinvale
