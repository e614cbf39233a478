// The race that a removal by paths loses: a folder of the tree is exchanged for a link to somebody
// else's folder while the removal runs. First at every single step, then by a thread, 20,000
// rounds, beside a removal by paths that shows that the race is real.
#include <dirent.h>

#include "engine/files/SafeRemoval.h"
#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using RacedRemoval =
    std::function<void(const std::string& path, const std::optional<EntryIdentity>& expected)>;

// What many programs do: each step by a path, which is resolved anew.
void removeByPaths(const std::string& path, const std::optional<EntryIdentity>& expected) {
    struct stat seen {};
    if (::lstat(path.c_str(), &seen) != 0) return;
    if (!S_ISDIR(seen.st_mode)) {
        ::unlink(path.c_str());
        return;
    }
    std::this_thread::yield();  // so that it loses soon, also where there is one processor for both
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir(path.c_str()), &::closedir);
    while (const dirent* entry = folder ? ::readdir(folder.get()) : nullptr)
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
            removeByPaths(path + '/' + entry->d_name, expected);
    ::rmdir(path.c_str());
}

void removeSafely(const std::string& path, const std::optional<EntryIdentity>& expected) {
    (void)SafeRemoval(files, nothingProtected).remove(path, expected);
}

// Now and then lets other threads go first in the middle, so that the two meet on a busy machine as
// well.
void removeSafelyWithPauses(const std::string& path, const std::optional<EntryIdentity>& expected) {
    static int s_round = 0;
    if (++s_round % 16 != 0) return removeSafely(path, expected);
    WatchedFiles watched;
    int step = 0;
    watched.beforeRemoval = [&](const char*) {
        if (step++ == s_round / 16 % 20) std::this_thread::yield();
    };
    (void)SafeRemoval(watched, nothingProtected).remove(path, expected);
}

// "tree/swapped" is what gets exchanged for "out", a link to "victim"; both lead to folders of the
// same shape.
class RaceArena {
public:
    RaceArena()
        : m_tree("/dev/shm"),
          m_base(::open(m_tree.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {}

    // The tree comes to its place whole, since the swapping thread does not wait for it.
    void prepare() {
        for (const char* folder : {"victim", "staging/swapped"}) {
            for (const char* inner : {"", "/inner"}) make(std::string(folder) + inner);
            for (const char* file : s_names) put(std::string(folder) + file);
        }
        // Relative, as it is to be read in the tree: on its way an absolute one would leave the
        // mount, which is refused by itself.
        while (::symlinkat("../victim", m_base.get(), "out") != 0) removeSafely(at("out"), {});
    }
    void setUp() { ::renameat(m_base.get(), "staging", m_base.get(), "tree"); }

    // True when it was exchanged; not when one of the two is gone.
    bool swap() {
        return ::renameat2(m_base.get(), "tree/swapped", m_base.get(), "out", RENAME_EXCHANGE) == 0;
    }

    int lost() {
        int count = 0;
        for (const char* file : s_names)
            if (::faccessat(m_base.get(), (std::string("victim") + file).c_str(), F_OK,
                            AT_SYMLINK_NOFOLLOW) != 0)
                ++count;
        return count;
    }

    // What the removal left behind, and what was swapped out of its reach.
    void clean() {
        ::renameat(m_base.get(), "tree", m_base.get(), "junk");
        removeSafely(at("out"), {});
        removeSafely(at("junk"), {});
    }

    [[nodiscard]] std::string at(const std::string& name) const { return m_tree.at(name); }

private:
    static constexpr std::array<const char*, 4> s_names{"/1", "/2", "/inner/3", "/inner/4"};

    void make(const std::string& name) {
        ::mkdirat(m_base.get(), name.substr(0, name.find('/')).c_str(), 0755);
        ::mkdirat(m_base.get(), name.c_str(), 0755);
    }
    void put(const std::string& name) {
        const Descriptor file(
            ::openat(m_base.get(), name.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
    }
    TestTree m_tree;
    Descriptor m_base;
};

struct Case {
    const char*
        chosen;  // the tree holds what is swapped, or what is swapped holds the chosen folder
    bool withIdentity;
};
constexpr std::array<Case, 3> cases{
    {{"tree", false}, {"tree/swapped", true}, {"tree/swapped/inner", true}}};

std::optional<EntryIdentity> identityFor(const RaceArena& arena, const Case& chosen) {
    if (!chosen.withIdentity) return std::nullopt;
    return EntryIdentity::of(attributesOf(arena.at("staging" + std::string(chosen.chosen + 4))));
}

TEST(SafeRemovalRace, aLinkPutInPlaceAtAnyStepLeadsNowhere) {
    for (const Case& chosen : cases) {
        int step = 0;
        bool swapped = true;
        for (int at = 1; swapped; at += 1) {  // until the removal has fewer steps than that
            RaceArena arena;
            arena.prepare();
            const auto expected = identityFor(arena, chosen);
            arena.setUp();
            WatchedFiles watched;
            step = 0;
            swapped = false;
            watched.beforeRemoval = [&](const char*) {
                if (++step == at) swapped = arena.swap() || step < 100;
            };
            const auto result =
                SafeRemoval(watched, nothingProtected).remove(arena.at(chosen.chosen), expected);
            EXPECT_EQ(arena.lost(), 0) << chosen.chosen << " at step " << at;
            EXPECT_LE(result.failed, 1U);
        }
        EXPECT_GT(step, 5) << chosen.chosen;
    }
}

struct Outcome {
    int rounds = 0;
    int met = 0;   // rounds in which an exchange happened between begin and end of the removal
    int lost = 0;  // entries of the victim
};

Outcome race(const RacedRemoval& removal, int rounds, bool untilLost) {
    Outcome outcome;
    RaceArena arena;
    std::atomic<int> swaps{0};
    const std::jthread swapper([&](const std::stop_token& ended) {
        while (!ended.stop_requested())
            if (arena.swap()) ++swaps;
    });
    for (; outcome.rounds < rounds && !(untilLost && outcome.lost > 0); ++outcome.rounds) {
        const Case& chosen = cases.at(static_cast<std::size_t>(outcome.rounds) % cases.size());
        arena.prepare();
        const auto expected = identityFor(arena, chosen);
        arena.setUp();
        const int before = swaps;
        removal(arena.at(chosen.chosen), expected);
        if (swaps != before) ++outcome.met;
        outcome.lost += arena.lost();
        arena.clean();
    }
    return outcome;
}

TEST(SafeRemovalRace, aThreadThatSwapsFoldersForLinksTakesNoVictim) {
    constexpr int rounds = 20'000;
    const Outcome naive = race(&removeByPaths, rounds, true);
    EXPECT_GT(naive.lost, 0) << "the race of this test is none";
    const Outcome safe = race(&removeSafelyWithPauses, rounds, false);
    EXPECT_EQ(safe.lost, 0);
    EXPECT_GT(safe.met, rounds / 100);
    RecordProperty("rounds met", safe.met);
    RecordProperty("rounds until a removal by paths lost a victim", naive.rounds);
}

}  // namespace
}  // namespace orrinvale
