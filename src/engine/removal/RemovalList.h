// RemovalList: what is to go, fixed when a person confirms, with the rules of the page that it
// comes from. RemovalJob.h works through it.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <tl/expected.hpp>

#include "engine/files/EntryIdentity.h"
#include "engine/files/RemovalResult.h"
#include "engine/files/writers.h"
#include "engine/removal/CopyLook.h"

namespace orrinvale {

class SeenEntries;

/// Made by the page; from the start of a job to its end the removing thread's alone.
class RemovalList {
public:
    virtual ~RemovalList() = default;

    /// On the removing thread, before anything else: where a stop shows, which what takes long
    /// looks at. It lives until the job has ended; a list around another one tells that too.
    virtual void listenTo(const std::atomic<bool>& /*stop*/) {}

    /// On the removing thread, right after that: what takes time to make.
    virtual void prepare() {}

    /// On the removing thread, once it is this removal's turn, for which it may have waited for
    /// minutes: what has to be of this moment. size() may change by it, and not from then on.
    virtual void turnHasCome() {}

    [[nodiscard]] virtual std::size_t size() const = 0;
    /// Absolute, exact bytes.
    [[nodiscard]] virtual std::string path(std::size_t index) const = 0;
    /// What the scan saw; nothing where no scan did.
    [[nodiscard]] virtual std::optional<EntryIdentity> identity(std::size_t index) const = 0;
    /// What goes with the entry, in bytes, as the page counts it, for where the removal itself does
    /// not count (RemovalResult::bytes).
    [[nodiscard]] virtual std::uint64_t bytes(std::size_t index) const = 0;

    /// What the scan saw below a folder, which alone goes with it; nullptr: all goes.
    [[nodiscard]] virtual std::shared_ptr<const SeenEntries> seen(std::size_t /*index*/) {
        return nullptr;
    }

    /// Which of the files that go with the entry stay while a program writes to them.
    [[nodiscard]] virtual AskWriters asksWriters(std::size_t /*index*/) const {
        return AskWriters::OfNone;
    }

    /// Whether the entry is a copy, which is set aside and looked at with the one that stays.
    [[nodiscard]] virtual bool isCopy(std::size_t /*index*/) const { return false; }

    /// What the page has against the removal at this moment, or how a copy goes; nullptr for what
    /// is none. What it has against an entry after a stop is not told.
    [[nodiscard]] virtual tl::expected<std::unique_ptr<CopyLook>, StayedEntry> judge(
        std::size_t /*index*/) {
        return nullptr;
    }

    /// What became of the entry. After a stop the entries that nobody came to are not told.
    virtual void settled(std::size_t /*index*/, const RemovalResult& /*result*/) {}

protected:
    RemovalList() = default;
    RemovalList(const RemovalList&) = default;
    RemovalList& operator=(const RemovalList&) = default;
};

}  // namespace orrinvale
