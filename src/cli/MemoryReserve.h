// MemoryReserve: what is given up when memory runs out, so that a command can still end its work
// and print what it has found.
#pragma once

namespace orrinvale::cli {

/// From here on the first allocation that fails frees the reserve, calls the shortage handler, and
/// is tried again. Later ones wait for others to free something, half a second in all; then the
/// process says in a sentence what is missing and ends with status 1, as it does at any exception
/// for want of memory or threads that nobody catches. Once, before other threads start.
void keepMemoryReserve();

/// True once an allocation has failed.
[[nodiscard]] bool hasMemoryRunShort();

/// Called once, on the thread whose allocation failed, with whatever locks it holds: it may do no
/// more than a signal handler. Null takes it back.
void setShortageHandler(void (*handler)());

}  // namespace orrinvale::cli
