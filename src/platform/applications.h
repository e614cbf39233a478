// The kinds of applications that a machine has, and what each can tell and do. Each kind is a class
// behind one interface and may be absent. linux/LinuxApplications.h makes those of Linux;
// engine/uninstall puts them together with the folders that end in ".app".
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orrinvale {

/// In the order in which they are listed.
enum class ApplicationType : std::uint8_t { App, Flatpak, Snap, Deb, AppImage, Folder };

/// The word of a type for commands and documents: "app", "flatpak", "snap", "deb", "appimage",
/// "folder".
[[nodiscard]] std::string_view wordOf(ApplicationType type);
[[nodiscard]] std::optional<ApplicationType> applicationTypeOf(std::string_view word);

/// One application as its kind knows it. Paths and names are exact bytes; what is not known is
/// empty.
struct ApplicationRecord {
    ApplicationType type = ApplicationType::App;
    std::string id;       ///< bundle identifier, flatpak id, snap name, or the id of the desktop
                          ///< entry without ".desktop"
    std::string name;     ///< for people, in their language
    std::string version;  ///< as the kind writes it
    std::string path;  ///< what stands for it on the disk: a folder, an AppImage, the program of a
                       ///< package
    std::string package;                ///< of a deb
    std::string icon;                   ///< a name of the icon theme, or the path of a picture
    std::string ref;                    ///< of a flatpak: "app/ID/ARCH/BRANCH"
    std::string installation;           ///< of a flatpak: the folder that it is installed in
    std::vector<std::string> entries;   ///< desktop entries that start it, by path
    std::vector<std::string> programs;  ///< what these start, by path
    std::vector<std::string> links;   ///< further names of an AppImage in the places for such ones
    std::vector<std::string> others;  ///< names of further applications that go with it
    std::optional<std::int64_t> installed;  ///< nanoseconds since 1970-01-01 UTC
    bool isSystem = false;   ///< the system needs it, or what needs it would go with it
    bool isOurs = false;     ///< this very program
    bool isPersons = false;  ///< installed for this person alone, who needs no right to remove it
};

/// What one look at a machine has found.
struct ApplicationInventory {
    std::vector<ApplicationRecord> records;  ///< kind by kind in the order of the types
    std::vector<std::string> packages;  ///< names of all packages that are there, applications or
                                        ///< not, whole or half; one for each architecture
    std::vector<std::string> formerNames;  ///< of packages that were there once, as far as the
                                           ///< system remembers them
    /// Kinds of which not all could be read, and why, for people: nobody may say of such a kind
    /// that something is not installed. A kind that this machine does not have is none of them.
    std::map<ApplicationType, std::string> unread;
};

/// What is asked of one application when somebody looks at it.
struct ApplicationDetails {
    std::optional<std::uint64_t> bytes;      ///< nothing: the caller measures the tree at the path
    bool isUpTo = false;                     ///< a removal may give back less
    std::optional<std::int64_t> lastUse;     ///< where the file system keeps such a time
    std::vector<std::string> configuration;  ///< files outside of homes that a removal leaves
};

/// What a removal of some applications of one kind would do, in one answer for all of them.
struct RemovalForecast {
    struct Along {
        std::size_t of = 0;  ///< which of the applications takes it along
        std::string name;
        std::string version;
    };
    std::vector<Along> along;        ///< what goes besides what was asked for
    std::vector<std::string> stays;  ///< sentences for people
    /// Of single applications the files outside of homes that are left, by path.
    std::map<std::size_t, std::vector<std::string>> kept;
    std::vector<std::vector<std::string>>
        trash;  ///< of each application what the caller is to move to the trash, itself first; none
                ///< where the kind removes by itself
    std::string refusal;  ///< why nothing of it can be removed; empty when it can
    std::map<std::size_t, std::string> refusals;  ///< why single ones can not
    bool asksForRight = false;
    /// How the kind knows again what it promised, so that nothing else goes.
    std::vector<std::string> promised;
};

/// What became of one application.
struct ApplicationRemoval {
    enum class State : std::uint8_t { Gone, Failed, Dismissed, Refused };
    State state = State::Failed;
    std::string reason;  ///< for people, unless it is gone
    std::string note;    ///< what a person wants to know even so
};

/// How long somebody waits for the services of all kinds together.
struct Waiting {
    static constexpr std::chrono::milliseconds usual{10'000};

    // NOLINTNEXTLINE(google-explicit-constructor): a flag alone stands for the usual time
    Waiting(const std::atomic<bool>& stopping, std::chrono::milliseconds time = usual)
        : stop(stopping), end(std::chrono::steady_clock::now() + time) {}

    const std::atomic<bool>& stop;  ///< ends the wait at once; outlives it
    const std::chrono::steady_clock::time_point end;
};

/// Whether an application runs. What can not be read leaves the question open.
enum class RunState : std::uint8_t { No, Yes, Unknown };

/// A desktop entry that counts, and what it starts. See linux/DesktopEntries.h.
struct StartingEntry;

/// All operations may read disks and are for a thread that may wait. An object holds no state that
/// changes; any thread.
class ApplicationKind {
public:
    virtual ~ApplicationKind() = default;
    [[nodiscard]] virtual ApplicationType type() const = 0;

    /// Adds all that are installed, and that it could not read them all; nothing where the kind is
    /// absent. Entries that start one of them are claimed, so that no later kind lists them.
    virtual void list(std::vector<StartingEntry>& entries, ApplicationInventory& out) const = 0;

    [[nodiscard]] virtual ApplicationDetails details(const ApplicationRecord& record) const = 0;

    /// The same for one of several that are asked about in one pass: what a kind has to read for
    /// all of them it reads once, and leaves in `reading`, which is null before the first and is
    /// for one thread.
    [[nodiscard]] virtual ApplicationDetails detailsOfNext(
        const ApplicationRecord& record, std::shared_ptr<const void>& /*reading*/) const {
        return details(record);
    }

    /// Simulates a removal of all of them together; nothing is changed. The end of the wait for a
    /// service is a refusal.
    [[nodiscard]] virtual RemovalForecast forecast(const std::vector<ApplicationRecord>& records,
                                                   const Waiting& waiting) const = 0;

    /// Removes them all, one answer each, in their order. May ask the person for a password, and
    /// waits for it. A set flag stops what can still be stopped. What nobody can tell to be gone is
    /// not. Where the forecast has entries for the trash the caller moves them, and this is not
    /// called.
    [[nodiscard]] virtual std::vector<ApplicationRemoval> remove(
        const std::vector<ApplicationRecord>& records, const RemovalForecast& /*forecast*/,
        const std::atomic<bool>& /*stop*/) const {
        return std::vector<ApplicationRemoval>(records.size());
    }

protected:
    ApplicationKind() = default;
    ApplicationKind(const ApplicationKind&) = default;
    ApplicationKind& operator=(const ApplicationKind&) = default;
};

/// The kinds of one machine, with what they share.
class Applications {
public:
    virtual ~Applications() = default;

    /// What one look has found up to the kind that answered last.
    using KindNews = std::function<void(const ApplicationInventory& soFar)>;

    /// All that is installed; each kind is read once. `news`, which may be empty, is called on this
    /// thread behind each of them.
    [[nodiscard]] virtual ApplicationInventory look(const KindNews& news) const = 0;
    [[nodiscard]] ApplicationInventory inventory() const { return look({}); }
    [[nodiscard]] std::vector<ApplicationRecord> list() const { return inventory().records; }
    /// Files and folders of which one at least gets another time or size when something was
    /// installed or removed.
    [[nodiscard]] virtual std::vector<std::string> watched() const { return {}; }
    /// nullptr for a type that this machine does not know, and for App.
    [[nodiscard]] virtual const ApplicationKind* kind(ApplicationType type) const = 0;
    /// One state for each record, all of one moment.
    [[nodiscard]] virtual std::vector<RunState> running(
        const std::vector<const ApplicationRecord*>& records) const = 0;

protected:
    Applications() = default;
    Applications(const Applications&) = default;
    Applications& operator=(const Applications&) = default;
};

}  // namespace orrinvale
