// Any bytes as a property list, alone, inside a list of the XML form, and as changes to one of the
// binary form.

#include "engine/settings/PropertyList.h"
#include "fuzz/fuzz.h"

namespace {

using orrinvale::PropertyList;
using namespace std::string_view_literals;  // NOLINT(google-build-using-namespace): literals have
                                            // no other way in

// {"a": "text", "b": [1, true]} in the binary form: objects, offsets, trailer.
constexpr std::string_view kBinary =
    "bplist00"
    "\xD2\x01\x02\x03\x04\x51\x61\x51\x62\x54text\xA2\x05\x06\x10\x01\x09"
    "\x08\x0D\x0F\x11\x16\x19\x1B"
    "\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x07\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x1C"sv;

void checkList(std::string_view bytes) {
    const auto list = PropertyList::parse(bytes);
    if (!list) return;
    require(list->keys().size() == list->count());
    for (const std::string& key : list->keys()) {
        (void)list->stringForKey(key);
        (void)list->integerForKey(key);
    }
    (void)list->toXml();
}

}  // namespace

void checkAny(std::string_view any) {
    const std::string text(any);
    checkList(text);
    checkList("<plist><dict><key>a</key>" + text + "</dict></plist>");
    checkList("<plist><dict><key>a</key><string>" + text + "</string></dict></plist>");
    checkList("<plist><dict><key>&#" + text + ";</key><string>&#x" + text +
              ";</string></dict></plist>");
    std::string changed(kBinary);
    require(PropertyList::parse(changed).has_value());
    for (std::size_t i = 0; i + 1 < text.size() && i < 8; i += 2)
        changed[static_cast<unsigned char>(text[i]) % changed.size()] = text[i + 1];
    checkList(changed);
}
