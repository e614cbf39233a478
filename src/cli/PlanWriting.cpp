// engine/duplicates/plan/PlanFile.h writes.
#include "cli/PlanWriting.h"

#include <fmt/format.h>
#include <unistd.h>

#include "cli/Command.h"
#include "cli/Output.h"
#include "cli/countedEntries.h"
#include "engine/duplicates/plan/PlanFile.h"
#include "engine/text/UtilityFunction.h"

namespace orrinvale::cli {

bool writePlanFile(const std::string& file, const DuplicateFilesOpt& search,
                   const PlanOrigin& origin, bool isQuiet) {
    const DuplicatePlan plan = makePlan(search, origin);
    if (const auto fault = savePlan(file, plan)) {
        complain(fmt::format("{}: {}", file, *fault));
        return false;
    }
    const PlanSums sums = sumsOf(plan);
    if (!isQuiet)
        Output(STDERR_FILENO)
            .write(fmt::format("{}: a plan to remove {}, {}\n", printable(file),
                               countedEntries(sums.files, sums.bundles),
                               UtilityFunction::convertVolSpace(sums.bytes)));
    return true;
}

}  // namespace orrinvale::cli
