// No package brings anything into a home, so that dpkg's lists are read for other places alone.
#include "platform/linux/trashForecast.h"

#include <fmt/format.h>

#include <memory>
#include <string>

#include "platform/linux/DpkgDatabase.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

class Packages final {
public:
    explicit Packages(const ApplicationPlaces& places) : m_places(places) {}

    // Why what lies at a path is not ours to take; empty where no package has a part in it.
    std::string refusal(const std::string& path) {
        if (isWithin(path, withoutLinks(m_places.home))) return {};
        if (!m_database) m_database = std::make_unique<DpkgDatabase>(m_places.dpkg);
        if (!m_database->obstacle().empty())
            return fmt::format("Nobody can tell whether a package has brought it: {}",
                               m_database->obstacle());
        const auto owners = m_database->ownersWithin(path);
        return owners.empty() ? std::string()
                              : fmt::format("Files of the package {} go only with that package",
                                            owners.front()->name);
    }

private:
    const ApplicationPlaces& m_places;
    std::unique_ptr<DpkgDatabase> m_database;
};

std::string refusalOf(const ApplicationRecord& record, Packages& packages) {
    if (record.isOurs) return fmt::format("{} is the program that runs", record.name);
    const std::string folder = folderOf(record.path);
    if (withoutLinks(folder) != folder)
        return fmt::format("A link leads to it, which is left alone: {}", record.path);
    return packages.refusal(record.path);
}

}  // namespace

RemovalForecast forecastOfTrash(const std::vector<ApplicationRecord>& records,
                                const ApplicationPlaces& places) {
    RemovalForecast out;
    Packages packages(places);
    for (std::size_t i = 0; i < records.size(); ++i) {
        const ApplicationRecord& each = records[i];
        if (std::string why = refusalOf(each, packages); !why.empty())
            out.refusals[i] = std::move(why);
        for (const std::string& name : each.others) out.along.push_back({i, name, {}});
        std::vector<std::string>& going = out.trash.emplace_back();
        going.push_back(each.path);
        going.insert(going.end(), each.links.begin(), each.links.end());
        going.insert(going.end(), each.entries.begin(), each.entries.end());
    }
    return out;
}

}  // namespace orrinvale
