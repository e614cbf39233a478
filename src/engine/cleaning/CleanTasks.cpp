// First how each notice is written and read by its keys, then the operations.
#include "engine/cleaning/CleanTasks.h"

#include <fmt/format.h>

#include <any>
#include <system_error>
#include <thread>
#include <utility>

#include "engine/base/Log.h"
#include "engine/base/saturating.h"
#include "engine/cleaning/FolderUtilities.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr const char* folderIdKey = "FolderID";
constexpr const char* folderPathKey = "FolderPath";
constexpr const char* folderSizeKey = "FolderSize";
constexpr const char* fileCountKey = "FileCount";
constexpr const char* filePathKey = "FilePath";
constexpr const char* fileSizeKey = "FileSize";

template <class Value> std::optional<Value> valueIn(const UserInfo& info, const char* key) {
    const auto found = info.find(key);
    if (found == info.end()) return std::nullopt;
    const auto* const value = std::any_cast<Value>(&found->second);
    return value != nullptr ? std::optional(*value) : std::nullopt;
}

}  // namespace

Notification NoticeForm<ScannedFolder>::write(std::string name, const ScannedFolder& payload) {
    return {std::move(name),
            UserInfo{{folderIdKey, payload.FolderID},
                     {filePathKey, payload.FilePath},
                     {folderSizeKey, payload.FolderSize},
                     {fileCountKey, payload.FileCount}},
            {}};
}

std::optional<ScannedFolder> NoticeForm<ScannedFolder>::read(const Notification& notice) {
    const auto* const info = std::any_cast<UserInfo>(&notice.object);
    if (info == nullptr) return std::nullopt;
    return ScannedFolder{valueIn<std::uint32_t>(*info, folderIdKey).value_or(0),
                         valueIn<std::string>(*info, filePathKey).value_or(std::string()),
                         valueIn<std::uint64_t>(*info, folderSizeKey).value_or(0),
                         valueIn<std::uint64_t>(*info, fileCountKey).value_or(0)};
}

Notification NoticeForm<FolderPath>::write(std::string name, const FolderPath& payload) {
    return {std::move(name), {}, {{folderPathKey, payload.path}}};
}

std::optional<FolderPath> NoticeForm<FolderPath>::read(const Notification& notice) {
    auto path = valueIn<std::string>(notice.userInfo, folderPathKey);
    return path ? std::optional(FolderPath{*std::move(path)}) : std::nullopt;
}

Notification NoticeForm<FolderTotals>::write(std::string name, const FolderTotals& payload) {
    return {std::move(name),
            {},
            {{folderSizeKey, payload.FolderSize}, {fileCountKey, payload.FileCount}}};
}

std::optional<FolderTotals> NoticeForm<FolderTotals>::read(const Notification& notice) {
    const auto size = valueIn<std::uint64_t>(notice.userInfo, folderSizeKey);
    const auto count = valueIn<std::uint64_t>(notice.userInfo, fileCountKey);
    return size && count ? std::optional(FolderTotals{*size, *count}) : std::nullopt;
}

Notification NoticeForm<CleanedFile>::write(std::string name, const CleanedFile& payload) {
    Notification notice{std::move(name), {}, {{filePathKey, payload.FilePath}}};
    if (payload.FileSize) notice.userInfo.emplace(fileSizeKey, *payload.FileSize);
    return notice;
}

std::optional<CleanedFile> NoticeForm<CleanedFile>::read(const Notification& notice) {
    auto path = valueIn<std::string>(notice.userInfo, filePathKey);
    if (!path) return std::nullopt;
    return CleanedFile{*std::move(path), valueIn<std::uint64_t>(notice.userInfo, fileSizeKey)};
}

void CleanOperation::cancel() {
    {
        const std::lock_guard lock(m_mutex);
        m_isCancelled = true;
    }
    m_changed.notify_all();
}

bool CleanOperation::isCancelled() const {
    const std::lock_guard lock(m_mutex);
    return m_isCancelled;
}

ScanFolderOpt::ScanFolderOpt(std::string folder, std::uint32_t identifier, const CleanParts& parts,
                             CleanPosts posts)
    : opIdentifier(identifier), folderScan(std::move(folder)), m_parts(parts), m_posts(posts) {}

void ScanFolderOpt::setIsPaused(bool isPaused) {
    {
        const std::lock_guard lock(m_mutex);
        m_isPaused = isPaused;
    }
    m_changed.notify_all();
}

// Waits out a pause; false once it is cancelled.
bool ScanFolderOpt::goesOn() {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_isCancelled || !m_isPaused; });
    return !m_isCancelled;
}

void ScanFolderOpt::main() {
    folderSize = m_parts.utilities->sizeOfItemAtPath(folderScan);
    const auto folder =
        m_parts.files->openFolder(FileSystem::noParent, folderScan.c_str(), Links::Follow);
    CatalogBatch batch;
    while (folder && m_parts.files->readFolder(folder->get(), batch).value_or(false))
        for (const CatalogEntry& entry : batch.entries) {
            if (!goesOn()) return;
            if (*entry.name != '.') take(entry.name);
        }
    if (goesOn()) ConmmunicateMain(ZvScanOptFinish);
}

void ScanFolderOpt::take(const std::string& name) {
    curFilePath = joinPath(folderScan, name);
    if (Log::isEngineEnabled()) Log::line(fmt::format("name: {}, path:{}", name, curFilePath));
    addSaturating(totalSize, m_parts.utilities->sizeOfItemAtPath(curFilePath));
    ++totalFiles;
    ConmmunicateMain(ZvScanSingleFile);
}

void ScanFolderOpt::ConmmunicateMain(const Notice<ScannedFolder>& name) const {
    m_posts.mainQueue->async([center = m_posts.center,
                              notification = NoticeForm<ScannedFolder>::write(
                                  name.name, {opIdentifier, curFilePath, totalSize, totalFiles})] {
        postNotification(*center, notification);
    });
}

void ScanFolderOpt::postNotification(const NotificationCenter& center,
                                     const Notification& notification) {
    center.post(notification.name, notification.object, notification.userInfo);
}

FastCleanOpt::FastCleanOpt(std::vector<std::string> paths, CleanTaskParts parts, CleanPosts posts)
    : folderPathArr(std::move(paths)), m_parts(std::move(parts)), m_posts(posts) {}

void FastCleanOpt::main() {
    PathCleaner cleaner(m_parts);
    for (const std::string& path : folderPathArr) {
        if (isCancelled()) break;
        PathCleaner::Outcome outcome = cleaner.remove(path);
        const bool isDeletable = !outcome.lacksRights;
        if (!isDeletable) {
            if (authorizationRef == AuthorizationRef::null)
                static_cast<void>(FolderUtilities::CreateAuthoration(authorizationRef));
            outcome = cleaner.remove(path);
        }
        if (outcome.isDone || outcome.isKept) continue;
        Log::line(fmt::format("Clean {} folder failed: {}",
                              isDeletable ? "deletable" : "undeletable", path));
    }
    if (authorizationRef != AuthorizationRef::null)
        static_cast<void>(FolderUtilities::DeleteAuthoration(authorizationRef));
    authorizationRef = AuthorizationRef::null;
    if (!isCancelled()) ConmmunicateMain(ZvCleanOptFinish);
}

void FastCleanOpt::notifyDeleteFailed(const std::string& path) const {
    ZvCleanOptFailed.post(*m_posts.center, {path, std::nullopt});
}

void FastCleanOpt::ConmmunicateMain(const Notice<FastCleanOpt*>& name) {
    m_posts.mainQueue->async([this, name, center = m_posts.center] { name.post(*center, this); });
}

FastCleanOptV2::FastCleanOptV2(CleanTaskParts parts, MainQueue& mainQueue)
    : m_parts(std::move(parts)),
      m_mainQueue(mainQueue),
      m_self(std::make_shared<FastCleanOptV2*>(this)) {}

FastCleanOptV2::~FastCleanOptV2() { *m_self = nullptr; }

void FastCleanOptV2::beginCleanTask(std::vector<std::string> paths) {
    cleanFilesArr = std::move(paths);
    ++m_running;
    const auto end = [queue = &m_mainQueue, self = m_self] {
        queue->async([self] {
            if (*self == nullptr) return;
            --(*self)->m_running;
            (*self)->m_cleanFinished = true;
            if ((*self)->onCleanFinished) (*self)->onCleanFinished(true);
        });
    };
    try {
        std::thread([parts = m_parts, all = cleanFilesArr, end] {
            PathCleaner cleaner(parts);
            for (const std::string& path : all) cleaner.remove(path);
            end();
        }).detach();
    } catch (const std::system_error& error) {  // no thread left for this user
        Log::line(fmt::format("Nothing is cleaned: {}", error.what()));
        end();
    }
}

bool FastCleanOptV2::synFastClean(const std::vector<std::string>& paths) const {
    PathCleaner cleaner(m_parts);
    bool isGone = true;
    for (const std::string& path : paths) isGone = cleaner.remove(path).isDone;
    return isGone;
}

}  // namespace orrinvale
