// DpkgDatabase: what dpkg knows of the packages of a machine, read from its own files. Nothing is
// started and nothing is changed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace orrinvale {

/// Texts lie in the database that it came from.
struct DpkgPackage {
    enum class State : std::uint8_t {
        Other,  ///< there in part, or waiting for something
        Installed,
        Removed,  ///< only its configuration is left
        Absent    ///< named, and nothing of it is left
    };
    /// Whether anything but configuration is there.
    [[nodiscard]] bool isThere() const {
        return state == State::Other || state == State::Installed;
    }

    std::string_view name;
    std::string_view architecture;
    std::string_view version;
    std::string_view depends;  ///< the fields Depends and Pre-Depends, as they are written
    std::string_view preDepends;
    std::string_view provides;
    std::string_view conffiles;
    std::uint64_t installedSize = 0;  ///< bytes, as the package says
    State state = State::Other;
    bool isNeeded = false;  ///< essential, protected, or of priority required or important
};

/// As it was when it was read; any thread may ask. Where dpkg's folder is not there, no package is.
class DpkgDatabase final {
public:
    /// `folder` is /var/lib/dpkg.
    explicit DpkgDatabase(std::string folder);
    DpkgDatabase(const DpkgDatabase&) = delete;
    DpkgDatabase& operator=(const DpkgDatabase&) = delete;

    [[nodiscard]] const std::vector<DpkgPackage>& packages() const { return m_packages; }
    /// Why nobody can tell which packages are there, for people: what dpkg wrote could not be read,
    /// has no package in it, or dpkg has more to write, since it runs or was cut off. Empty where
    /// it was read whole, and where this machine has no dpkg.
    [[nodiscard]] const std::string& obstacle() const { return m_obstacle; }

    enum class Presence : std::uint8_t { Unknown, Gone, There };
    /// Of "NAME", which is of the machine's own architecture, or "NAME:ARCHITECTURE". Gone is only
    /// what a database that was read whole, and has packages, does not have.
    [[nodiscard]] Presence presenceOf(std::string_view name) const;

    /// The installed one of that name, the machine's own architecture before others.
    [[nodiscard]] const DpkgPackage* installed(std::string_view name) const;

    /// The installed packages that brought these files, by the order of the paths; nullptr for a
    /// file that none brought. A path counts with and without "/usr" before it, since packages
    /// write either.
    [[nodiscard]] std::vector<const DpkgPackage*> ownersOf(
        const std::vector<std::string>& paths) const;

    /// For each path a package that is there, in part or whole, and has brought it or something
    /// within it; nullptr where none has.
    [[nodiscard]] std::vector<const DpkgPackage*> ownersWithin(
        const std::vector<std::string>& paths) const;

    /// The architecture of dpkg itself, which is the machine's; empty where it has none.
    [[nodiscard]] std::string_view ownArchitecture() const;

    /// The files of a package, with its folders.
    [[nodiscard]] std::vector<std::string> filesOf(const DpkgPackage& package) const;
    [[nodiscard]] std::vector<std::string> conffilesOf(const DpkgPackage& package) const;
    /// Nanoseconds since 1970; nothing where dpkg has no list of its files.
    [[nodiscard]] std::optional<std::int64_t> installedAt(const DpkgPackage& package) const;

    /// What could not stay without this package: all that depends on it, and on what goes with it,
    /// where no alternative is installed. Itself not among them. Versions are not compared.
    [[nodiscard]] std::vector<const DpkgPackage*> takenAlongBy(const DpkgPackage& package) const;

private:
    struct Clause {
        std::size_t package;                  // that has it
        std::vector<std::size_t> satisfiers;  // installed packages, each of which is enough
    };

    [[nodiscard]] const DpkgPackage* there(std::string_view key) const;
    void parse();
    void indexClauses();
    [[nodiscard]] std::string findObstacle(bool isStatusRead) const;
    /// Each line of each package's list, with the package's key, until `visit` has enough of that
    /// list.
    template <typename Visit> void eachFile(const Visit& visit) const;
    [[nodiscard]] std::string infoPath(const DpkgPackage& package, std::string_view what) const;

    std::string m_folder;
    std::string m_text;  // of the file "status"; never changed
    std::string m_obstacle;
    std::vector<DpkgPackage> m_packages;
    std::unordered_map<std::string_view, std::vector<std::size_t>> m_byName;  // installed ones
    std::vector<Clause> m_clauses;
    std::vector<std::vector<std::size_t>> m_clausesOf;  // that a package satisfies
};

/// Names that a field of relations speaks of, a list for each clause: "a (>= 1) | b:any, c" is
/// {{a, b}, {c}}.
[[nodiscard]] std::vector<std::vector<std::string_view>> relationsIn(std::string_view field);

}  // namespace orrinvale
