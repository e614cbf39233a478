// PropertyList: a dictionary in the property list format, XML or binary, as bundles, the update
// description and our own resources use it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/error.h"

namespace orrinvale {

/// The largest property list that is read.
inline constexpr std::size_t kPropertyListLimit = std::size_t{1} << 20U;

/// A dictionary with text keys. Values of other kinds than those asked for are kept and written
/// back. Texts are UTF-8 and end at a null byte. An object belongs to one thread.
class PropertyList final {
public:
    PropertyList();
    ~PropertyList();
    PropertyList(PropertyList&& other) noexcept;
    PropertyList& operator=(PropertyList&& other) noexcept;
    PropertyList(const PropertyList&) = delete;
    PropertyList& operator=(const PropertyList&) = delete;

    /// EBADMSG when the bytes are no property list, their outermost value is no dictionary, or they
    /// hold more than 4,096 dictionaries and arrays, which nobody writes but who wants to exhaust
    /// the stack; EFBIG above kPropertyListLimit.
    [[nodiscard]] static Result<PropertyList> parse(std::string_view bytes);

    /// parse() of a file of any owner; no link, pipe or device is followed or waited for.
    [[nodiscard]] static Result<PropertyList> read(const std::string& path);

    [[nodiscard]] std::size_t count() const;
    /// In the order of the file.
    [[nodiscard]] std::vector<std::string> keys() const;
    /// Nothing when the key is missing or no text.
    [[nodiscard]] std::optional<std::string> stringForKey(const std::string& key) const;
    /// A number, a boolean as 0 or 1, or the whole number that a text begins with (0 if none);
    /// nothing when the key is missing or of another kind.
    [[nodiscard]] std::optional<std::int64_t> integerForKey(const std::string& key) const;

    void setString(std::string_view text, const std::string& forKey);
    void removeObjectForKey(const std::string& key);

    [[nodiscard]] std::string toXml() const;

private:
    struct Free {
        void operator()(void* node) const;
    };
    using Node = std::unique_ptr<void, Free>;

    explicit PropertyList(Node root);
    Node m_root;
};

}  // namespace orrinvale
