// failureWords: why something was left alone, in the language of the window.
#pragma once

#include <QString>
#include <string>

namespace orrinvale {

/// What the engine, the platform or the C library says of a failure, in English so that a log reads
/// the same on every desktop, as the window says it. Words that nobody here knows, such as those of
/// a service or of a tool, stay as they are.
[[nodiscard]] QString inWords(const std::string& reason);

}  // namespace orrinvale
