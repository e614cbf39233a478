// AutostartItems: the login items of desktops that read autostart entries (freedesktop.org, Desktop
// Application Autostart 0.5). Read platform/login_items.h first.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "engine/loginitems/AutostartEntry.h"
#include "platform/login_items.h"

namespace orrinvale {

/// The word behind the program in our own entry: the program was started by a login.
inline constexpr const char* atLoginOption = "--at-login";

/// An entry in the person's folder hides the system's of the same name. One that is marked Hidden
/// counts as deleted; so an entry of the system is switched off without any right, by an entry that
/// says nothing else. A link gives way to a copy of what it leads to, which is never written.
/// Entries that were made here have the path in a key of our own.
class AutostartItems final : public LoginItems {
public:
    /// Takes the person's own entry away, to where it can be brought back from, by the program's
    /// one removal: why it stays, empty when it went. On the thread of the caller.
    using TakeAway = std::function<std::string(const LoginItemRecord& item)>;

    AutostartItems(LoginItemFolders folders, TakeAway takeAway)
        : m_folders(std::move(folders)), m_takeAway(std::move(takeAway)) {}

    [[nodiscard]] std::vector<LoginItemRecord> list(std::int32_t& status) const override;
    [[nodiscard]] std::string pathToAdd(const std::string& path) const override;
    [[nodiscard]] std::int32_t add(const std::string& wanted, bool hidden) override;
    [[nodiscard]] Result<void> setStarts(const std::string& fileName, bool starts) override;
    [[nodiscard]] Result<void> setHidden(const std::string& fileName, bool hidden) override;
    [[nodiscard]] const LoginItemFolders& folders() const override { return m_folders; }

private:
    [[nodiscard]] LoginItemRecord recordOf(const std::string& fileName, bool isPersons) const;
    void readInto(LoginItemRecord& record, const AutostartEntry& entry) const;
    [[nodiscard]] std::string programOf(const AutostartEntry& entry) const;
    [[nodiscard]] std::string found(const std::string& program) const;
    [[nodiscard]] bool isForThisDesktop(const AutostartEntry& entry) const;
    [[nodiscard]] std::optional<std::string> systemsFile(const std::string& fileName) const;
    [[nodiscard]] Result<void> write(const std::string& path, const AutostartEntry& entry) const;
    [[nodiscard]] std::string freeName(const std::string& path) const;
    [[nodiscard]] std::optional<AutostartEntry> entryFor(const std::string& path) const;
    [[nodiscard]] std::optional<std::string> commandOf(const std::string& path) const;
    [[nodiscard]] std::optional<std::string> linkTo(const std::string& path) const;
    [[nodiscard]] Result<void> change(const std::string& fileName, bool mayCopy,
                                      const std::function<bool(AutostartEntry&)>& change);

    const LoginItemFolders m_folders;
    const TakeAway m_takeAway;
};

/// What switches an entry of the system of that name off.
[[nodiscard]] std::string overrideText(const std::string& name);

}  // namespace orrinvale
