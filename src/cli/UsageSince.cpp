// A list of levels stands in for the call stack, as in UsageReport.cpp.
#include "cli/UsageSince.h"

#include <fmt/format.h>

#include <charconv>
#include <ctime>
#include <span>
#include <string>

#include "engine/base/Date.h"
#include "engine/diskusage/history/ScanHistory.h"
#include "engine/diskusage/history/changeWords.h"
#include "engine/text/UtilityFunction.h"

namespace orrinvale::cli {
namespace {

std::uint64_t withoutSign(std::int64_t change) {
    return change < 0 ? 0 - static_cast<std::uint64_t>(change) : static_cast<std::uint64_t>(change);
}

/// Goes through what is to be printed, a folder before its contents and its end behind them.
class Changes {
public:
    Changes(const ScanDifference& difference, const UsageExtent& extent)
        : m_difference(difference), m_extent(extent) {
        open(0);
    }

    /// The number of the next entry; nothing when in the folder that was open last nothing is left
    /// that is, or holds, a change of at least the limit: below() then.
    std::optional<std::uint32_t> next() {
        Level& level = m_levels.back();
        if (level.left.empty() || weightAt(level.left.front()) < m_extent.limit) {
            m_below = {level.left.size(), level.unexplained, level.hasHidden};
            m_levels.pop_back();
            return std::nullopt;
        }
        const std::uint32_t number = level.left.front();
        level.left = level.left.subspan(1);
        const ScanChange& change = m_difference.all()[number];
        level.unexplained = restOfChange(level.unexplained, change.change());
        level.hasHidden = level.hasHidden || m_difference.hiddenUnder(change) != 0;
        return number;
    }

    /// Whether what is in the entry in hand is printed. If so, next() goes on with it.
    bool enter(std::uint32_t number) {
        const ScanChange& change = m_difference.all()[number];
        if (!change.isFolder || change.isUnseen || change.kind != ScanChange::Kind::Changed ||
            m_levels.size() >= m_extent.depth)
            return false;
        open(number);
        return true;
    }

    struct Below {
        std::size_t entries = 0;
        std::int64_t change = 0;
        bool hasHidden = false;  // what came or went may be among the small ones of the other scan
    };
    [[nodiscard]] const Below& below() const { return m_below; }
    [[nodiscard]] bool atEnd() const { return m_levels.empty(); }
    [[nodiscard]] std::size_t depth() const { return m_levels.size(); }

private:
    struct Level {
        std::span<const std::uint32_t> left;
        std::int64_t unexplained;
        bool hasHidden = false;
    };
    void open(std::uint32_t number) {
        const ScanChange& folder = m_difference.all()[number];
        const auto within =
            m_extent.depth == 0 ? std::span<const std::uint32_t>() : m_difference.children(folder);
        m_levels.push_back({within, folder.change()});
    }
    [[nodiscard]] std::uint64_t weightAt(std::uint32_t number) const {
        return m_difference.all()[number].weight;
    }

    const ScanDifference& m_difference;
    const UsageExtent m_extent;
    std::vector<Level> m_levels;
    Below m_below;
};

const char* stateOf(const ScanChange& change) {
    if (change.kind == ScanChange::Kind::Came) return "new";
    if (change.kind == ScanChange::Kind::Went) return "gone";
    if (change.change() == 0) return "changed";
    return change.change() > 0 ? "grew" : "shrank";
}

std::string timeOf(const ScanFacts& facts) { return iso8601(Date::fromSeconds(facts.time)); }

void appendSizes(std::string& text, const ScanChange& change) {
    fmt::format_to(std::back_inserter(text),
                   "\"sizeBefore\": {}, \"size\": {}, \"change\": {}, \"onDiskBefore\": {}, "
                   "\"onDisk\": {}, \"onDiskChange\": {}",
                   change.sizeBefore, change.sizeAfter, change.change(), change.onDiskBefore,
                   change.onDiskAfter, change.onDiskChange());
    if (change.weight != withoutSign(change.change()))
        fmt::format_to(std::back_inserter(text), ", \"largestWithin\": {}", change.weight);
    if (change.isReplaced) text += ", \"replaced\": true";
    if (change.isCovered) text += ", \"otherFileSystem\": true";
    if (change.isPartial || change.isCovered) text += ", \"partial\": true";
}

void appendBelow(std::string& text, const Changes::Below& below) {
    fmt::format_to(std::back_inserter(text), "\"below\": {{\"entries\": {}, \"change\": {}}}",
                   below.entries, below.change);
}

void appendChange(std::string& text, const ScanDifference& difference, std::uint32_t number) {
    const ScanChange& change = difference.all()[number];
    text += "\n    {\"name\": ";
    appendJsonText(text, difference.name(change));
    text += ", ";
    appendJsonPath(text, difference.path(number));
    fmt::format_to(std::back_inserter(text), ", \"directory\": {}, \"state\": \"{}\", ",
                   change.isFolder, stateOf(change));
    appendSizes(text, change);
    if (const std::uint64_t under = difference.hiddenUnder(change); under != 0)
        fmt::format_to(std::back_inserter(text), ", \"{}\": {}",
                       change.kind == ScanChange::Kind::Came ? "sizeBeforeUnder" : "sizeUnder",
                       under);
    if (const std::uint32_t most = difference.mostly(number); most != number) {
        text += ", \"mostly\": {";
        appendJsonPath(text, difference.path(most));
        fmt::format_to(std::back_inserter(text), ", \"change\": {}}}",
                       difference.all()[most].change());
    }
}

std::string signedWords(std::int64_t change) {
    std::string size = UtilityFunction::convertVolSpace(withoutSign(change));
    if (size.starts_with("0.00")) return size;
    return (change > 0 ? "+" : "-") + size;
}

std::string inBrackets(const std::optional<ChangeWord>& word) {
    return word ? "  (" + inEnglish(*word) + ")" : "";
}

std::string nameWords(const ScanDifference& difference, const ScanChange& change) {
    return printable(difference.name(change)) + (change.isFolder ? "/" : "") +
           inBrackets(comingWord(difference, change)) + doubtWords(change);
}

// With the entry far below that is the reason of it.
std::string changeWords(const ScanDifference& difference, std::uint32_t number) {
    const ScanChange& change = difference.all()[number];
    std::string words = nameWords(difference, change);
    const std::uint32_t most = difference.mostly(number);
    if (most == number) {
        if (change.weight != withoutSign(change.change()))
            words += fmt::format("  (changes of up to {} in it)",
                                 UtilityFunction::convertVolSpace(change.weight));
        return words;
    }
    std::vector<std::uint32_t> way;
    for (std::uint32_t each = difference.all()[most].parent; each != number;
         each = difference.all()[each].parent)
        way.push_back(each);
    words += "  mostly ";
    for (auto each = way.rbegin(); each != way.rend(); ++each)
        words += printable(difference.name(difference.all()[*each])) + "/";
    return words + nameWords(difference, difference.all()[most]);
}

// With what a scan leaves out: it may hold what is told as new or gone above.
std::string belowWords(const Changes::Below& below, const ScanDifference& difference) {
    const auto size = &UtilityFunction::convertVolSpace;
    std::string small = fmt::format("files under {}", size(difference.filesFrom()));
    if (difference.foldersFrom() != 0)
        small += fmt::format(", folders under {}", size(difference.foldersFrom()));
    if (below.hasHidden) small += " then or now";
    if (below.entries == 0) return fmt::format("({})", small);
    return fmt::format("({} smaller {}{})", below.entries,
                       below.entries == 1 ? "change" : "changes",
                       below.hasHidden ? ", and " + small : std::string());
}

bool takePart(std::string_view& text, std::size_t digits, char behind, int& number) {
    if (text.size() < digits) return false;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + digits, number);
    if (fault != std::errc() || end != text.data() + digits) return false;
    text.remove_prefix(digits);
    if (text.empty() || behind == 0) return text.empty();
    const bool isRight = text.front() == behind;
    text.remove_prefix(1);
    return isRight;
}

}  // namespace

std::string doubtWords(const ScanChange& change) { return inBrackets(doubtWord(change)); }

std::optional<std::int64_t> momentSince(std::string_view text) {
    if (const auto moment = momentOfWord(text, std::time(nullptr))) return moment;
    constexpr std::size_t dayLength = 10;
    std::tm day{};
    std::string_view left = text.substr(0, dayLength);
    if (!takePart(left, 4, '-', day.tm_year) || !takePart(left, 2, '-', day.tm_mon) ||
        !takePart(left, 2, 0, day.tm_mday))
        return std::nullopt;
    if (!parseDate(std::string(text.substr(0, dayLength)) + " 00:00:00 +0000")) return std::nullopt;
    day.tm_year -= 1900;
    --day.tm_mon;
    day.tm_isdst = -1;
    left = text.substr(std::min(text.size(), dayLength));
    if (left.empty()) {
        ++day.tm_mday;
    } else {
        if (left.front() != 'T' && left.front() != ' ') return std::nullopt;
        left.remove_prefix(1);
        if (!takePart(left, 2, ':', day.tm_hour) || !takePart(left, 2, 0, day.tm_min) ||
            day.tm_hour > 23 || day.tm_min > 59)
            return std::nullopt;
        ++day.tm_min;
    }
    return std::int64_t{std::mktime(&day)};
}

std::string momentWords(std::int64_t seconds) {
    std::string words = iso8601(Date::fromSeconds(seconds)).substr(0, 16);
    if (words.size() == 16) words[10] = ' ';
    return words;
}

void printJson(Output& out, const ScanDifference& difference, const UsageExtent& extent,
               const std::vector<Error>& skipped) {
    std::string text = "{\n  ";
    appendJsonPath(text, difference.after().root, "root");
    text += fmt::format(
        ",\n  \"since\": \"{}\",\n  \"until\": \"{}\",\n  \"limit\": {},\n  \"filesFrom\": {},\n  "
        "\"foldersFrom\": {},\n  \"otherVolume\": {},\n  ",
        timeOf(difference.before()), timeOf(difference.after()), extent.limit,
        difference.filesFrom(), difference.foldersFrom(), difference.isOfTwoVolumes());
    appendSizes(text, difference.root());
    text += ",\n  \"stopped\": false,\n  \"skipped\": [";
    appendJsonSkipped(text, skipped);
    text += "],\n  \"entries\": [";
    Changes changes(difference, extent);
    for (bool isFirst = true;;) {
        const auto number = changes.next();
        if (changes.atEnd()) break;
        if (!number) {
            appendBelow(text += "], ", changes.below());
            text += '}';
            isFirst = false;
            continue;
        }
        if (!isFirst) text += ',';
        appendChange(text, difference, *number);
        isFirst = changes.enter(*number);
        text += isFirst ? ", \"children\": [" : "}";
        out.write(text);
        text.clear();
    }
    appendBelow(text += "],\n  ", changes.below());
    out.write(text + "\n}\n");
}

void printPaths(Output& out, const ScanDifference& difference, const UsageExtent& extent) {
    for (Changes changes(difference, extent); !changes.atEnd();) {
        const auto number = changes.next();
        if (!number) continue;
        if (difference.all()[*number].kind != ScanChange::Kind::Went)
            out.write(difference.path(*number) + '\0');
        changes.enter(*number);
    }
}

void printListing(Output& out, const ScanDifference& difference, const UsageExtent& extent,
                  bool colour) {
    const std::string_view strong = colour ? "\x1b[1m" : "";
    const std::string_view plain = colour ? "\x1b[0m" : "";
    const auto line = [&](std::int64_t change, std::size_t depth, const std::string& what) {
        out.write(fmt::format("{}{:>11}{}  {:{}}{}\n", strong, signedWords(change), plain, "",
                              2 * depth, what));
    };
    for (Changes changes(difference, extent); !changes.atEnd();) {
        const std::size_t depth = changes.depth() - 1;
        const auto number = changes.next();
        if (number) {
            line(difference.all()[*number].change(), depth, changeWords(difference, *number));
            changes.enter(*number);
        } else if (extent.depth > 0 &&
                   (changes.below().entries > 0 || changes.below().change != 0)) {
            line(changes.below().change, depth, belowWords(changes.below(), difference));
        }
    }
    const ScanChange& root = difference.root();
    line(root.change(), 0,
         fmt::format("{}  ({} to {}, since {}){}", printable(difference.after().root),
                     UtilityFunction::convertVolSpace(root.sizeBefore),
                     UtilityFunction::convertVolSpace(root.sizeAfter),
                     momentWords(difference.before().time), doubtWords(root)));
}

}  // namespace orrinvale::cli
