// The folders of a run: which category is ticked, and what its folders are called, which the disk
// is asked for aside. See CleanSysController.h.
#include <array>
#include <future>
#include <utility>

#include "engine/base/Log.h"
#include "engine/cleaning/FolderUtilities.h"
#include "engine/settings/UtilityFunctionOfData.h"
#include "services/foundation/runAside.h"
#include "ui/fastclean/CleanSysController.h"
#include "ui/kit/controls/pathText.h"

namespace orrinvale {
namespace {

using FolderNames = std::vector<std::string>;

// A disk that is awake names its folders at once, and the window need not change while it comes.
constexpr std::chrono::milliseconds waitForNames{40};

// The last in the categories' order whose text says that all of it is ticked.
std::optional<CleanCategory> lastTicked(const SettingItems& settings) {
    const std::array texts{&settings.systemCaches, &settings.userCaches, &settings.systemLogs,
                           &settings.userLogs,     &settings.userTrash,  &settings.downloads};
    std::optional<CleanCategory> last;
    for (const CleanCategoryNames& each : cleanCategories)
        if (*texts.at(static_cast<std::size_t>(each.category)) == "1") last = each.category;
    return last;
}

}  // namespace

void CleanSysController::readSettings() {
    const auto settings = UtilityFunctionOfData::getMyData().readerTxtForSettingValue();
    if (settings == nullptr) {
        Log::line("settingItems is nil.");
        return;
    }
    const auto category = lastTicked(*settings);
    m_isAnyTicked = category.has_value();
    foldersArr.clear();
    m_runFolders.clear();
    m_nameTimer.stop();
    ++m_asked;
    if (!category) return;
    m_category = *category;
    askNames();
}

void CleanSysController::askNames() {
    m_isSilent = false;
    const auto answer = std::make_shared<std::promise<FolderNames>>();
    auto names = answer->get_future();
    const auto worker = runAside(
        this, "fastCleanFolders",
        [answer, utilities = m_parts.clean.utilities, category = m_category] {
            FolderNames folders = utilities->getFolderPath(static_cast<std::uint32_t>(category));
            answer->set_value(folders);
            return folders;
        },
        [this, asked = m_asked](FolderNames folders) {
            if (asked == m_asked && isAskingNames()) takeNames(std::move(folders));
        });
    if (worker == nullptr) {
        m_isSilent = true;
    } else if (names.wait_for(waitForNames) == std::future_status::ready) {
        m_runFolders = foldersArr = names.get();
    } else {
        m_nameTimer.start(m_parts.namePatience);
    }
}

// Where they came late; nothing where the disk stayed silent.
void CleanSysController::takeNames(std::optional<FolderNames> folders) {
    m_nameTimer.stop();
    m_isSilent = !folders;
    if (folders) m_runFolders = foldersArr = *std::move(folders);
    if (m_state != State::Measuring) return draw();
    if (!m_runFolders.empty()) return browse();
    m_isEmpty = true;
    endRun(0, 0);
}

// Whether a click agrees to what it is to clean.
bool CleanSysController::isAsShown() const {
    if (m_runFolders.empty() && !isAskingNames()) return false;
    const auto settings = UtilityFunctionOfData::getMyData().readerTxtForSettingValue();
    return settings == nullptr || lastTicked(*settings) == m_category;
}

QString CleanSysController::waitingText() const {
    if (!m_isAnyTicked) return noCategoryLine();
    if (m_isSilent) return silentCategoryLine(m_category);
    if (isAskingNames()) return {};
    if (m_runFolders.empty()) return emptyCategoryLine(m_category);
    QStringList names;
    for (const std::string& folder : m_runFolders)
        names.push_back(onOneLine(QString::fromStdString(folder)));
    return names.join(QStringLiteral(", "));
}

}  // namespace orrinvale
