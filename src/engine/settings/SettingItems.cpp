#include "engine/settings/SettingItems.h"

#include <array>

#include "engine/settings/KeyedArchive.h"

namespace orrinvale {
namespace {

struct Field {
    std::string SettingItems::*text;
    const char* key;
};

// The keys of an archive are not those of the settings, and stay as they are so that old archives
// can be read.
constexpr std::array<Field, 9> kFields{{{&SettingItems::errorValue, "ErrorValue"},
                                        {&SettingItems::graphic, "Graphic"},
                                        {&SettingItems::digital, "Digital"},
                                        {&SettingItems::systemCaches, "SystemCache"},
                                        {&SettingItems::userCaches, "UserCaches"},
                                        {&SettingItems::systemLogs, "SystemLog"},
                                        {&SettingItems::userLogs, "UserLogs"},
                                        {&SettingItems::userTrash, "UserTrash"},
                                        {&SettingItems::downloads, "Downloads"}}};

}  // namespace

SettingItems::SettingItems(const KeyedArchive& coder) {
    for (const Field& field : kFields)
        this->*field.text = coder.decodeObjectForKey(field.key).value_or(std::string());
}

void SettingItems::encodeWithCoder(KeyedArchive& coder) const {
    for (const Field& field : kFields) coder.encodeObject(this->*field.text, field.key);
}

}  // namespace orrinvale
