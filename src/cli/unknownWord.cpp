// The distance of two words by letters, and the nearest word of the commands and their options.
#include "cli/unknownWord.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

namespace orrinvale::cli {
namespace {

struct KnownOption {
    std::string_view name;
    bool takesValue;
};

// Letters that differ, are missing, are too many or stand in the place of their neighbour count one
// each.
std::size_t distance(std::string_view one, std::string_view other) {
    std::vector<std::vector<std::size_t>> cost(one.size() + 1,
                                               std::vector<std::size_t>(other.size() + 1));
    for (std::size_t i = 0; i <= one.size(); ++i) {
        for (std::size_t j = 0; j <= other.size(); ++j) {
            if (i == 0 || j == 0) {
                cost[i][j] = i + j;
                continue;
            }
            const std::size_t changed = one[i - 1] == other[j - 1] ? 0 : 1;
            cost[i][j] =
                std::min({cost[i - 1][j] + 1, cost[i][j - 1] + 1, cost[i - 1][j - 1] + changed});
            if (i > 1 && j > 1 && one[i - 1] == other[j - 2] && one[i - 2] == other[j - 1])
                cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + 1);
        }
    }
    return cost[one.size()][other.size()];
}

// Nothing where nothing is near: a guess that shares less than half of the letters helps nobody.
std::optional<std::string_view> nearest(std::string_view word,
                                        const std::vector<std::string_view>& known) {
    constexpr std::size_t longestName = 40;
    if (word.empty() || word.size() > longestName) return std::nullopt;
    const auto rank = [&](std::string_view name) {
        return name.starts_with(word) ? 0 : distance(word, name);
    };
    const auto best = std::ranges::min_element(known, {}, rank);
    if (best == known.end() || rank(*best) > std::max(word.size(), best->size()) / 2)
        return std::nullopt;
    return *best;
}

std::string complaintOf(std::string_view kind, std::string_view word,
                        const std::vector<std::string_view>& known) {
    std::string text = fmt::format("there is no {} \"{}\"", kind, word);
    if (const auto meant = nearest(word, known))
        text += fmt::format("; the nearest is \"{}\"", *meant);
    return text;
}

void addNames(std::vector<KnownOption>& all, const OptionSpec& option) {
    if (!option.names.starts_with('-')) return;
    for (std::string_view rest = option.names; !rest.empty();) {
        const std::size_t end = std::min(rest.find(','), rest.size());
        all.push_back({rest.substr(0, end), !option.argument.empty() && option.argument[0] != '['});
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
}

std::vector<KnownOption> optionsOf(const Command& command) {
    std::vector<KnownOption> all{{"--help", false}, {"-h", false}};
    for (const auto& list : {command.options(), commonOptions()})
        for (const OptionSpec& option : list) addNames(all, option);
    return all;
}

// Long options alone: the parser takes several short ones in one word.
std::optional<std::string> unknownOption(const std::vector<std::string>& words, std::size_t from,
                                         const std::vector<KnownOption>& known) {
    for (std::size_t i = from; i < words.size() && words[i] != "--"; ++i) {
        const std::string name = words[i].substr(0, words[i].find('='));
        const auto found = std::ranges::find(known, name, &KnownOption::name);
        if (found != known.end()) i += found->takesValue && name == words[i] ? 1U : 0U;
        else if (name.starts_with("--")) {
            std::vector<std::string_view> names(known.size());
            std::ranges::transform(known, names.begin(), &KnownOption::name);
            return complaintOf("option", name, names);
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::string> unknownWord(const std::vector<std::string>& words,
                                       const Commands& commands) {
    const auto word =
        std::ranges::find_if(words, [](const std::string& each) { return !each.starts_with('-'); });
    if (word == words.end()) return std::nullopt;
    std::vector<std::string_view> names;
    for (const auto& command : commands) {
        if (command->name() == *word)
            return unknownOption(words, static_cast<std::size_t>(word - words.begin()) + 1,
                                 optionsOf(*command));
        names.push_back(command->name());
    }
    return complaintOf("command", *word, names);
}

}  // namespace orrinvale::cli
