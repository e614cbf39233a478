// KeyedArchive: the texts of a record by key, as the bytes of a property list.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "engine/settings/PropertyList.h"
#include "platform/error.h"

namespace orrinvale {

/// Belongs to one thread.
class KeyedArchive final {
public:
    KeyedArchive() = default;
    /// From what data() gave; an error when the bytes are no property list.
    [[nodiscard]] static Result<KeyedArchive> withData(std::string_view bytes);

    void encodeObject(std::string_view text, const char* forKey) {
        m_texts.setString(text, forKey);
    }
    [[nodiscard]] std::optional<std::string> decodeObjectForKey(const char* key) const {
        return m_texts.stringForKey(key);
    }
    [[nodiscard]] std::string data() const { return m_texts.toXml(); }

private:
    explicit KeyedArchive(PropertyList texts) : m_texts(std::move(texts)) {}
    PropertyList m_texts;
};

}  // namespace orrinvale
