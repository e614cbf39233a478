// UserDefaults: the user's settings by key, in memory and in one file. The keys stand in
// SettingsKeys.h.
#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "engine/base/NotificationCenter.h"
#include "engine/settings/SettingValue.h"
#include "platform/error.h"

namespace orrinvale {

class DurableFile;

/// A key reads as what was set for it, else as what is registered for it, else as nothing.
/// Registered values live in memory only. A change is seen by every reader at once and is on the
/// disk after synchronize(); SettingsKeeper (services/settings) calls it for changes that nobody
/// wrote, and for those of a second process.
///
/// All operations may be called from any thread. No lock is held while a handler runs.
class UserDefaults final {
public:
    using Handler = std::function<void()>;
    using Observation = NotificationCenter::Observation;

    /// Those of this user, "settings.ini" in the program's folder below $XDG_CONFIG_HOME; made at
    /// the first call, never freed.
    [[nodiscard]] static UserDefaults& standardUserDefaults();

    /// Puts others in their place, for a program that must not touch the user's own, such as one
    /// that draws sample windows. Not owned; they must outlive their use. Null gives the user's own
    /// back.
    static void setStandardUserDefaults(UserDefaults* defaults);

    /// Reads the file. Without one everything reads as registered, as it does when the file can not
    /// be read at all, which is then put aside (see DurableFile). Of a file with bad lines the
    /// others hold, and the log says which are bad; before they are written over, a copy with them
    /// is kept.
    explicit UserDefaults(std::string path);
    ~UserDefaults();
    UserDefaults(const UserDefaults&) = delete;
    UserDefaults& operator=(const UserDefaults&) = delete;

    void registerDefaults(const SettingValues& values);
    [[nodiscard]] bool hasRegistered(std::string_view key) const;

    [[nodiscard]] SettingObject objectForKey(std::string_view key) const;
    [[nodiscard]] std::int64_t integerForKey(std::string_view key) const;
    [[nodiscard]] bool boolForKey(std::string_view key) const;
    [[nodiscard]] float floatForKey(std::string_view key) const;

    void setValue(SettingValue value, std::string_view forKey);
    void setInteger(std::int64_t value, std::string_view forKey) { setValue(value, forKey); }
    void setBool(bool value, std::string_view forKey) { setValue(value, forKey); }
    void setFloat(float value, std::string_view forKey) { setValue(value, forKey); }

    /// Writes what was set since the last time, and takes over what other processes have stored
    /// meanwhile. Of a key that both have changed ours holds. Success means that everything set
    /// before the call is on the disk. After an error it is still unsaved and is tried again by the
    /// next call; the reason is logged too. Without changes nothing is written.
    [[nodiscard]] Result<void> synchronize();

    /// True when something was set that synchronize() has not written.
    [[nodiscard]] bool isUnsaved() const;

    /// Runs the handler after each change of what the key reads as, on the thread that made the
    /// change, or for another process's change in synchronize(). Read the value in the handler.
    /// Ends with the result; see NotificationCenter::Observation.
    [[nodiscard]] Observation addObserver(std::string_view key, Handler handler);

    /// As addObserver(), after a change of any key.
    [[nodiscard]] Observation addObserverOfAll(Handler handler);

    [[nodiscard]] const std::string& path() const { return m_path; }

    /// The file itself: where path() is a link of this user's, what it leads to. Asked anew at
    /// every call.
    [[nodiscard]] Result<std::string> filePath() const;

private:
    [[nodiscard]] SettingObject lookUp(std::string_view key) const;  // with m_mutex held
    [[nodiscard]] Result<SettingValues> storedNow(Result<std::string> text) const;
    [[nodiscard]] Result<SettingValues> read() const;
    [[nodiscard]] Result<SettingValues> write(const SettingValues& changes) const;
    [[nodiscard]] std::vector<std::string> adopt(SettingValues stored,
                                                 const SettingValues& written);
    [[nodiscard]] Result<std::vector<std::string>> exchange();
    void post(const std::string& key) const;

    const std::string m_path;
    NotificationCenter m_center;
    std::mutex m_fileMutex;      // held over a whole synchronize(); taken before m_mutex
    mutable std::mutex m_mutex;  // guards what follows
    SettingValues m_registered;
    SettingValues m_stored;   // what the file held when it was last read or written
    SettingValues m_changes;  // set since then
};

}  // namespace orrinvale
