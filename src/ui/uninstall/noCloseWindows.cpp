// closeWindows where the program was built without xcb.
#include "ui/uninstall/closeWindows.h"

namespace orrinvale {

bool closeWindowsOf(const ApplicationRecord& /*record*/) { return false; }

}  // namespace orrinvale
