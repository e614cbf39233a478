// engine/settings/SettingTable.h knows what a setting takes, PreferenceViewController.h stores it.
#include "cli/SettingsCommand.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>

#include "cli/LoginItemsCommand.h"
#include "cli/Output.h"
#include "cli/SearchWatch.h"
#include "engine/loginitems/launchAtLogin.h"
#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/SettingTable.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/SettingsText.h"
#include "engine/settings/UserDefaults.h"

namespace orrinvale::cli {
namespace {

using Keys = std::vector<std::string>;

SettingObject valueOf(const std::string& key) {
    if (auto value = UserDefaults::standardUserDefaults().objectForKey(key)) return value;
    return PreferenceViewController::usualSetting(key);
}

void appendJson(std::string& out, const SettingObject& value) {
    const float* const number = value ? std::get_if<float>(&*value) : nullptr;
    if (!value || (number != nullptr && !std::isfinite(*number))) out += "null";
    else if (const auto* const text = std::get_if<std::string>(&*value)) appendJsonText(out, *text);
    else out += printSetting(*value);
}

std::string documentOf(const Keys& keys) {
    std::string text = "{\"settings\": [";
    const char* between = "\n    ";
    for (const std::string& key : keys) {
        text += between;
        text += fmt::format("{{\"key\": \"{}\", \"value\": ", key);
        appendJson(text, valueOf(key));
        text += ", \"default\": ";
        appendJson(text, PreferenceViewController::usualSetting(key));
        text += '}';
        between = ",\n    ";
    }
    return text + "\n  ],\n  \"skipped\": [], \"stopped\": false}\n";
}

// A text without its quotation marks.
std::string bare(const SettingObject& value) {
    if (!value) return {};
    if (const auto* const text = std::get_if<std::string>(&*value)) return *text;
    return printSetting(*value);
}

void printTable(Output& out, const Keys& keys) {
    std::size_t width = 0;
    for (const std::string& key : keys) width = std::max(width, key.size());
    for (const std::string& key : keys) {
        const SettingObject usual = PreferenceViewController::usualSetting(key);
        const SettingObject value = valueOf(key);
        out.write(fmt::format("{:<{}}  {}{}\n", key, width, value ? printable(bare(value)) : "-",
                              isSame(value, usual)
                                  ? std::string()
                                  : fmt::format("   (usually {})", usual ? bare(usual) : "-")));
    }
}

Status print(const Arguments& arguments, const Keys& keys, bool isOne) {
    Output out(STDOUT_FILENO);
    if (arguments.has("json")) out.write(documentOf(keys));
    else if (arguments.has("print0"))
        for (const std::string& key : keys)
            out.write((isOne ? std::string() : key + '=') + bare(valueOf(key)) + '\0');
    else if (isOne) out.write(printable(bare(valueOf(keys.front()))) + '\n');
    else printTable(out, keys);
    return finish(out, {}, Ending::Whole);
}

Status unknownSetting(const std::string& key) {
    return badUsage(fmt::format("there is no setting \"{}\"; settings list tells all", key));
}

// As its box in the window: the entry goes with it.
Status setLoginCheck(int state) {
    if (launchAtLogin(state)) return Status::Done;
    complain("the entry that starts it at login could not be changed");
    return Status::SomeSkipped;
}

Status setOne(const Arguments& arguments, const std::string& key, const std::string& text) {
    const SettingRule* const rule = settingRule(key);
    if (rule == nullptr) return unknownSetting(key);
    auto value = settingFrom(text, *rule);
    if (!value) return badUsage(fmt::format("{} takes {}, not \"{}\"", key, value.error(), text));
    if (key == ZvLoginCheckKey) return setLoginCheck(static_cast<int>(integerOf(*value)));
    if (const auto stored = PreferenceViewController::storeSetting(*std::move(value), key);
        !stored) {
        complain(fmt::format("{} is not saved: {}", key, stored.error().reason()));
        return Status::SomeSkipped;
    }
    return arguments.has("json") ? print(arguments, {key}, true) : Status::Done;
}

Keys allKeys() {
    Keys keys;
    for (const SettingRule& each : settingTable()) keys.emplace_back(each.key);
    return keys;
}

}  // namespace

std::string_view SettingsCommand::description() const {
    return "They are those of the window, which follows at once where it runs. A value is checked "
           "before it is stored: true or false, a whole number, a part of 1 such as 0.15, or one "
           "of several words. What they mean stands in the user guide.";
}

std::vector<OptionSpec> SettingsCommand::options() const {
    return {{"[WORD...]", "",
             "list (which is meant where nothing is given), get KEY, or set KEY VALUE"}};
}

Status SettingsCommand::run(const Arguments& arguments) {
    PreferenceViewController::initialize();
    useLoginItems(m_files);
    const std::vector<std::string> words = arguments.texts("WORD");
    const std::string action = words.empty() ? "list" : words.front();
    if (action == "list" && words.size() <= 1) return print(arguments, allKeys(), false);
    if (action == "get" && words.size() == 2)
        return settingRule(words[1]) != nullptr ? print(arguments, {words[1]}, true)
                                                : unknownSetting(words[1]);
    if (action == "set" && words.size() == 3) return setOne(arguments, words[1], words[2]);
    return badUsage("settings takes list, get KEY, or set KEY VALUE");
}

}  // namespace orrinvale::cli
