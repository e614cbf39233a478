// The text of the file is SettingsText.h's, its safe replacement DurableFile.h's.
#include "engine/settings/UserDefaults.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <atomic>
#include <cerrno>
#include <utility>
#include <vector>

#include "engine/base/Log.h"
#include "engine/files/DurableFile.h"
#include "engine/settings/SettingsText.h"
#include "engine/settings/UserFolders.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

std::atomic<UserDefaults*> replacement{nullptr};

// No setting can have this name: the parser has no empty bare key, and the constants are not empty.
constexpr const char* kAllKeys = "";

bool isReadable(std::string_view text) { return parseSettings(text).has_value(); }

// A text with lines that can not be read is kept, once, before anything is written in its place.
Result<void> keepBadLines(const std::string& path, const std::string& text) {
    const auto parsed = parseSettings(text);
    if (!parsed || parsed->badLines.empty()) return {};
    const auto copy = DurableFile::keepCopy(path, text);
    if (!copy) return tl::unexpected(copy.error());
    if (!copy->empty())
        Log::line(fmt::format("{}: line {} can not be read, the others hold. A copy is kept as {}.",
                              path, fmt::join(parsed->badLines, ", "), *copy));
    return {};
}

SettingObject valueIn(const SettingValues& values, std::string_view key) {
    const auto found = values.find(key);
    if (found == values.end()) return std::nullopt;
    return found->second;
}

}  // namespace

UserDefaults& UserDefaults::standardUserDefaults() {
    if (UserDefaults* const other = replacement) return *other;
    static UserDefaults* const own = new UserDefaults(userConfigFolder() + "/settings.ini");
    return *own;
}

void UserDefaults::setStandardUserDefaults(UserDefaults* defaults) { replacement = defaults; }

UserDefaults::UserDefaults(std::string path) : m_path(std::move(path)) {
    if (auto stored = read()) m_stored = std::move(*stored);
    else
        Log::line(fmt::format("The settings in {} could not be read: {}.", m_path,
                              stored.error().reason()));
}

UserDefaults::~UserDefaults() = default;

void UserDefaults::registerDefaults(const SettingValues& values) {
    const std::lock_guard lock(m_mutex);
    for (const auto& [key, value] : values) m_registered.insert_or_assign(key, value);
}

bool UserDefaults::hasRegistered(std::string_view key) const {
    const std::lock_guard lock(m_mutex);
    return m_registered.contains(key);
}

SettingObject UserDefaults::lookUp(std::string_view key) const {
    for (const SettingValues* values : {&m_changes, &m_stored, &m_registered})
        if (auto value = valueIn(*values, key)) return value;
    return std::nullopt;
}

SettingObject UserDefaults::objectForKey(std::string_view key) const {
    const std::lock_guard lock(m_mutex);
    return lookUp(key);
}

std::int64_t UserDefaults::integerForKey(std::string_view key) const {
    const SettingObject value = objectForKey(key);
    return value ? integerOf(*value) : 0;
}

bool UserDefaults::boolForKey(std::string_view key) const {
    const SettingObject value = objectForKey(key);
    return value && boolOf(*value);
}

float UserDefaults::floatForKey(std::string_view key) const {
    const SettingObject value = objectForKey(key);
    return value ? floatOf(*value) : 0.0F;
}

void UserDefaults::setValue(SettingValue value, std::string_view forKey) {
    const std::string key(forKey);
    bool isChanged = false;
    {
        const std::lock_guard lock(m_mutex);
        isChanged = !isSame(lookUp(key), value);
        m_changes.insert_or_assign(key, std::move(value));
    }
    if (isChanged) post(key);
}

bool UserDefaults::isUnsaved() const {
    const std::lock_guard lock(m_mutex);
    return !m_changes.empty();
}

Result<void> UserDefaults::synchronize() {
    auto changed = exchange();
    if (!changed) {
        Log::line(fmt::format("The settings could not be saved in {}: {}.", m_path,
                              changed.error().reason()));
        return tl::unexpected(std::move(changed.error()));
    }
    for (const std::string& key : *changed) post(key);
    return {};
}

Result<std::vector<std::string>> UserDefaults::exchange() {
    const std::lock_guard fileLock(m_fileMutex);
    SettingValues changes;
    {
        const std::lock_guard lock(m_mutex);
        changes = m_changes;
    }
    auto stored = changes.empty() ? read() : write(changes);
    if (!stored) return tl::unexpected(std::move(stored.error()));
    return adopt(std::move(*stored), changes);
}

// A missing file holds nothing. In the place of a damaged one, which stands aside now, what is
// known of it holds on.
Result<SettingValues> UserDefaults::storedNow(Result<std::string> text) const {
    if (text) return parseSettings(*text).value_or(ParsedSettings{}).values;
    if (text.error().kind == ErrorKind::NotFound) return SettingValues{};
    if (text.error().number != EBADMSG) return tl::unexpected(std::move(text.error()));
    const std::lock_guard lock(m_mutex);
    return m_stored;
}

Result<std::string> UserDefaults::filePath() const { return DurableFile::behindOwnLinks(m_path); }

Result<SettingValues> UserDefaults::read() const {
    const auto path = filePath();
    if (!path) return tl::unexpected(path.error());
    auto text = DurableFile::readWell(*path, kSettingsTextLimit, isReadable);
    // The file stays as it is, so that nothing is lost yet where no copy can be made.
    if (text) (void)keepBadLines(*path, *text);
    return storedNow(std::move(text));
}

Result<SettingValues> UserDefaults::write(const SettingValues& changes) const {
    if (auto made = DurableFile::makeFolder(folderOf(m_path)); !made)
        return tl::unexpected(std::move(made.error()));
    const auto path = filePath();
    if (!path) return tl::unexpected(path.error());
    auto file = DurableFile::begin(*path);
    if (!file) return tl::unexpected(std::move(file.error()));
    auto current = file->current(kSettingsTextLimit, isReadable);
    if (current)
        if (auto kept = keepBadLines(*path, *current); !kept)
            return tl::unexpected(std::move(kept.error()));
    auto stored = storedNow(std::move(current));
    if (!stored) return stored;
    for (const auto& [key, value] : changes) stored->insert_or_assign(key, value);
    const std::string text = printSettings(*stored);
    // It would be put aside as damaged at the next start.
    if (text.size() > kSettingsTextLimit)
        return tl::unexpected(systemError("write", m_path, EFBIG));
    if (auto saved = file->commit(text); !saved) return tl::unexpected(std::move(saved.error()));
    return stored;
}

// The keys that read as something else now.
std::vector<std::string> UserDefaults::adopt(SettingValues stored, const SettingValues& written) {
    const std::lock_guard lock(m_mutex);
    std::map<std::string, SettingObject> before;
    for (const SettingValues* values : {&std::as_const(stored), &std::as_const(m_stored)})
        for (const auto& each : *values) before.emplace(each.first, lookUp(each.first));
    m_stored = std::move(stored);
    // What was set again while the file was written stays unsaved.
    std::erase_if(m_changes, [&](const auto& each) {
        return isSame(each.second, valueIn(written, each.first));
    });
    std::vector<std::string> changed;
    for (const auto& [key, value] : before)
        if (!isSame(lookUp(key), value)) changed.push_back(key);
    return changed;
}

UserDefaults::Observation UserDefaults::addObserver(std::string_view key, Handler handler) {
    return m_center.addObserver(std::string(key),
                                [handler = std::move(handler)](const Notification&) { handler(); });
}

UserDefaults::Observation UserDefaults::addObserverOfAll(Handler handler) {
    return addObserver(kAllKeys, std::move(handler));
}

void UserDefaults::post(const std::string& key) const {
    m_center.post(key);
    m_center.post(kAllKeys);
}

}  // namespace orrinvale
