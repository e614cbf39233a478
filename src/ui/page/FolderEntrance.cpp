// FolderEntrance: answers come later, so that each asks again whether the page lives and is free.
#include "ui/page/FolderEntrance.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "platform/files.h"
#include "services/foundation/runAside.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/page/PageServices.h"

namespace orrinvale {

namespace {

// Shorter than anybody sees, and long enough for every disk that is awake.
constexpr std::chrono::milliseconds folderPatience{40};

/// What a thread aside found out, and whether somebody still waits for it.
struct FolderLook {
    std::mutex mutex;
    std::condition_variable answered;
    std::optional<bool> isFolder;  // guarded by the mutex
    bool isLate = false;           // of the main thread alone
};

}  // namespace

void whenFolderIsThere(const PageServices& services, QObject& page, const std::string& path,
                       const std::function<void()>& then) {
    const auto look = std::make_shared<FolderLook>();
    const auto worker = runAside(
        &page, "whenFolderIsThere",
        [files = services.files, path, look] {
            const auto seen = files->attributes(FileSystem::noParent, path.c_str(), Links::Follow);
            const std::lock_guard lock(look->mutex);
            look->isFolder = seen && seen->type == FileType::Folder;
            look->answered.notify_all();
        },
        [look, then] {
            if (look->isLate && *look->isFolder) then();
        });
    if (worker == nullptr) return;
    std::unique_lock lock(look->mutex);
    look->isLate =
        !look->answered.wait_for(lock, folderPatience, [&] { return look->isFolder.has_value(); });
    if (look->isLate || !*look->isFolder) return;
    lock.unlock();
    then();
}

FolderEntrance::FolderEntrance(const PageServices& services, QObject& page, Rules rules,
                               Question question)
    : m_services(services),
      m_page(&page),
      m_rules(std::move(rules)),
      m_question(std::move(question)) {}

void FolderEntrance::choose(QWidget* window, const std::string& directory) {
    PathChoice choice;
    choice.directory = directory;
    choice.withSeveral = true;
    m_services.dialogs->choosePaths(
        window, choice,
        [this, page = m_page, window = QPointer(window)](const std::vector<std::string>& paths) {
            if (page != nullptr && !paths.empty()) enter(window, paths.front(), paths.size() > 1);
        });
}

void FolderEntrance::drop(QWidget* window, const std::string& path, bool isOneOfSeveral) {
    whenFolderIsThere(m_services, *m_page, path,
                      [this, page = m_page, window = QPointer(window), path, isOneOfSeveral] {
                          if (page != nullptr) enter(window, path, isOneOfSeveral);
                      });
}

void FolderEntrance::enter(QWidget* window, const std::string& path, bool isOneOfSeveral) {
    if (!m_rules.isFree()) return;
    if (!m_rules.wouldForget()) {
        m_rules.take(path, isOneOfSeveral);
        return;
    }
    Alert alert;
    alert.title = m_question.title;
    alert.text = m_question.text.arg(onOneLine(QString::fromStdString(path)));
    alert.buttons =
        QStringList{m_question.yes, QCoreApplication::translate("FolderEntrance", "Cancel")};
    alert.cancelButton = 1;
    m_services.dialogs->alert(window, alert,
                              [this, page = m_page, path, isOneOfSeveral](int button) {
                                  if (page != nullptr && button == 0 && m_rules.isFree())
                                      m_rules.take(path, isOneOfSeveral);
                              });
}

}  // namespace orrinvale
