// Any bytes as a settings file: what is read comes back from the printed text, value by value.

#include "engine/settings/SettingsText.h"
#include "fuzz/fuzz.h"

namespace {

using orrinvale::boolOf;
using orrinvale::floatOf;
using orrinvale::integerOf;
using orrinvale::isSame;
using orrinvale::parseSettings;
using orrinvale::printSettings;
using orrinvale::SettingValues;

void checkSame(const SettingValues& one, const SettingValues& other) {
    require(one.size() == other.size());
    for (const auto& [key, value] : one)
        require(other.contains(key) && isSame(other.at(key), value));
}

void checkText(std::string_view text) {
    const auto parsed = parseSettings(text);
    if (!parsed) return;
    const std::string printed = printSettings(parsed->values);
    const auto again = parseSettings(printed);
    require(again.has_value() && again->badLines.empty());
    checkSame(parsed->values, again->values);
    require(printSettings(again->values) == printed);
    for (const auto& each : parsed->values) {
        (void)integerOf(each.second);
        (void)boolOf(each.second);
        (void)floatOf(each.second);
    }
}

}  // namespace

void checkAny(std::string_view any) {
    const std::string text(any);
    checkText(text);
    // Most bytes are no settings; as a value, a key or a line they get further.
    checkText("[Orrinvale]\na = " + text);
    checkText("[Orrinvale]\n" + text + " = 1");
    checkText("[Orrinvale]\na = \"" + text + "\"");
    const SettingValues stored{{text, text}};
    const auto again = parseSettings(printSettings(stored));
    require(again.has_value());
    checkSame(stored, again->values);
}
