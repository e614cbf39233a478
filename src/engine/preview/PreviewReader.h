// PreviewReader: a look at one entry of a disk. Who made its bytes is not known, so that another
// program decodes them, one for each look, within bounds that the kernel keeps.
#pragma once

#include <chrono>
#include <cstdint>
#include <stop_token>
#include <string>

#include "engine/preview/PreviewAnswer.h"
#include "platform/fileTypes.h"

namespace orrinvale {

struct Preview {
    /// 0, or the errno value with which the entry could not be found, or, where `attributes` hold,
    /// not be opened.
    int error = 0;
    FileAttributes attributes;  ///< of a link the link's
    PreviewAnswer answer;       ///< of regular files
};

/// Outlives no reading of its own. Any thread.
class PreviewReader final {
public:
    /// `program` is the path of orrinvale-preview; with an empty one nothing is ever looked into.
    PreviewReader(const FileSystem& files, std::string program)
        : m_files(files), m_program(std::move(program)) {}

    /// Of a picture at most `side` pixels a side. Opens regular files only, without waiting for a
    /// pipe or a device, and follows no link at the end of the path. Returns within patience, but
    /// where the disk itself does not answer, and soon when it is told to stop.
    [[nodiscard]] Preview read(const std::string& path, std::uint32_t side,
                               const std::stop_token& stop) const;

    /// The same of a regular file that is open for reading.
    [[nodiscard]] static PreviewAnswer look(const std::string& program, int file,
                                            std::uint32_t side, const std::stop_token& stop);

    static constexpr std::chrono::milliseconds patience{2000};
    static constexpr const char* programName = "orrinvale-preview";

private:
    const FileSystem& m_files;
    const std::string m_program;
};

}  // namespace orrinvale
