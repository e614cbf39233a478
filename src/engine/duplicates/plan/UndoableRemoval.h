// UndoableRemoval: a removal to the trash that is noted before anything of it moves.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "engine/duplicates/plan/DuplicatePlan.h"
#include "engine/removal/RemovalList.h"

namespace orrinvale {

/// A list around another one: what moves can be undone by PlanHistory, and where it can not be
/// noted nothing goes. Once the job has ended the list is read on the thread that began it.
class UndoableRemoval final : public RemovalList {
public:
    /// `plan` is called on the removing thread, right after the list's own prepare(): what goes, as
    /// a plan. After the stop it need not be whole. The file system outlives the list.
    using MakePlan = std::function<DuplicatePlan(const std::atomic<bool>& stop)>;
    UndoableRemoval(const FileSystem& files, std::string stateFolder,
                    std::shared_ptr<RemovalList> list, MakePlan plan);

    /// What undoes it; empty where nothing is to be undone.
    [[nodiscard]] const std::string& undoId() const { return m_isAnyAway ? m_id : m_none; }

    /// Once the job has ended: what moved nothing is no removal that could be undone, and one that
    /// did may be forgotten from here on. Asks the disk.
    void forgetUnused();

    void listenTo(const std::atomic<bool>& stop) override;
    void prepare() override;
    void turnHasCome() override;
    [[nodiscard]] std::size_t size() const override { return m_list->size(); }
    [[nodiscard]] std::string path(std::size_t index) const override { return m_list->path(index); }
    [[nodiscard]] std::optional<EntryIdentity> identity(std::size_t index) const override {
        return m_list->identity(index);
    }
    [[nodiscard]] std::uint64_t bytes(std::size_t index) const override {
        return m_list->bytes(index);
    }
    [[nodiscard]] std::shared_ptr<const SeenEntries> seen(std::size_t index) override {
        return m_list->seen(index);
    }
    [[nodiscard]] AskWriters asksWriters(std::size_t index) const override {
        return m_list->asksWriters(index);
    }
    [[nodiscard]] bool isCopy(std::size_t index) const override { return m_list->isCopy(index); }
    [[nodiscard]] tl::expected<std::unique_ptr<CopyLook>, StayedEntry> judge(
        std::size_t index) override;
    void settled(std::size_t index, const RemovalResult& result) override;

private:
    const FileSystem& m_files;
    const std::string m_stateFolder;
    const std::shared_ptr<RemovalList> m_list;
    MakePlan m_makePlan;
    static constexpr std::atomic<bool> never{false};
    const std::atomic<bool>* m_stop = &never;
    DuplicatePlan m_plan;
    std::string m_id;
    Descriptor m_held;  // the note, while the removal runs
    const std::string m_none;
    bool m_isAnyAway = false;
};

}  // namespace orrinvale
