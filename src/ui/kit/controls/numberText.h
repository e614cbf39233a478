// numberText: numbers that the engine has put into words, as the language of the window writes
// them.
#pragma once

#include <QString>
#include <string>

namespace orrinvale {

/// A size such as "1.25 MB" with the decimal sign of the window's language. Not that of the
/// desktop's locale: the words around it are English wherever there is no translation.
[[nodiscard]] QString shownSize(const std::string& size);

/// A number such as "88.9", in hundredths, likewise, with its sign.
[[nodiscard]] QString shownPercent(const QString& number);

}  // namespace orrinvale
