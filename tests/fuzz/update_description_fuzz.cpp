// Any bytes as the description of the newest version, alone and as texts of its list.
#include "engine/updates/NewVersion.h"
#include "fuzz/fuzz.h"

namespace {

void checkDescription(const std::string& bytes) {
    auto list = orrinvale::PropertyList::parse(bytes);
    const auto found = orrinvale::takeNewVersion(list ? &*list : nullptr, 100);
    if (!found) return;
    require(found->number > 100 && found->lines.size() <= orrinvale::maximumLines);
    const auto places = orrinvale::placeLines(
        *found, [](const std::string& text) { return static_cast<double>(text.size()); });
    require(places.rows.size() == found->lines.size());
    int number = 0;
    double top = 0;
    for (std::size_t i = 0; i < places.rows.size(); ++i) {
        require(found->lines[i].number > number && places.rows[i].top == top);
        number = found->lines[i].number;
        top += places.rows[i].height;
    }
    require(top <= places.height);
}

}  // namespace

void checkAny(std::string_view any) {
    const std::string text(any);
    const std::string number = "<key>VersionCheck</key><integer>200</integer>";
    checkDescription(text);
    checkDescription("<plist><dict>" + number + text + "</dict></plist>");
    checkDescription("<plist><dict>" + number + "<key>1</key><string>" + text + "</string><key>" +
                     text + "</key><string>x</string></dict></plist>");
    checkDescription("<plist><dict><key>VersionCheck</key><string>" + text +
                     "</string></dict></plist>");
}
