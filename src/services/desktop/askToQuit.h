// askToQuit: asks a program of the desktop to end by its own action, as its menu would.
#pragma once

#include <string>

namespace orrinvale {

/// `id`: of its desktop entry, without ".desktop". True when it was asked: it may then ask its
/// person what to save, and stay. False where it does not run under that name or has no such
/// action; nothing is started, and nothing is ended by force. Waits for answers, a second at most
/// each; any thread.
[[nodiscard]] bool askToQuit(const std::string& id);

}  // namespace orrinvale
