// A check on a file system of a kind that this machine need not have.
#pragma once

#include "support/test.h"

namespace orrinvale::testing {

/// withOwnMounts() with a disk image of 400 MB in place of the tmpfs, made by `make` and mounted as
/// `type`; the tree is a folder on it. Skipped where one of the two can not be had.
inline void withImage(const std::string& make, const char* type,
                      const std::function<std::string(TestTree& tree)>& check) {
    TestTree place;
    if (!place.sparse("image", 400ULL << 20U)) GTEST_SKIP() << "no image";
    if (std::system((make + " " + place.at("image") + " >/dev/null 2>&1").c_str()) != 0)
        GTEST_SKIP() << "no " << make;
    withOwnMounts([&]() -> std::string {
        const std::string mount =
            "mount -t " + std::string(type) + " -o loop " + place.at("image") + " /mnt 2>/dev/null";
        if (std::system(mount.c_str()) != 0)
            return "skip: " + std::string(type) + " can not be mounted here";
        std::string said;
        {
            TestTree tree("/mnt");
            said = check(tree);
        }
        (void)!std::system("umount /mnt");
        return said;
    });
}

}  // namespace orrinvale::testing
