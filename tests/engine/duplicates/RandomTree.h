// A tree in which folders and files are equal now and then, for the tests of equal folders.
#pragma once

#include <array>
#include <filesystem>
#include <random>

#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale::testing {

class RandomTree {
public:
    RandomTree(TestTree& tree, unsigned seed) : m_tree(tree), m_random(seed) {}

    void fill(const std::string& folder, int depth) {
        static const std::array names{"a",    "b.jpg", ".h",  "left", "c.txt",
                                      "\xFF", "\xFE",  "x y", "d",    ".k"};
        const unsigned count = pick(4) + 1;
        m_tree.folder(folder);
        for (unsigned i = 0; i < count; ++i) {
            const std::string path = folder + '/' + names.at(pick(names.size()));
            if (testing::isThere(m_tree.at(path))) continue;
            const unsigned what = pick(10);
            if (depth > 0 && what < 3) fill(path, depth - 1);
            else if (depth > 0 && what < 7 && !m_folders.empty()) copy(path);
            else if (what == 7) m_tree.symlink(pick(2) == 0 ? "to" : "otherwhere", path);
            else if (what == 8 && pick(4) == 0) m_tree.fifo(path);
            else m_tree.write(path, someBytes(pick(3) * 4, pick(2)));
        }
        m_folders.push_back(folder);
    }

private:
    unsigned pick(std::size_t below) { return static_cast<unsigned>(m_random() % below); }

    // Now and then with one change.
    void copy(const std::string& path) {
        const std::string from = m_folders[pick(m_folders.size())];
        if ((path + '/').starts_with(from + '/')) return;
        std::error_code ignored;  // a pipe is not copied
        std::filesystem::copy(
            m_tree.at(from), m_tree.at(path),
            std::filesystem::copy_options::recursive | std::filesystem::copy_options::copy_symlinks,
            ignored);
        if (pick(3) == 0) m_tree.write(path + "/.late", someBytes(pick(2), 1));
        m_folders.push_back(path);
    }

    TestTree& m_tree;
    std::mt19937 m_random;
    Strings m_folders;
};

}  // namespace orrinvale::testing
