// A made-up home, an hour old: what lies in it was written long enough ago to be cleaned.
#pragma once

#include <algorithm>
#include <chrono>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "engine/cleaning/CategoryScan.h"
#include "engine/cleaning/FolderUtilities.h"
#include "platform/linux/LinuxFolders.h"
#include "support/TestTree.h"

namespace orrinvale::testing {

struct CleanHome {
    explicit CleanHome(FolderVariables variables = {}) : CleanHome(std::move(variables), {}) {}
    CleanHome(FolderVariables variables, std::vector<std::string> volumes)
        : folders(withHome(std::move(variables))),
          utilities(files, folders, [volumes] { return volumes; }) {}

    [[nodiscard]] CleanParts parts() const {
        return {.files = &files,
                .folders = &folders,
                .utilities = &utilities,
                .settingsFolder = tree.at("settings"),
                .clock = [later = secondsLater] {
                    return std::chrono::duration_cast<std::chrono::nanoseconds>(
                               std::chrono::system_clock::now().time_since_epoch())
                               .count() +
                           later * 1'000'000'000;
                }};
    }

    [[nodiscard]] CategoryListing scan(CleanCategory category) const {
        const std::atomic<bool> stop{false};
        std::atomic<std::uint64_t> total{0};
        CategoryListing listing =
            CategoryScan(parts(), {.stop = &stop, .total = &total})
                .run(utilities.getFolderPath(static_cast<std::uint32_t>(category)));
        if (total != listing.bytes) listing.bytes = ~std::uint64_t{0};  // no test expects it
        return listing;
    }

    /// "NAME SIZE" of each row, sorted by name.
    [[nodiscard]] static std::vector<std::string> offered(const CategoryListing& listing) {
        std::vector<std::string> out;
        for (const CleanRow& row : listing.rows)
            out.push_back(std::string(lastPathComponent(row.path)) + ' ' +
                          std::to_string(row.bytes));
        std::sort(out.begin(), out.end());
        return out;
    }
    /// The reason of each name that stays.
    [[nodiscard]] static std::map<std::string, KeptBecause> kept(const CategoryListing& listing) {
        std::map<std::string, KeptBecause> out;
        for (const CleanRow& row : listing.kept) out.emplace(lastPathComponent(row.path), row.kept);
        return out;
    }

    TestTree tree;
    WatchedFiles files;
    std::int64_t secondsLater = 3600;
    LinuxFolders folders;
    FolderUtilities utilities;

private:
    [[nodiscard]] FolderVariables withHome(FolderVariables variables) const {
        if (variables.home.empty()) variables.home = tree.path();
        return variables;
    }
};

}  // namespace orrinvale::testing
