// The text of a plan, member by member: an unknown one is a fault, since it would have a meaning
// that is not obeyed.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "engine/duplicates/crc.h"
#include "engine/duplicates/plan/DuplicatePlan.h"
#include "engine/duplicates/plan/PlanFile.h"
#include "engine/text/JsonReader.h"
#include "engine/text/JsonText.h"
#include "engine/text/utf8.h"

namespace orrinvale {
namespace {

constexpr std::uint64_t knownPlanVersion = 1;
constexpr std::size_t mostListedPaths = 100'000;

/// Which members of an object were there: none stands twice, so that what a person reads is what
/// counts.
template <std::size_t count> class PlanNames final {
public:
    explicit constexpr PlanNames(const std::array<std::string_view, count>& known)
        : m_known(known) {}
    /// False for an unknown one, and for one that was there.
    [[nodiscard]] bool take(std::string_view name) {
        const auto at = static_cast<std::size_t>(std::find(m_known.begin(), m_known.end(), name) -
                                                 m_known.begin());
        return at < count && !std::exchange(m_isThere[at], true);
    }

private:
    const std::array<std::string_view, count>& m_known;
    std::array<bool, count> m_isThere{};
};

constexpr std::array<std::string_view, 2> pathNames{"path", "pathHex"};
constexpr std::array<std::string_view, 12> memberNames{
    "path",   "pathHex", "goes",     "protected", "type",     "size",
    "device", "inode",   "modified", "changed",   "contents", "listing"};
constexpr std::array<std::string_view, 7> planNames{"digest",    "owner", "made",  "roots",
                                                    "protected", "keep",  "groups"};

/// Reads a plan. What is wrong with it fails the reader, but for what has words of its own.
class PlanParser final {
public:
    PlanParser(std::string_view text, PlanUse use) : m_reader(text), m_use(use) {}

    [[nodiscard]] tl::expected<DuplicatePlan, std::string> parse();

private:
    [[nodiscard]] bool takeMember(std::string_view name);
    template <class T, class U> [[nodiscard]] bool take(std::optional<T> value, U& into);
    [[nodiscard]] bool takeHex(std::optional<std::uint64_t>& into);
    [[nodiscard]] bool takeType(FileType& into);
    [[nodiscard]] bool takePathList(std::vector<std::string>& into);
    [[nodiscard]] bool takeGroups();
    [[nodiscard]] bool takeCopy(PlanMember& copy);
    [[nodiscard]] bool takeCopyMember(std::string_view name, PlanMember& copy, std::string& hex);
    [[nodiscard]] static bool settlePath(std::string& path, const std::string& hex);

    JsonReader m_reader;
    DuplicatePlan m_plan;
    const PlanUse m_use;
    std::uint64_t m_version = 0;
    std::size_t m_members = 0;
    std::optional<std::uint64_t> m_digest;
};

template <class T, class U> bool PlanParser::take(std::optional<T> value, U& into) {
    if (!value || !std::in_range<U>(*value)) return false;
    into = static_cast<U>(*value);
    return true;
}
template <> bool PlanParser::take(std::optional<std::string> value, std::string& into) {
    if (value) into = std::move(*value);
    return value.has_value();
}
template <> bool PlanParser::take(std::optional<bool> value, bool& into) {
    into = value.value_or(false);
    return value.has_value();
}

bool PlanParser::takeHex(std::optional<std::uint64_t>& into) {
    const auto digits = m_reader.text();
    if (!digits || digits->size() != 16) return false;
    std::uint64_t value = 0;
    const char* const end = digits->data() + digits->size();
    if (std::from_chars(digits->data(), end, value, 16).ptr != end) return false;
    into = value;
    return true;
}

bool PlanParser::takeType(FileType& into) {
    const auto word = m_reader.text();
    if (word == "file") into = FileType::Regular;
    else if (word == "bundle") into = FileType::Folder;
    else if (word == "link") into = FileType::SymbolicLink;
    else return false;
    return true;
}

// A person reads the text, and the bytes are what goes: both have to be of one path.
bool PlanParser::settlePath(std::string& path, const std::string& hex) {
    if (hex.empty()) return !path.empty();
    std::string bytes;
    if (!appendFromHex(bytes, hex) || isValidUtf8(bytes)) return false;
    std::string shown;
    std::string meant;
    appendJsonText(shown, path);
    appendJsonText(meant, bytes);
    path = std::move(bytes);
    return shown == meant;
}

bool PlanParser::takePathList(std::vector<std::string>& into) {
    if (!m_reader.beginArray()) return false;
    while (m_reader.nextElement()) {
        std::string path;
        std::string hex;
        if (!m_reader.beginObject()) return false;
        PlanNames names(pathNames);
        while (const auto name = m_reader.nextMember())
            if (!names.take(*name) || !take(m_reader.text(), *name == "pathHex" ? hex : path))
                return false;
        if (m_reader.hasFailed() || !settlePath(path, hex) || into.size() == mostListedPaths)
            return false;
        into.push_back(std::move(path));
    }
    return !m_reader.hasFailed();
}

bool PlanParser::takeCopyMember(std::string_view name, PlanMember& copy, std::string& hex) {
    if (name == "path") return take(m_reader.text(), copy.path);
    if (name == "pathHex") return take(m_reader.text(), hex);
    if (name == "goes") return take(m_reader.flag(), copy.goes);
    if (name == "protected") return take(m_reader.flag(), copy.isProtected);
    if (name == "type") return takeType(copy.identity.type);
    if (name == "size") return take(m_reader.count(), copy.size);
    if (name == "device") return take(m_reader.count(), copy.identity.device);
    if (name == "inode") return take(m_reader.count(), copy.identity.inode);
    if (name == "modified") return take(m_reader.number(), copy.identity.modified);
    if (name == "changed") return take(m_reader.number(), copy.identity.changed);
    if (name == "contents") return takeHex(copy.contents);
    return name == "listing" && takeHex(copy.listing);
}

bool PlanParser::takeCopy(PlanMember& copy) {
    if (!m_reader.beginObject()) return false;
    std::string hex;
    PlanNames names(memberNames);
    while (const auto name = m_reader.nextMember())
        if (!names.take(*name) || !takeCopyMember(*name, copy, hex)) return false;
    copy.identity.size = copy.size;
    return !m_reader.hasFailed() && copy.identity.type != FileType::Unknown &&
           settlePath(copy.path, hex);
}

bool PlanParser::takeGroups() {
    if (!m_reader.beginArray()) return false;
    while (m_reader.nextElement()) {
        PlanGroup& group = m_plan.groups.emplace_back();
        if (!m_reader.beginArray()) return false;
        while (m_reader.nextElement())
            if (++m_members > mostPlanMembers || !takeCopy(group.members.emplace_back()))
                return false;
        if (m_reader.hasFailed() || group.members.empty()) return false;
    }
    return !m_reader.hasFailed();
}

bool PlanParser::takeMember(std::string_view name) {
    if (name == "digest") return takeHex(m_digest);
    if (name == "owner") return take(m_reader.count(), m_plan.owner);
    if (name == "made") return take(m_reader.text(), m_plan.made);
    if (name == "roots") return takePathList(m_plan.roots);
    if (name == "protected") return takePathList(m_plan.protectedFolders);
    if (name == "keep") return takePathList(m_plan.rules);
    return name == "groups" && takeGroups();
}

// The version comes first: of another one nothing else is known.
tl::expected<DuplicatePlan, std::string> PlanParser::parse() {
    if (!m_reader.beginObject() || m_reader.nextMember() != "orrinvalePlan" ||
        !take(m_reader.count(), m_version))
        return tl::unexpected(std::string("it is no plan"));
    if (m_version != knownPlanVersion)
        return tl::unexpected(
            fmt::format("it is a plan of version {}, which this program does not "
                        "know",
                        m_version));
    bool isWell = true;
    PlanNames names(planNames);
    while (const auto name = m_reader.nextMember())
        if (!names.take(*name) || !takeMember(*name)) {
            isWell = false;
            break;
        }
    if (!isWell || !m_reader.isAtEnd())
        return tl::unexpected(
            fmt::format("it is damaged or cut short, at byte {}", m_reader.place()));
    const std::string text = writePlan(m_plan);
    std::string wanted;
    fmt::format_to(std::back_inserter(wanted), "\"{:016x}\"", m_digest.value_or(0));
    if (!m_digest || std::string_view(text).substr(0, 128).find(wanted) == std::string_view::npos)
        return tl::unexpected(std::string("it was changed since it was written"));
    if (auto fault = faultOf(m_plan, m_use)) return tl::unexpected(std::move(*fault));
    return std::move(m_plan);
}

}  // namespace

tl::expected<DuplicatePlan, std::string> parsePlan(std::string_view text, PlanUse use) {
    return PlanParser(text, use).parse();
}

}  // namespace orrinvale
