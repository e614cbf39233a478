// No package brings anything into a home, so that dpkg's lists are read for other places alone.
#include "platform/linux/trashForecast.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <string>

#include "platform/linux/DpkgDatabase.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

// Why what lies at a path is a package's to take, or may be; no word where it is nobody's. All
// paths are asked for at once, since that reads every list.
using Words = std::map<std::string, std::string>;

Words wordsOf(const std::vector<ApplicationRecord>& records, const ApplicationPlaces& places) {
    Words out;
    const std::string home = withoutLinks(places.home);
    std::vector<std::string> paths;
    const auto ask = [&](const std::string& path) {
        if (!isWithin(path, home)) paths.push_back(path);
    };
    for (const ApplicationRecord& each : records) {
        ask(each.path);
        std::ranges::for_each(each.links, ask);
        std::ranges::for_each(each.entries, ask);
    }
    if (paths.empty()) return out;
    const DpkgDatabase database(places.dpkg);
    const auto owners = database.ownersWithin(paths);
    for (std::size_t i = 0; i < paths.size(); ++i)
        if (!database.obstacle().empty())
            out[paths[i]] = fmt::format("Nobody can tell whether a package has brought it: {}",
                                        database.obstacle());
        else if (owners[i] != nullptr)
            out[paths[i]] =
                fmt::format("Files of the package {} go only with that package", owners[i]->name);
    return out;
}

// What only packages start, one of them has put there, whoever wrote down its files.
std::string refusalOf(const ApplicationRecord& record, const Words& words) {
    if (record.isOurs) return fmt::format("{} is the program that runs", record.name);
    const std::string folder = folderOf(record.path);
    if (withoutLinks(folder) != folder)
        return fmt::format("A link leads to it, which is left alone: {}", record.path);
    const auto isTold = [&](const std::string& path) { return words.contains(path); };
    if (isTold(record.path)) return words.at(record.path);
    const auto link = std::ranges::find_if(record.links, isTold);
    if (link != record.links.end()) return words.at(*link);
    const bool isOfPackages =
        !record.entries.empty() && std::ranges::all_of(record.entries, isTold);
    return isOfPackages ? words.at(record.entries.front()) : std::string();
}

// The program is gone without them as well: they say why they stay, rather than that it failed.
void takeStarters(const ApplicationRecord& record, const Words& words,
                  std::vector<std::string>& going, std::vector<std::string>& stays) {
    for (const std::vector<std::string>* const list : {&record.links, &record.entries})
        for (const std::string& each : *list)
            if (const auto word = words.find(each); word != words.end())
                stays.push_back(fmt::format("{} stays: {}", each, word->second));
            else if (::access(folderOf(each).c_str(), W_OK) != 0 && errno != ENOENT)
                stays.push_back(
                    fmt::format("{} stays: only the administrator may remove it", each));
            else going.push_back(each);
}

}  // namespace

RemovalForecast forecastOfTrash(const std::vector<ApplicationRecord>& records,
                                const ApplicationPlaces& places) {
    RemovalForecast out;
    const Words words = wordsOf(records, places);
    for (std::size_t i = 0; i < records.size(); ++i) {
        const ApplicationRecord& each = records[i];
        for (const std::string& name : each.others) out.along.push_back({i, name, {}});
        std::vector<std::string>& going = out.trash.emplace_back();
        going.push_back(each.path);
        if (std::string why = refusalOf(each, words); !why.empty())
            out.refusals[i] = std::move(why);
        else takeStarters(each, words, going, out.stays);
    }
    return out;
}

}  // namespace orrinvale
