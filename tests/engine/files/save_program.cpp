// Saves one setting and tells how it went, for a test that makes each system call of the save fail.
// The calls between the two getppid() are the save.
#include <unistd.h>

#include <cstdio>

#include "engine/base/Log.h"
#include "engine/settings/UserDefaults.h"

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    orrinvale::Log::setEnabled(false);
    orrinvale::UserDefaults defaults(argv[1]);
    defaults.setFloat(0.25F, "SpaceAlarm");
    (void)::getppid();
    const auto saved = defaults.synchronize();
    (void)::getppid();
    std::puts(saved ? "saved" : saved.error().reason().c_str());
    return saved ? 0 : 1;
}
