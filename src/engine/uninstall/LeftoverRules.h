// LeftoverRules: whether a folder of a person's is what one program left, by its name alone.
// Leftovers.h finds the folders.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "engine/uninstall/AppItems.h"
#include "platform/applications.h"

namespace orrinvale {

enum class LeftoverGrade : std::uint8_t {
    Certain,  ///< nothing but this program's, and made anew where it is missed
    Likely    ///< the program's by its name; settings, mail and documents may be in it
};
[[nodiscard]] std::string_view wordOf(LeftoverGrade grade);

/// Where a folder lies.
enum class LeftoverHome : std::uint8_t {
    Xdg,      ///< directly in the home of settings, data, caches or states
    Flatpak,  ///< directly in ~/.var/app, one folder a program
    Snap      ///< directly in ~/snap, likewise
};

/// What a machine has that may claim a folder.
struct LeftoverClaims {
    std::vector<ApplicationRecord> installed;
    ApplicationInventory rest;  ///< names of packages, and what could not be read

    /// Both of one inventory.
    [[nodiscard]] static LeftoverClaims of(const AppItemsArray& apps,
                                           const ApplicationInventory& rest);
};

/// What stands for an application in the names of what it leaves: its package, else its id.
[[nodiscard]] const std::string& nameLeftBy(const ApplicationRecord& record);

struct LeftoverVerdict {
    std::string of;  ///< package or id of the one claimant
    LeftoverGrade grade = LeftoverGrade::Likely;
    bool isInstalled = false;
    std::string reason;                                ///< for people
    ApplicationType ownerType = ApplicationType::App;  ///< where the claimant is installed
    std::string ownerPath;                             ///< likewise, the path of its record

    /// Whether this very application is the claimant; another of the same name is not.
    [[nodiscard]] bool isOf(const ApplicationRecord& record) const {
        return isInstalled && ownerType == record.type && ownerPath == record.path &&
               of == nameLeftBy(record);
    }
};

/// Made of one moment's claims; any thread may ask. A name of which two programs may say that it is
/// theirs is neither's, and so is one that programs share. Where not all that is installed could be
/// read nobody knows how many claim a name, so that none is offered.
class LeftoverRules final {
public:
    explicit LeftoverRules(const LeftoverClaims& claims);

    /// Nothing for a folder that is not offered. Of a program's folder in ~/.var/app or ~/snap the
    /// caller judges what is in it.
    [[nodiscard]] std::optional<LeftoverVerdict> verdict(LeftoverHome home,
                                                         std::string_view name) const;

private:
    struct Claimant {
        std::string of;
        std::string package;  // without its architecture; empty of other kinds
        ApplicationType type = ApplicationType::App;
        std::string path;
    };
    using Indexes = std::map<std::string, std::set<std::size_t>>;  // by names in small letters

    void add(const ApplicationRecord& record);
    [[nodiscard]] bool isUnread(LeftoverHome home) const;
    [[nodiscard]] bool isClaimedBesides(const std::string& small, std::size_t owner) const;
    [[nodiscard]] LeftoverVerdict verdictFor(const Claimant& claimant, LeftoverGrade grade,
                                             std::string reason) const;
    [[nodiscard]] std::optional<LeftoverVerdict> ofId(LeftoverHome home,
                                                      const std::string& name) const;
    [[nodiscard]] std::optional<LeftoverVerdict> ofName(const std::string& name) const;

    std::vector<Claimant> m_claimants;
    std::multimap<std::string, std::size_t> m_ids;  // exact
    Indexes m_names;                                // that a folder in the homes may have
    Indexes m_rivals;  // names that speak for another application as well, and for none alone
    std::map<std::string, std::vector<std::string>> m_packages;  // in small letters, to names
    std::set<std::string, std::less<>> m_former;
    std::map<ApplicationType, std::string> m_unread;
};

}  // namespace orrinvale
