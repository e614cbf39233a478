// PropertyListGuard: looks over the bytes of a property list before they are parsed.
#pragma once

#include <string_view>

namespace orrinvale {

/// False for bytes that would end a process that parses them: a text with a null byte (libplist 2.2
/// asserts that there is none), or what exhausts the stack or the memory: more than 4,096
/// dictionaries and arrays (a parser frees nested ones by recursion), or a binary list that names
/// one of them twice, or long texts many times, by which a few bytes can unfold without end. True
/// says nothing about whether the bytes can be parsed.
[[nodiscard]] bool isHarmlessPropertyList(std::string_view bytes);

}  // namespace orrinvale
