// ServedFiles: see ServedFiles.h.
#include "support/ServedFiles.h"

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orrinvale::testing {
namespace {

dev_t deviceOf(const std::string& path) {
    struct stat seen {};
    return ::stat(path.c_str(), &seen) == 0 ? seen.st_dev : 0;
}

}  // namespace

ServedFiles::ServedFiles(const std::vector<std::string>& faults) {
    if (::geteuid() != 0 || ::access("/dev/fuse", R_OK | W_OK) != 0 || !m_place.folder("served"))
        return;
    std::vector<std::string> command{ORRINVALE_SERVED_FILES_PROGRAM, path(), m_source.path()};
    command.insert(command.end(), faults.begin(), faults.end());
    m_program = std::make_unique<ServiceProcess>(std::move(command));
    const dev_t own = deviceOf(m_place.path());
    m_isThere = comesTrue([&] {
        const dev_t device = deviceOf(path());
        return device != 0 && device != own;
    });
}

ServedFiles::~ServedFiles() {
    if (m_isThere) ::umount2(path().c_str(), MNT_DETACH);
}

}  // namespace orrinvale::testing
