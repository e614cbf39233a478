// engine/duplicates/cache/HashCache.h keeps it.
#include "cli/CacheCommand.h"

#include <fmt/format.h>
#include <unistd.h>

#include "cli/Output.h"
#include "cli/SearchWatch.h"
#include "engine/duplicates/cache/HashCache.h"
#include "engine/settings/PreferenceViewController.h"
#include "engine/text/JsonText.h"
#include "engine/text/UtilityFunction.h"

namespace orrinvale::cli {
namespace {

Status show(const Arguments& arguments) {
    PreferenceViewController::initialize();
    const std::string path = hashCachePath();
    const HashCacheSize size = hashCacheSize(path);
    const bool remembers = PreferenceViewController::rememberContents();
    Output out(STDOUT_FILENO);
    if (arguments.has("json")) {
        std::string text = "{\"cache\": {";
        appendJsonPath(text, path);
        text += fmt::format(
            ", \"size\": {}, \"files\": {}, \"remembers\": {}}},\n"
            "  \"skipped\": [], \"stopped\": false}}\n",
            size.bytes, size.files, remembers);
        out.write(text);
    } else if (arguments.has("print0")) {
        out.write(path + '\0');
    } else {
        out.write(fmt::format("{}\n{}, {} files{}\n", printable(path),
                              UtilityFunction::convertVolSpace(size.bytes), size.files,
                              remembers ? "" : "; searches add nothing to it (rememberContents)"));
    }
    return finish(out, {}, Ending::Whole);
}

}  // namespace

std::string_view CacheCommand::description() const {
    return "A search remembers checksums of what it reads, and with them file systems, inode "
           "numbers and times, but neither names nor contents. It takes 256 MiB at most, and what "
           "was not used for longest goes first. settings set rememberContents false ends it, "
           "duplicates --no-cache for one search.";
}

std::vector<OptionSpec> CacheCommand::options() const {
    return {{"[WORD...]", "", "show (which is meant where nothing is given), or clear"}};
}

Status CacheCommand::run(const Arguments& arguments) {
    const std::vector<std::string> words = arguments.texts("WORD");
    const std::string action = words.empty() ? "show" : words.front();
    if (words.size() > 1 || (action != "show" && action != "clear"))
        return badUsage("cache takes show or clear");
    if (action == "clear")
        if (const auto cleared = clearHashCache(hashCachePath()); !cleared) {
            complain(fmt::format("{}: {}", cleared.error().path, cleared.error().reason()));
            return Status::SomeSkipped;
        }
    return action == "clear" && !arguments.has("json") ? Status::Done : show(arguments);
}

}  // namespace orrinvale::cli
