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
    std::vector<std::string> packages;     ///< names of all that is installed, applications or not
    std::vector<std::string> formerNames;  ///< of packages that are not installed any more

    /// `apps` is an inventory of all kinds.
    [[nodiscard]] static LeftoverClaims of(const AppItemsArray& apps,
                                           const Applications& applications);
};

struct LeftoverVerdict {
    std::string of;  ///< package or id of the one claimant
    LeftoverGrade grade = LeftoverGrade::Likely;
    bool isInstalled = false;
    std::string reason;  ///< for people
};

/// Made of one moment's claims; any thread may ask. A name of which two programs may say that it is
/// theirs is neither's, and so is one that programs share.
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
        ApplicationType type = ApplicationType::App;
        std::string path;
    };
    [[nodiscard]] std::optional<LeftoverVerdict> ofId(LeftoverHome home,
                                                      const std::string& name) const;
    [[nodiscard]] std::optional<LeftoverVerdict> ofName(const std::string& name) const;

    std::vector<Claimant> m_claimants;
    std::multimap<std::string, std::size_t> m_ids;            // exact
    std::map<std::string, std::set<std::size_t>> m_names;     // in small letters
    std::map<std::string, std::set<std::string>> m_packages;  // in small letters, to names
    std::set<std::string, std::less<>> m_former;
};

}  // namespace orrinvale
