// orrinvale-cli clean: see CleanCommand.h. engine/cleaning/CategoryScan.h finds what may go.
#include "cli/CleanCommand.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <mutex>
#include <utility>

#include "cli/Output.h"
#include "cli/SearchWatch.h"
#include "engine/cleaning/FolderUtilities.h"
#include "engine/cleaning/ScanErrand.h"
#include "engine/settings/UserFolders.h"
#include "engine/text/UtilityFunction.h"
#include "engine/volumes/localRoots.h"

namespace orrinvale::cli {
namespace {

std::int64_t now() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

// In the order of the categories, each once; all where none is named.
std::vector<CleanCategory> wantedOf(const std::vector<std::string>& words, std::string& unknown) {
    std::vector<CleanCategory> wanted;
    for (const std::string& word : words)
        if (!categoryOfWord(word)) unknown = word;
    for (const CleanCategoryNames& each : cleanCategories)
        if (words.empty() || std::find(words.begin(), words.end(), each.word) != words.end())
            wanted.push_back(each.category);
    return wanted;
}

std::string categoryWords() {
    std::string words;
    for (const CleanCategoryNames& each : cleanCategories)
        words += fmt::format("{}{}", words.empty() ? "" : ", ", each.word);
    return words;
}

std::vector<Error> skippedOf(const std::vector<ScannedCategory>& all) {
    std::vector<Error> skipped;
    for (const ScannedCategory& each : all)
        skipped.insert(skipped.end(), each.listing.skipped.begin(), each.listing.skipped.end());
    return skipped;
}

// The scan in hand, for the thread that watches.
class InHand final {
public:
    void set(CleanCategory category, ScanErrand* errand) {
        const std::lock_guard lock(m_mutex);
        m_category = category;
        m_errand = errand;
        if (m_isStopped && errand != nullptr) errand->stop();
    }
    void stop() {
        const std::lock_guard lock(m_mutex);
        m_isStopped = true;
        if (m_errand != nullptr) m_errand->stop();
    }
    [[nodiscard]] bool isStopped() const {
        const std::lock_guard lock(m_mutex);
        return m_isStopped;
    }
    [[nodiscard]] std::string progress() const {
        const std::lock_guard lock(m_mutex);
        if (m_errand == nullptr) return {};
        return fmt::format("{}  {} entries  {}", namesOf(m_category).word, m_errand->entries(),
                           UtilityFunction::convertVolSpace(m_errand->total()));
    }

private:
    mutable std::mutex m_mutex;
    CleanCategory m_category{};
    ScanErrand* m_errand = nullptr;
    bool m_isStopped = false;
};

}  // namespace

CleanCommand::CleanCommand(const FileSystem& files, Volumes& volumes)
    : m_files(files),
      m_utilities(std::make_unique<const FolderUtilities>(
          files, m_folders, [&volumes] { return localRoots(volumes); })) {}

CleanCommand::~CleanCommand() = default;

std::string_view CleanCommand::description() const {
    return "Six categories are looked at: system-caches, user-caches, system-logs, user-logs, "
           "user-trash and user-downloads. What is open, mounted, changed a moment ago or can not "
           "be made again stays, and the listing says why. Nothing is removed.";
}

std::vector<OptionSpec> CleanCommand::options() const {
    return {{"--category", "NAME...",
             "Only this category; may be repeated. One of system-caches, user-caches, "
             "system-logs, user-logs, user-trash, user-downloads"},
            {"--keep", "PATH...", "From now on always keep this entry, here and in the window"},
            {"--no-longer-keep", "PATH...", "Take it off that list again"}};
}

CleanParts CleanCommand::parts() const {
    return {.files = &m_files,
            .folders = &m_folders,
            .utilities = m_utilities.get(),
            .settingsFolder = userConfigFolder()};
}

CleanCommand::Scanned CleanCommand::scan(const std::vector<CleanCategory>& wanted,
                                         Telling telling) {
    Scanned out;
    InHand inHand;
    const SearchWatch watch([&inHand] { inHand.stop(); }, [&inHand] { return inHand.progress(); },
                            telling);
    for (const CleanCategory category : wanted) {
        if (inHand.isStopped()) break;
        ScanErrand errand(parts(), [this, category] {
            return m_utilities->getFolderPath(static_cast<std::uint32_t>(category));
        });
        inHand.set(category, &errand);
        auto state = ScanErrand::State::Running;
        while (state == ScanErrand::State::Running)
            state = errand.wait(std::chrono::milliseconds(100));
        inHand.set(category, nullptr);
        ScannedCategory& scanned = out.categories.emplace_back();
        scanned.category = category;
        if (state == ScanErrand::State::Ended) scanned.listing = errand.take();
        else
            scanned.listing.closed.push_back(
                {std::string(namesOf(category).word), "no answer for 5 seconds"});
        out.isSilent = out.isSilent || state == ScanErrand::State::Silent;
    }
    out.ending = watch.ending();
    return out;
}

// What went wrong, for a person.
std::optional<std::string> CleanCommand::changeKeepList(const Arguments& arguments) const {
    const std::string folder = userConfigFolder();
    for (const auto& [option, change] :
         {std::pair{"keep", &KeepList::add}, {"no-longer-keep", &KeepList::remove}})
        for (const std::string& path : arguments.texts(option)) {
            const auto changed = change(m_files, folder, absolutePath(path));
            if (!changed)
                return fmt::format("{}: {}", changed.error().path, changed.error().reason());
        }
    return std::nullopt;
}

Status CleanCommand::run(const Arguments& arguments) {
    std::string unknown;
    const auto wanted = wantedOf(arguments.texts("category"), unknown);
    if (!unknown.empty())
        return badUsage(
            fmt::format("there is no category \"{}\"; there are {}", unknown, categoryWords()));
    if (const auto fault = changeKeepList(arguments)) {
        complain(*fault);
        return Status::NoSuchFolder;
    }
    const Scanned scanned = scan(wanted, tellingFor(arguments));
    const std::vector<Error> skipped = skippedOf(scanned.categories);
    if (!arguments.has("quiet")) complainOfEach(skipped);

    Output out(STDOUT_FILENO);
    const bool isStopped = scanned.ending != Ending::Whole;
    if (arguments.has("json")) printCleanJson(out, scanned.categories, std::nullopt, isStopped);
    else if (arguments.has("print0")) printCleanPaths(out, scanned.categories);
    else printCleanListing(out, scanned.categories, now(), wantsColour(STDOUT_FILENO));
    const Status status = finish(out, skipped, scanned.ending);
    // The thread that waits would use what is taken down behind it.
    if (scanned.isSilent) std::_Exit(static_cast<int>(Status::SomeSkipped));
    return status;
}

}  // namespace orrinvale::cli
