#include "engine/settings/KeyedArchive.h"

#include <utility>

namespace orrinvale {

Result<KeyedArchive> KeyedArchive::withData(std::string_view bytes) {
    auto texts = PropertyList::parse(bytes);
    if (!texts) return tl::unexpected(std::move(texts.error()));
    return KeyedArchive(std::move(*texts));
}

}  // namespace orrinvale
