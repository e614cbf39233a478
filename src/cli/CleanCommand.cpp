// engine/cleaning/CategoryScan.h finds what may go.
#include "cli/CleanCommand.h"

#include <fmt/format.h>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdlib>
#include <mutex>
#include <utility>

#include "cli/CleanRemoval.h"
#include "cli/Output.h"
#include "cli/SearchWatch.h"
#include "cli/askYes.h"
#include "engine/base/saturating.h"
#include "engine/cleaning/FolderUtilities.h"
#include "engine/cleaning/ScanErrand.h"
#include "engine/cleaning/makeFolderUtilities.h"
#include "engine/settings/UserFolders.h"
#include "engine/text/UtilityFunction.h"
#include "platform/paths.h"

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

// Why these categories can not be cleaned by whoever asks; empty when they can.
std::string objectionTo(const std::vector<CleanCategory>& wanted) {
    for (const CleanCategory category : wanted)
        if (isOfTheSystem(category) && ::geteuid() != 0)
            return fmt::format("{} is for root to clean; run the command with sudo",
                               namesOf(category).word);
    return {};
}

// The folders of a category in which nothing is touched, where there are no others.
std::optional<std::string> closedCategory(const std::vector<ScannedCategory>& scanned) {
    for (const ScannedCategory& each : scanned)
        if (each.listing.rows.empty() && each.listing.kept.empty() && !each.listing.closed.empty())
            return fmt::format("{}: {}: {}", namesOf(each.category).word,
                               each.listing.closed.front().path,
                               each.listing.closed.front().reason);
    return std::nullopt;
}

bool isAgreed(const std::vector<ScannedCategory>& scanned) {
    std::size_t rows = 0;
    std::uint64_t bytes = 0;
    for (const ScannedCategory& each : scanned) {
        rows += each.listing.rows.size();
        addSaturating(bytes, each.listing.bytes);
    }
    return askYes(fmt::format("Remove {} {}, {}, for good?", rows, rows == 1 ? "entry" : "entries",
                              UtilityFunction::convertVolSpace(bytes)));
}

// Of the person whom sudo or pkexec made root, and whose list of what is kept holds as well.
std::string settingsBehindRoot() {
    if (::geteuid() != 0) return {};
    for (const char* const name : {"SUDO_UID", "PKEXEC_UID"}) {
        const char* const text = std::getenv(name);
        const std::string_view digits = text != nullptr ? text : "";
        uid_t user = 0;
        const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), user);
        if (read.ec != std::errc() || read.ptr != digits.data() + digits.size() || user == 0)
            continue;
        if (const passwd* const account = ::getpwuid(user))
            return joinPath(joinPath(account->pw_dir, ".config"),
                            lastPathComponent(userConfigFolder()));
    }
    return {};
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
    : m_files(files), m_utilities(makeFolderUtilities(files, m_folders, volumes)) {}

CleanCommand::~CleanCommand() = default;

std::string_view CleanCommand::description() const {
    return "Six categories are looked at: system-caches, user-caches, system-logs, user-logs, "
           "user-trash and user-downloads. What is open, mounted, changed a moment ago or can not "
           "be made again stays, and the listing says why. With --remove all is asked once more, "
           "what "
           "came or changed since stays, and at the end stands by how much the free space grew.";
}

std::vector<OptionSpec> CleanCommand::options() const {
    return {{"--category", "NAME...",
             "Only this category; may be repeated. One of system-caches, user-caches, "
             "system-logs, user-logs, user-trash, user-downloads"},
            {"--remove", "",
             "Remove what is listed, after a question; only with --category. It ends with 1 where "
             "something could not be removed"},
            {"--yes", "", "Remove without the question"},
            {"--keep", "PATH...", "From now on always keep this entry, here and in the window"},
            {"--no-longer-keep", "PATH...", "Take it off that list again"}};
}

CleanParts CleanCommand::parts() const {
    return {.files = &m_files,
            .folders = &m_folders,
            .utilities = m_utilities.get(),
            .settingsFolder = userConfigFolder(),
            .otherSettings = settingsBehindRoot()};
}

CleanCommand::Scanned CleanCommand::scan(const std::vector<CleanCategory>& wanted,
                                         Telling telling) {
    Scanned out;
    InHand inHand;
    const SearchWatch watch([&inHand] { inHand.stop(); }, [&inHand] { return inHand.progress(); },
                            telling);
    CleanParts shared = parts();
    shared.run = std::make_shared<FoldersOfRun>();
    for (const CleanCategory category : wanted) {
        if (inHand.isStopped()) break;
        ScanErrand errand(shared, [this, category] {
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
    const bool removes = arguments.has("remove");
    if (removes && !arguments.has("category"))
        return badUsage("--remove wants to be told what, by --category");
    if (removes && !arguments.has("yes") && !isTerminal(STDIN_FILENO))
        return badUsage("--remove asks first, and there is no terminal to ask on; give --yes");
    if (removes && !arguments.has("yes") && (arguments.has("json") || arguments.has("print0")))
        return badUsage("with --json and -0 nothing is listed before the question; give --yes");
    if (const std::string objection = removes ? objectionTo(wanted) : std::string();
        !objection.empty()) {
        complain(objection);
        return Status::NoSuchFolder;
    }
    const Scanned scanned = scan(wanted, tellingFor(arguments));
    const Status status = removes && scanned.ending == Ending::Whole ? remove(arguments, scanned)
                                                                     : print(arguments, scanned);
    // The thread that waits would use what is taken down behind it.
    if (scanned.isSilent) std::_Exit(static_cast<int>(std::max(status, Status::SomeSkipped)));
    return status;
}

Status CleanCommand::print(const Arguments& arguments, const Scanned& scanned) {
    const std::vector<Error> skipped = skippedOf(scanned.categories);
    if (!arguments.has("quiet")) complainOfEach(skipped);
    Output out(STDOUT_FILENO);
    const bool isStopped = scanned.ending != Ending::Whole;
    if (arguments.has("json")) printCleanJson(out, scanned.categories, std::nullopt, isStopped);
    else if (arguments.has("print0")) printCleanPaths(out, scanned.categories);
    else printCleanListing(out, scanned.categories, now(), wantsColour(STDOUT_FILENO));
    return finish(out, skipped, scanned.ending);
}

// The listing comes before the question, and then not again.
Status CleanCommand::remove(const Arguments& arguments, const Scanned& scanned) {
    if (const auto closed = closedCategory(scanned.categories)) {
        complain(*closed);
        return Status::NoSuchFolder;
    }
    const std::vector<Error> skipped = skippedOf(scanned.categories);
    if (!arguments.has("quiet")) complainOfEach(skipped);
    const bool isForPeople = !arguments.has("json") && !arguments.has("print0");
    Output out(STDOUT_FILENO);
    if (isForPeople) printCleanListing(out, scanned.categories, now(), wantsColour(STDOUT_FILENO));
    out.flush();
    const bool isAnything =
        std::any_of(scanned.categories.begin(), scanned.categories.end(),
                    [](const auto& each) { return !each.listing.rows.empty(); });
    CleanRemovalResult done;
    done.ending = scanned.ending;
    if (isAnything) {
        if (!arguments.has("yes") && !isAgreed(scanned.categories)) {
            complain("nothing was removed");
            return Status::Done;
        }
        done = removeRows(parts(), scanned.categories, tellingFor(arguments));
    }
    if (arguments.has("json"))
        printCleanJson(out, scanned.categories, done.outcome, done.ending != Ending::Whole);
    else if (arguments.has("print0"))
        for (const std::string& path : done.outcome.removed) out.write(path + '\0');
    else if (isAnything) printCleanOutcome(out, done.outcome);
    const Status status = finish(out, skipped, done.ending);
    return status == Status::Done && !done.isWhole ? Status::SomeSkipped : status;
}

}  // namespace orrinvale::cli
