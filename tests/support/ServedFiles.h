// A folder served by FUSE, with the faults that a test wants: what slow, broken and forgetful file
// systems do.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "support/ServiceProcess.h"
#include "support/TestTree.h"

namespace orrinvale::testing {

/// Serves what is in source() at path() from its construction to its destruction. The faults are
/// those that served_files_program.cpp lists.
class ServedFiles final {
public:
    explicit ServedFiles(const std::vector<std::string>& faults);
    ~ServedFiles();
    ServedFiles(const ServedFiles&) = delete;
    ServedFiles& operator=(const ServedFiles&) = delete;

    /// False where this machine has no FUSE, or does not let this user mount: skip the test then.
    [[nodiscard]] bool isThere() const { return m_isThere; }

    /// Ends the server: whoever waits for an answer gets an error.
    void end() { m_program->end(); }

    /// Where files are put without the faults.
    [[nodiscard]] TestTree& source() { return m_source; }
    [[nodiscard]] std::string path() const { return m_place.at("served"); }
    [[nodiscard]] std::string at(std::string_view name) const {
        return path() + '/' + std::string(name);
    }

private:
    TestTree m_source;
    TestTree m_place;
    std::unique_ptr<ServiceProcess> m_program;
    bool m_isThere = false;
};

}  // namespace orrinvale::testing
