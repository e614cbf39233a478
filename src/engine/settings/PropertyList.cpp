// Parsing and printing are libplist's; what it can not be trusted with, PropertyListGuard stops.
#include "engine/settings/PropertyList.h"

#include <plist/plist.h>

#include <cerrno>
#include <cstdlib>
#include <limits>
#include <utility>

#include "engine/files/DurableFile.h"
#include "engine/settings/PropertyListGuard.h"
#include "engine/settings/SettingValue.h"

namespace orrinvale {
namespace {

using CText = std::unique_ptr<char, decltype(&std::free)>;

plist_t itemOf(plist_t dictionary, const std::string& key) {
    return key.find('\0') == std::string::npos ? plist_dict_get_item(dictionary, key.c_str())
                                               : nullptr;
}

std::string textOf(plist_t node) {
    char* raw = nullptr;
    plist_get_string_val(node, &raw);
    const CText text(raw, &std::free);
    return text ? std::string(text.get()) : std::string();
}

// Cut towards zero; the nearest end where there is no such number.
std::int64_t wholePart(double value) {
    constexpr double most = 9223372036854775808.0;  // 2^63, the first that does not fit
    if (!(value > -most)) return value < 0 ? std::numeric_limits<std::int64_t>::min() : 0;
    return value < most ? static_cast<std::int64_t>(value)
                        : std::numeric_limits<std::int64_t>::max();
}

// libplist knows further forms, which the guard can not count: a list begins as a binary one or as
// XML.
bool isKnownForm(std::string_view bytes) {
    const std::size_t start = bytes.find_first_not_of(" \t\r\n");
    return bytes.starts_with("bplist") ||
           (start != std::string_view::npos && bytes[start] == '<') ||
           bytes.starts_with("\xEF\xBB\xBF<");
}

}  // namespace

void PropertyList::Free::operator()(void* node) const { plist_free(node); }

PropertyList::PropertyList() : m_root(plist_new_dict()) {}
PropertyList::PropertyList(Node root) : m_root(std::move(root)) {}
PropertyList::~PropertyList() = default;
PropertyList::PropertyList(PropertyList&& other) noexcept = default;
PropertyList& PropertyList::operator=(PropertyList&& other) noexcept = default;

Result<PropertyList> PropertyList::parse(std::string_view bytes) {
    if (bytes.size() > kPropertyListLimit) return tl::unexpected(systemError("parse", {}, EFBIG));
    plist_t raw = nullptr;
    const std::string copy(bytes);  // libplist's search for marks wants a null byte behind the end
    if (isKnownForm(bytes) && isHarmlessPropertyList(bytes))
        plist_from_memory(copy.c_str(), static_cast<std::uint32_t>(copy.size()), &raw);
    Node root(raw);
    if (!root || plist_get_node_type(root.get()) != PLIST_DICT)
        return tl::unexpected(systemError("parse", {}, EBADMSG));
    return PropertyList(std::move(root));
}

Result<PropertyList> PropertyList::read(const std::string& path) {
    const auto bytes = DurableFile::read(path, kPropertyListLimit, DurableFile::Owner::Any);
    if (!bytes) return tl::unexpected(bytes.error());
    auto list = parse(*bytes);
    if (!list) list.error().path = path;
    return list;
}

std::size_t PropertyList::count() const { return plist_dict_get_size(m_root.get()); }

std::vector<std::string> PropertyList::keys() const {
    std::vector<std::string> names;
    plist_dict_iter raw = nullptr;
    plist_dict_new_iter(m_root.get(), &raw);
    const std::unique_ptr<void, decltype(&std::free)> iterator(raw, &std::free);
    for (;;) {
        char* key = nullptr;
        plist_t value = nullptr;
        plist_dict_next_item(m_root.get(), iterator.get(), &key, &value);
        const CText name(key, &std::free);
        if (!name) return names;
        names.emplace_back(name.get());
    }
}

std::optional<std::string> PropertyList::stringForKey(const std::string& key) const {
    plist_t item = itemOf(m_root.get(), key);
    if (item == nullptr || plist_get_node_type(item) != PLIST_STRING) return std::nullopt;
    return textOf(item);
}

std::optional<std::int64_t> PropertyList::integerForKey(const std::string& key) const {
    plist_t item = itemOf(m_root.get(), key);
    if (item == nullptr) return std::nullopt;
    std::uint8_t flag = 0;
    std::uint64_t whole = 0;
    double real = 0;
    switch (plist_get_node_type(item)) {
        case PLIST_STRING: return integerOf(textOf(item));
        case PLIST_BOOLEAN: plist_get_bool_val(item, &flag); return flag != 0 ? 1 : 0;
        case PLIST_UINT: plist_get_uint_val(item, &whole); return static_cast<std::int64_t>(whole);
        case PLIST_REAL: plist_get_real_val(item, &real); return wholePart(real);
        default: return std::nullopt;
    }
}

void PropertyList::setString(std::string_view text, const std::string& forKey) {
    plist_dict_set_item(m_root.get(), forKey.c_str(), plist_new_string(std::string(text).c_str()));
}

void PropertyList::removeObjectForKey(const std::string& key) {
    if (itemOf(m_root.get(), key) != nullptr) plist_dict_remove_item(m_root.get(), key.c_str());
}

std::string PropertyList::toXml() const {
    char* raw = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(m_root.get(), &raw, &length);
    const CText text(raw, &std::free);
    return text ? std::string(text.get(), length) : std::string();
}

}  // namespace orrinvale
