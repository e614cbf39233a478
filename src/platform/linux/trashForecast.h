// What a removal does of the kinds that are a file or a folder and the entries that start it.
#pragma once

#include <fmt/format.h>

#include <vector>

#include "platform/applications.h"

namespace orrinvale {

[[nodiscard]] inline RemovalForecast forecastOfTrash(
    const std::vector<ApplicationRecord>& records) {
    RemovalForecast out;
    for (const ApplicationRecord& each : records) {
        if (each.isOurs) out.refusal = fmt::format("{} is the program that runs", each.name);
        std::vector<std::string>& going = out.trash.emplace_back();
        going.push_back(each.path);
        going.insert(going.end(), each.entries.begin(), each.entries.end());
    }
    return out;
}

}  // namespace orrinvale
