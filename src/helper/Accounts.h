// Accounts: what the helper asks the system about users and groups. Their services may be another
// machine's: the helper allows them ten seconds in all for each question, after which SIGALRM ends
// the process, so that only a worker may ask.
#pragma once

#include <sys/types.h>

#include <map>
#include <optional>
#include <string>

namespace orrinvale::helper {

/// The home of a user. The services are asked too, as the table of users does not name everybody.
/// Nothing when there is none.
[[nodiscard]] std::optional<std::string> homeOf(uid_t user);

/// Groups whose right to write is nobody else's: root, the caller and the system's services are all
/// who are in them. A caller's own group is one where the umask leaves his folders to his group,
/// adm is one where nobody was put into it.
class TrustedGroups final {
public:
    explicit TrustedGroups(uid_t caller) : m_caller(caller) {}

    /// False also where it can not be told who is in it: users or groups that come from a
    /// directory, which need not list them; a group without a name; a member without a number; a
    /// group that is joined by a password.
    [[nodiscard]] bool contains(gid_t group);

private:
    [[nodiscard]] bool isTrusted(gid_t group) const;

    const uid_t m_caller;
    std::map<gid_t, bool> m_known;
};

/// Whether an access list stands on a held folder, or may stand there as nobody can tell. Its
/// owner's and group's bits then do not say who may write.
[[nodiscard]] bool mayHaveAccessList(int folder);

}  // namespace orrinvale::helper
