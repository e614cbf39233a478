// closeWindows: asks the windows of an application to close, as the cross in their title bars does.
#pragma once

namespace orrinvale {

struct ApplicationRecord;

/// True when any window of it was asked: it may then ask its person what to save, and stay. False
/// where none is found, as none of another program can be under Wayland; nothing is ended by force.
/// Of programs whose starter has started another one the windows are not found. Waits for the X
/// server; any thread.
[[nodiscard]] bool closeWindowsOf(const ApplicationRecord& record);

}  // namespace orrinvale
