// IconRequest: a picture wanted for a row. The engine knows no pictures; the screen draws one from
// this when it shows the row.
#pragma once

#include <string>

namespace orrinvale {

struct IconRequest {
    enum Kind {
        Path,      ///< the picture of the file or folder at this path (exact bytes)
        BareName,  ///< the picture of what bears this name, wherever it lies
        FileType,  ///< the picture of all files with this extension
    };
    Kind kind = Path;
    std::string text;
    friend bool operator==(const IconRequest&, const IconRequest&) = default;
};

}  // namespace orrinvale
