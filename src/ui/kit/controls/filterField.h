// filterField: the field in the bar of a page by which a person filters its list.
#pragma once

#include <QString>

class QLineEdit;

namespace orrinvale {

/// Empty, with a button that empties it. Its object name is "filterField"; `purpose` is for screen
/// readers. It gives up a part of its width to a title beside it.
[[nodiscard]] QLineEdit* makeFilterField(const QString& purpose);

}  // namespace orrinvale
