// The questions to the C library, each with room that grows, under one alarm.
#include "helper/Accounts.h"

#include <grp.h>
#include <gshadow.h>
#include <pwd.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <sstream>
#include <string_view>
#include <vector>

#include "engine/files/accounts.h"

namespace orrinvale::helper {
namespace {

constexpr std::size_t kMostText = std::size_t{1} << 20U;

class TimeLimit final {
public:
    TimeLimit() { ::alarm(10); }
    ~TimeLimit() { ::alarm(0); }
    TimeLimit(const TimeLimit&) = delete;
    TimeLimit& operator=(const TimeLimit&) = delete;
};

/// Calls look(buffer, size), which answers an errno, with a buffer that is large enough; what it
/// answered then.
template <class Look> int withRoom(std::string& text, Look look) {
    text.resize(1024);
    int error = look(text.data(), text.size());
    while (error == ERANGE && text.size() < kMostText) {
        text.resize(text.size() * 2);
        error = look(text.data(), text.size());
    }
    return error;
}

/// Whether the users and groups that the system knows are those that it lists. Services of
/// directories, sss(8) for one, answer questions about their users and list none of them.
bool listsEverybody() {
    constexpr std::array<std::string_view, 4> complete{"files", "systemd", "altfiles",
                                                       "extrausers"};
    std::ifstream file(
        "/etc/nsswitch.conf");  // nsswitch.conf(5); without it only the files are asked
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line.substr(0, line.find('#')));
        std::string word;
        if (!(words >> word) || (word != "passwd:" && word != "group:" && word != "initgroups:"))
            continue;
        while (words >> word)
            if (word.front() != '[' &&
                std::find(complete.begin(), complete.end(), word) == complete.end())
                return false;
    }
    return true;
}

std::optional<uid_t> numberOf(const char* name) {
    std::string text;
    passwd entry{};
    passwd* found = nullptr;
    (void)withRoom(text, [&](char* buffer, std::size_t size) {
        return ::getpwnam_r(name, &entry, buffer, size, &found);
    });
    return found != nullptr ? std::optional(found->pw_uid) : std::nullopt;
}

/// Users whose first group it is. Nothing when they could not all be read.
std::optional<std::vector<uid_t>> firstMembersOf(gid_t group) {
    std::vector<uid_t> members;
    ::setpwent();
    for (;;) {
        errno = 0;
        const passwd* const entry = ::getpwent();
        if (entry == nullptr) break;
        if (entry->pw_gid == group) members.push_back(entry->pw_uid);
    }
    const bool isComplete = errno == 0 || errno == ENOENT;  // the end of the last service's list
    ::endpwent();
    return isComplete ? std::optional(std::move(members)) : std::nullopt;
}

/// newgrp(1) lets anybody into a group who knows its password.
bool hasPassword(const group& entry) {
    const auto isPassword = [](std::string_view text) {
        return !text.empty() && text.front() != '!' && text.front() != '*';
    };
    if (std::string_view(entry.gr_passwd) != "x") return isPassword(entry.gr_passwd);
    std::string text;
    sgrp shadow{};
    sgrp* found = nullptr;
    (void)withRoom(text, [&](char* buffer, std::size_t size) {
        return ::getsgnam_r(entry.gr_name, &shadow, buffer, size, &found);
    });
    return found != nullptr && isPassword(found->sg_passwd);
}

/// All of a group. Nothing when they can not be told.
std::optional<std::vector<uid_t>> membersOf(gid_t number) {
    std::string text;
    group entry{};
    group* found = nullptr;
    (void)withRoom(text, [&](char* buffer, std::size_t size) {
        return ::getgrgid_r(number, &entry, buffer, size, &found);
    });
    if (found == nullptr || hasPassword(entry)) return std::nullopt;
    auto members = firstMembersOf(number);
    for (char** name = entry.gr_mem; members && *name != nullptr; ++name) {
        const auto member = numberOf(*name);
        if (!member) return std::nullopt;
        members->push_back(*member);
    }
    return members;
}

}  // namespace

std::optional<std::string> homeOf(uid_t user) {
    const TimeLimit patience;
    std::string text;
    passwd entry{};
    passwd* found = nullptr;
    (void)withRoom(text, [&](char* buffer, std::size_t size) {
        return ::getpwuid_r(user, &entry, buffer, size, &found);
    });
    return found != nullptr ? std::optional<std::string>(found->pw_dir) : std::nullopt;
}

bool TrustedGroups::contains(gid_t group) {
    const auto known = m_known.find(group);
    if (known != m_known.end()) return known->second;
    return m_known.emplace(group, isTrusted(group)).first->second;
}

bool TrustedGroups::isTrusted(gid_t group) const {
    const TimeLimit patience;
    if (!listsEverybody()) return false;
    const auto members = membersOf(group);
    return members && std::all_of(members->begin(), members->end(), [this](uid_t user) {
               return user == m_caller || !isPerson(user);
           });
}

bool mayHaveAccessList(int folder) {
    // A held folder can not be asked itself.
    const std::string path = "/proc/self/fd/" + std::to_string(folder);
    constexpr std::array<const char*, 5> lists{"system.posix_acl_access", "system.nfs4_acl",
                                               "system.richacl", "system.cifs_acl",
                                               "system.ntfs_acl"};
    return std::any_of(lists.begin(), lists.end(), [&](const char* list) {
        return ::getxattr(path.c_str(), list, nullptr, 0) >= 0 ||
               (errno != ENODATA && errno != EOPNOTSUPP);
    });
}

}  // namespace orrinvale::helper
