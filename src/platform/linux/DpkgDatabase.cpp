// Reads /var/lib/dpkg/status and the lists beside it. The formats are those of deb822(5) and
// dpkg(1).
#include "platform/linux/DpkgDatabase.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <unordered_set>
#include <utility>

#include "platform/linux/ApplicationPlaces.h"
#include "platform/linux/SystemText.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::size_t statusLimit = std::size_t{256} * 1024 * 1024;
constexpr std::size_t listLimit = std::size_t{64} * 1024 * 1024;

std::string_view trimmedField(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(" \t\n");
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(" \t\n") - begin + 1);
}

std::string_view takeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

// A field with the lines that go on with it.
struct Field {
    std::string_view name;
    std::string_view value;
};

std::optional<Field> takeStatusField(std::string_view& text) {
    const std::string_view line = takeLine(text);
    if (line.empty()) return std::nullopt;
    const char* end = line.data() + line.size();
    while (text.starts_with(' ') || text.starts_with('\t')) {
        const std::string_view more = takeLine(text);
        end = more.data() + more.size();
    }
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) return Field{};
    const char* const value = line.data() + colon + 1;
    return Field{line.substr(0, colon),
                 trimmedField({value, static_cast<std::size_t>(end - value)})};
}

DpkgPackage::State stateOf(std::string_view status) {
    if (status.ends_with(" installed")) return DpkgPackage::State::Installed;
    if (status.ends_with(" config-files")) return DpkgPackage::State::Removed;
    if (status.ends_with(" not-installed")) return DpkgPackage::State::Absent;
    return DpkgPackage::State::Other;
}

void take(DpkgPackage& package, const Field& field) {
    using Member = std::string_view DpkgPackage::*;
    static constexpr std::array<std::pair<std::string_view, Member>, 7> texts{{
        {"Package", &DpkgPackage::name},
        {"Architecture", &DpkgPackage::architecture},
        {"Version", &DpkgPackage::version},
        {"Depends", &DpkgPackage::depends},
        {"Pre-Depends", &DpkgPackage::preDepends},
        {"Provides", &DpkgPackage::provides},
        {"Conffiles", &DpkgPackage::conffiles},
    }};
    for (const auto& [name, member] : texts)
        if (field.name == name) {
            package.*member = field.value;
            return;
        }
    if (field.name == "Status") {
        package.state = stateOf(field.value);
    } else if (field.name == "Essential" || field.name == "Protected" ||
               field.name == "Important") {
        package.isNeeded |= field.value == "yes";
    } else if (field.name == "Priority") {
        package.isNeeded |= field.value == "required" || field.value == "important";
    } else if (field.name == "Installed-Size") {
        std::uint64_t blocks = 0;
        std::from_chars(field.value.data(), field.value.data() + field.value.size(), blocks);
        package.installedSize = std::min(blocks, ~std::uint64_t{0} / 1024) * 1024;
    }
}

// deb-control(5) allows no others, and these names stand in paths and in lists with marks between.
bool isPlain(std::string_view name) {
    return name.find_first_not_of(
               "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"
               "+-.") == std::string_view::npos;
}

std::string_view nameIn(std::string_view relation) {
    relation = trimmedField(relation);
    return relation.substr(0, relation.find_first_of(" (:[<\t"));
}

// The other spelling of a path where /usr may or may not stand before it.
std::string otherSpelling(const std::string& path) {
    constexpr std::string_view usr = "/usr";
    if (path.starts_with("/usr/")) return path.substr(usr.size());
    for (const char* const top : {"/bin/", "/sbin/", "/lib"})
        if (path.starts_with(top)) return std::string(usr) + path;
    return {};
}

}  // namespace

std::vector<std::vector<std::string_view>> relationsIn(std::string_view field) {
    std::vector<std::vector<std::string_view>> out;
    while (!field.empty()) {
        const std::size_t end = std::min(field.find(','), field.size());
        std::string_view clause = field.substr(0, end);
        field.remove_prefix(std::min(end + 1, field.size()));
        std::vector<std::string_view> alternatives;
        while (!clause.empty()) {
            const std::size_t bar = std::min(clause.find('|'), clause.size());
            if (const auto name = nameIn(clause.substr(0, bar)); !name.empty())
                alternatives.push_back(name);
            clause.remove_prefix(std::min(bar + 1, clause.size()));
        }
        if (!alternatives.empty()) out.push_back(std::move(alternatives));
    }
    return out;
}

DpkgDatabase::DpkgDatabase(std::string folder) : m_folder(std::move(folder)) {
    auto text = readRegularFile(joinPath(m_folder, "status"), statusLimit);
    const bool isRead = text.has_value();
    m_text = std::move(text).value_or(std::string());
    parse();
    m_obstacle = findObstacle(isRead);
    indexClauses();
}

// An empty file is no trouble where dpkg is a guest that has never installed anything. What dpkg
// has not put together yet lies in files that are named by numbers, as dpkg(1) writes them.
std::string DpkgDatabase::findObstacle(bool isStatusRead) const {
    struct stat seen {};
    if (::stat(m_folder.c_str(), &seen) != 0 && (errno == ENOENT || errno == ENOTDIR)) return {};
    const auto isNumber = [](const std::string& name) {
        return name.find_first_not_of("0123456789") == std::string::npos;
    };
    const auto updates = systemNamesIn(joinPath(m_folder, "updates"));
    if (std::any_of(updates.begin(), updates.end(), isNumber))
        return "Packages are being installed or removed, or that was cut off";
    const bool isUsed = m_packages.empty() && !systemNamesIn(joinPath(m_folder, "info")).empty();
    return isStatusRead && !isUsed ? std::string() : "The list of packages can not be read";
}

std::string_view DpkgDatabase::ownArchitecture() const {
    const auto own = m_byName.find("dpkg");
    return own == m_byName.end() ? std::string_view()
                                 : m_packages[own->second.front()].architecture;
}

DpkgDatabase::Presence DpkgDatabase::presenceOf(std::string_view name) const {
    const std::size_t colon = name.find(':');
    const std::string_view wanted =
        colon == std::string_view::npos ? ownArchitecture() : name.substr(colon + 1);
    const bool isThere =
        std::any_of(m_packages.begin(), m_packages.end(), [&](const DpkgPackage& each) {
            return each.isThere() && each.name == name.substr(0, colon) &&
                   (wanted.empty() || each.architecture == wanted || each.architecture == "all");
        });
    if (isThere) return Presence::There;
    return m_obstacle.empty() && !m_packages.empty() ? Presence::Gone : Presence::Unknown;
}

void DpkgDatabase::parse() {
    std::string_view text = m_text;
    DpkgPackage package;
    while (!text.empty()) {
        const auto field = takeStatusField(text);
        if (field) take(package, *field);
        if (field && !text.empty()) continue;
        if (!package.name.empty() && isPlain(package.name) && isPlain(package.architecture))
            m_packages.push_back(package);
        package = {};
    }
    for (std::size_t i = 0; i < m_packages.size(); ++i) {
        if (m_packages[i].state != DpkgPackage::State::Installed) continue;
        m_byName[m_packages[i].name].push_back(i);
    }
}

void DpkgDatabase::indexClauses() {
    std::unordered_map<std::string_view, std::vector<std::size_t>> providers = m_byName;
    for (std::size_t i = 0; i < m_packages.size(); ++i)
        if (m_packages[i].state == DpkgPackage::State::Installed)
            for (const auto& names : relationsIn(m_packages[i].provides))
                providers[names.front()].push_back(i);
    m_clausesOf.resize(m_packages.size());
    for (std::size_t i = 0; i < m_packages.size(); ++i) {
        if (m_packages[i].state != DpkgPackage::State::Installed) continue;
        for (const std::string_view field : {m_packages[i].depends, m_packages[i].preDepends})
            for (const auto& alternatives : relationsIn(field)) {
                Clause clause{i, {}};
                for (const std::string_view name : alternatives)
                    if (const auto found = providers.find(name); found != providers.end())
                        clause.satisfiers.insert(clause.satisfiers.end(), found->second.begin(),
                                                 found->second.end());
                for (const std::size_t each : clause.satisfiers)
                    m_clausesOf[each].push_back(m_clauses.size());
                m_clauses.push_back(std::move(clause));
            }
    }
}

const DpkgPackage* DpkgDatabase::installed(std::string_view name) const {
    const auto found = m_byName.find(name.substr(0, name.find(':')));
    if (found == m_byName.end()) return nullptr;
    const std::string_view architecture =
        name.find(':') == std::string_view::npos ? "" : name.substr(name.find(':') + 1);
    const std::string_view wanted = architecture.empty() ? ownArchitecture() : architecture;
    for (const std::size_t index : found->second)
        if (m_packages[index].architecture == wanted) return &m_packages[index];
    return architecture.empty() ? &m_packages[found->second.front()] : nullptr;
}

template <typename Visit> void DpkgDatabase::eachFile(const Visit& visit) const {
    constexpr std::string_view ending = ".list";
    for (const std::string& name : systemNamesIn(joinPath(m_folder, "info"))) {
        if (!name.ends_with(ending)) continue;
        const std::string key = name.substr(0, name.size() - ending.size());
        const auto list = readRegularFile(m_folder + "/info/" + name, listLimit);
        for (std::string_view rest = list ? *list : std::string_view(); !rest.empty();)
            if (!visit(key, takeLine(rest))) break;
    }
}

std::string DpkgDatabase::infoPath(const DpkgPackage& package, std::string_view what) const {
    std::string path = m_folder + "/info/" + std::string(package.name);
    struct stat seen {};
    if (::stat((path + std::string(what)).c_str(), &seen) == 0) return path + std::string(what);
    return path + ':' + std::string(package.architecture) + std::string(what);
}

std::vector<const DpkgPackage*> DpkgDatabase::ownersOf(
    const std::vector<std::string>& paths) const {
    std::vector<const DpkgPackage*> owners(paths.size(), nullptr);
    std::vector<std::string> others;
    std::unordered_multimap<std::string_view, std::size_t> wanted;
    others.reserve(paths.size());
    for (std::size_t i = 0; i < paths.size(); ++i) {
        others.push_back(otherSpelling(paths[i]));
        wanted.emplace(paths[i], i);
        if (!others[i].empty()) wanted.emplace(others[i], i);
    }
    std::array<bool, 256> lengths{};  // most lines of a list are told apart by their length
    for (const auto& each : wanted) lengths[each.first.size() % lengths.size()] = true;

    eachFile([&](const std::string& key, std::string_view line) {
        if (!lengths[line.size() % lengths.size()]) return true;
        const auto [from, to] = wanted.equal_range(line);
        for (auto each = from; each != to; ++each)
            if (const DpkgPackage* const owner = installed(key); owner != nullptr)
                owners[each->second] = owner;
        return true;
    });
    return owners;
}

const DpkgPackage* DpkgDatabase::there(std::string_view key) const {
    if (const DpkgPackage* const whole = installed(key)) return whole;
    const std::size_t colon = key.find(':');
    for (const DpkgPackage& each : m_packages)
        if (each.isThere() && each.name == key.substr(0, colon) &&
            (colon == std::string_view::npos || each.architecture == key.substr(colon + 1)))
            return &each;
    return nullptr;
}

std::vector<const DpkgPackage*> DpkgDatabase::ownersWithin(
    const std::vector<std::string>& paths) const {
    std::vector<const DpkgPackage*> owners(paths.size(), nullptr);
    std::vector<std::string> others;
    others.reserve(paths.size());
    for (const std::string& each : paths) others.push_back(otherSpelling(each));
    eachFile([&](const std::string& key, std::string_view line) {
        for (std::size_t i = 0; i < paths.size(); ++i)
            if (owners[i] == nullptr &&
                (isWithin(line, paths[i]) || (!others[i].empty() && isWithin(line, others[i]))))
                owners[i] = there(key);
        return true;
    });
    return owners;
}

std::vector<std::string> DpkgDatabase::filesOf(const DpkgPackage& package) const {
    std::vector<std::string> out;
    const auto list = readRegularFile(infoPath(package, ".list"), listLimit);
    if (!list) return out;
    for (std::string_view rest = *list; !rest.empty();)
        if (const std::string_view line = takeLine(rest); line.size() > 1) out.emplace_back(line);
    return out;
}

std::vector<std::string> DpkgDatabase::conffilesOf(const DpkgPackage& package) const {
    std::vector<std::string> out;
    for (std::string_view rest = package.conffiles; !rest.empty();) {
        const std::string_view line = trimmedField(takeLine(rest));
        const std::string_view path = line.substr(0, line.find(' '));
        if (path.starts_with('/') && !line.ends_with(" obsolete")) out.emplace_back(path);
    }
    return out;
}

// Written anew with each installation.
std::optional<std::int64_t> DpkgDatabase::installedAt(const DpkgPackage& package) const {
    struct stat seen {};
    if (::stat(infoPath(package, ".list").c_str(), &seen) != 0) return std::nullopt;
    return seen.st_mtim.tv_sec * 1'000'000'000 + seen.st_mtim.tv_nsec;
}

std::vector<const DpkgPackage*> DpkgDatabase::takenAlongBy(const DpkgPackage& package) const {
    std::vector<bool> gone(m_packages.size(), false);
    std::vector<std::size_t> left{static_cast<std::size_t>(&package - m_packages.data())};
    std::vector<const DpkgPackage*> out;
    gone[left.front()] = true;
    while (!left.empty()) {
        const std::size_t next = left.back();
        left.pop_back();
        for (const std::size_t index : m_clausesOf[next]) {
            const Clause& clause = m_clauses[index];
            if (gone[clause.package] ||
                !std::all_of(clause.satisfiers.begin(), clause.satisfiers.end(),
                             [&](std::size_t each) { return gone[each]; }))
                continue;
            gone[clause.package] = true;
            left.push_back(clause.package);
            out.push_back(&m_packages[clause.package]);
        }
    }
    return out;
}

}  // namespace orrinvale
