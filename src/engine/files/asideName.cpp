#include "engine/files/asideName.h"

#include <algorithm>

#include "engine/files/shortenedName.h"

namespace orrinvale {

std::string asideName(std::string_view token, std::string_view name) {
    std::string front(asideMark);
    (front += token) += ' ';
    return front + shortenedName(name, {}, longestName - front.size());
}

bool isAsideName(std::string_view name) {
    if (!name.starts_with(asideMark)) return false;
    name.remove_prefix(asideMark.size());
    const auto isHexadecimal = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
    };
    return name.size() > asideTokenLength && name[asideTokenLength] == ' ' &&
           std::all_of(name.begin(), name.begin() + asideTokenLength, isHexadecimal);
}

}  // namespace orrinvale
