// ProgramLog: the log of the window program: its file, and what the toolkit has to say.
#pragma once

#include "platform/systemValues.h"
#include "platform/volumes.h"

namespace orrinvale {

/// From now on the toolkit's messages are lines of the log. `system` and `volumes` are for the
/// report at the head of a log file; both are never freed.
void beginProgramLog(const SystemValues& system, Volumes& volumes);

/// Opens the log file or closes it, so that it is as wanted; a failure is told where the lines go
/// then. Any thread; waits for the disk.
void keepLogFile(bool isWanted);

}  // namespace orrinvale
