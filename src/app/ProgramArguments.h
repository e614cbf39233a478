// ProgramArguments: the command line of the window program. Without the toolkit, so that what needs
// no window loads none.
#pragma once

#include <string>

#include "platform/StartRequest.h"
#include "platform/fileTypes.h"

namespace orrinvale {

struct ProgramArguments {
    StartRequest request;
    std::string toPrint;  ///< on standard output, and that is all: --help, --version
    std::string
        fault;  ///< what is wrong with the command line, in one sentence; empty when nothing is
};

/// A folder is given by its path, whether relative or not, or by a "file:" address; it must be
/// there. The activation token comes from the environment, where the desktop puts it
/// (XDG_ACTIVATION_TOKEN, DESKTOP_STARTUP_ID).
[[nodiscard]] ProgramArguments programArguments(int argc, char** argv, const FileSystem& files);

}  // namespace orrinvale
