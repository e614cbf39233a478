// engine/loginitems does what is asked for; the list and the words that name an item stand here.
#include "cli/LoginItemsCommand.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <thread>

#include "cli/Output.h"
#include "cli/SearchWatch.h"
#include "cli/askYes.h"
#include "engine/loginitems/AutostartItems.h"
#include "engine/loginitems/LoginItemRegistry.h"
#include "engine/loginitems/launchAtLogin.h"
#include "engine/loginitems/removeLoginItem.h"
#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/UserFolders.h"
#include "platform/linux/LinuxLoginItems.h"
#include "platform/linux/ProgramFiles.h"

namespace orrinvale::cli {
namespace {

using ItemRecords = std::vector<LoginItemRecord>;

std::string_view sourceOf(const LoginItemRecord& item) {
    return item.isPersons && !(item.isDeleted && item.isSystems) ? "user" : "system";
}

std::string documentOf(const ItemRecords& items) {
    std::string text = "{\"items\": [";
    const char* between = "\n    ";
    for (std::size_t i = 0; i < items.size(); ++i) {
        const LoginItemRecord& each = items[i];
        text += fmt::format("{}{{\"index\": {}, ", between, i);
        appendJsonPath(text, each.name, "name", "nameHex");
        text += ", ";
        appendJsonPath(text, each.path);
        text += ", ";
        appendJsonPath(text, each.file, "file", "fileHex");
        text += fmt::format(",\n     \"hidden\": {}, \"starts\": {}, \"source\": \"{}\"",
                            each.startsHidden, each.starts, sourceOf(each));
        if (!each.fault.empty()) {
            text += ", \"fault\": ";
            appendJsonText(text, each.fault);
        }
        text += '}';
        between = ",\n    ";
    }
    return text + "\n  ],\n  \"skipped\": [], \"stopped\": false}\n";
}

void printListing(Output& out, const ItemRecords& items) {
    if (items.empty()) out.write("Nothing starts at login.\n");
    for (std::size_t i = 0; i < items.size(); ++i) {
        const LoginItemRecord& each = items[i];
        out.write(fmt::format("{:>3}  {:<3}  {:<6}  {}  ({}{}{})\n", i, each.starts ? "on" : "off",
                              sourceOf(each), printable(each.name), printable(each.fileName),
                              each.fault.empty() ? "" : ", ", each.fault));
    }
}

Status print(const Arguments& arguments, const ItemRecords& items) {
    Output out(STDOUT_FILENO);
    if (arguments.has("json")) out.write(documentOf(items));
    else if (arguments.has("print0"))
        for (const LoginItemRecord& each : items) out.write(each.file + '\0');
    else printListing(out, items);
    return finish(out, {}, Ending::Whole);
}

Status failed(std::string_view what, std::string_view reason) {
    complain(fmt::format("{}: {}", what, reason));
    return Status::SomeSkipped;
}

std::string_view wordsOf(std::int32_t status) {
    switch (status) {
        case errLoginItemMissing: return "there is no such file";
        case errLoginItemName: return "nothing can start this at login";
        default: return "the entry could not be written";
    }
}

// By index or by file name; null where there is none.
const LoginItemRecord* itemNamed(const ItemRecords& items, const std::string& given) {
    std::size_t index = 0;
    const auto read = std::from_chars(given.data(), given.data() + given.size(), index);
    if (read.ec == std::errc() && read.ptr == given.data() + given.size())
        return index < items.size() ? &items[index] : nullptr;
    const auto found = std::ranges::find(items, given, &LoginItemRecord::fileName);
    return found == items.end() ? nullptr : &*found;
}

// The window program's own entry and its setting go together.
bool isOwn(const LoginItems& items, const LoginItemRecord& item) {
    return item.isOurs && item.path == items.folders().ownProgram;
}

Status remove(const Arguments& arguments, const LoginItems& items, const LoginItemRecord& item) {
    if (!item.isPersons)
        return failed(printable(item.fileName), "it belongs to the system; switch it off instead");
    if (!arguments.has("yes")) {
        if (!isTerminal(STDIN_FILENO))
            return badUsage("remove asks first, and there is no terminal to ask on; give --yes");
        if (!askYes(fmt::format("Move {} to the trash?", printable(item.fileName)))) {
            complain("nothing was removed");
            return Status::Done;
        }
    }
    const std::string reason = LoginItemRegistry::parts().remove(item);
    if (!reason.empty()) return failed(printable(item.fileName), reason);
    if (isOwn(items, item)) static_cast<void>(writeFileOfLaunchAppWhenLogin("0"));
    return Status::Done;
}

Status switchItem(LoginItems& items, const LoginItemRecord& item, bool starts) {
    const auto set = items.setStarts(item.fileName, starts);
    if (!set) return failed(printable(item.fileName), set.error().reason());
    if (isOwn(items, item)) static_cast<void>(writeFileOfLaunchAppWhenLogin(starts ? "1" : "0"));
    return Status::Done;
}

Status add(LoginItems& items, const std::string& given) {
    const std::string path = absolutePath(given);
    const std::int32_t status = items.add(path, false);
    if (status != 0) return failed(printable(given), wordsOf(status));
    if (path == items.folders().ownProgram) static_cast<void>(writeFileOfLaunchAppWhenLogin("1"));
    Output(STDOUT_FILENO).write(printable(path) + '\n');
    return Status::Done;
}

}  // namespace

void useLoginItems(const FileSystem& files) {
    const AutostartItems::TakeAway takeAway = [&files](const LoginItemRecord& item) {
        return removeLoginItem(files, item, programFiles(), userStateFolder());
    };
    static auto* const items = new AutostartItems(linuxLoginItemFolders(), takeAway);
    LoginItemRegistry::setParts({.items = items, .remove = takeAway, .waitOneSecond = [] {
                                     std::this_thread::sleep_for(std::chrono::seconds(1));
                                 }});
}

std::string_view LoginItemsCommand::description() const {
    return "Your own entries come first, then those of the system, which can be switched off and "
           "not removed. A program or an entry that is added starts at the next login; anything "
           "else is opened by the program that opens such files. Removed entries go to the trash.";
}

std::vector<OptionSpec> LoginItemsCommand::options() const {
    return {{"[WORD...]", "",
             "list (which is meant where nothing is given), add PATH, remove ITEM, on ITEM, or off "
             "ITEM; an item is its number in the list or its file name"},
            {"--yes", "", "Remove without the question"}};
}

Status LoginItemsCommand::run(const Arguments& arguments) {
    PreferenceViewController::initialize();
    useLoginItems(m_files);
    LoginItems& items = *LoginItemRegistry::parts().items;
    const std::vector<std::string> words = arguments.texts("WORD");
    const std::string action = words.empty() ? "list" : words.front();
    const bool takesItem = action == "remove" || action == "on" || action == "off";
    if (words.size() !=
        (takesItem || action == "add" ? 2U : std::min<std::size_t>(words.size(), 1)))
        return badUsage("login-items takes list, add PATH, remove ITEM, on ITEM, or off ITEM");
    if (action == "add") return add(items, words[1]);
    std::int32_t status = 0;
    const ItemRecords records = items.list(status);
    if (status != 0) return failed(items.folders().persons, "it could not be read");
    if (action == "list") return print(arguments, records);
    if (!takesItem) return badUsage(fmt::format("login-items can not \"{}\"", action));
    const LoginItemRecord* const item = itemNamed(records, words[1]);
    if (item == nullptr)
        return badUsage(
            fmt::format("there is no login item \"{}\"; login-items lists them", words[1]));
    const Status done = action == "remove" ? remove(arguments, items, *item)
                                           : switchItem(items, *item, action == "on");
    if (done == Status::Done) Output(STDOUT_FILENO).write(printable(item->fileName) + '\n');
    return done;
}

}  // namespace orrinvale::cli
