// Volumes and memory that a test changes while another thread looks at them.
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "platform/ForwardingVolumes.h"
#include "platform/fake/FakeVolumes.h"
#include "platform/memory.h"

namespace orrinvale::testing {

/// Volumes that change between two walks and never in one.
class SteadyVolumes final : public ForwardingVolumes {
public:
    SteadyVolumes() : ForwardingVolumes(fake) {}

    std::int32_t FSGetVolumeInfo(std::uint32_t volumeIndex, IndexedVolume& answer) override {
        if (volumeIndex == 1) walk.lock();
        const std::int32_t status = ForwardingVolumes::FSGetVolumeInfo(volumeIndex, answer);
        if (status == nsvErr) {
            ++walks;
            walk.unlock();
        }
        return status;
    }
    std::int32_t FSEjectVolumeSync(std::int16_t refNumber, std::uint32_t options,
                                   EjectDissent& dissent) override {
        std::unique_lock lock(walk);
        const std::int32_t status =
            ForwardingVolumes::FSEjectVolumeSync(refNumber, options, dissent);
        lock.unlock();
        if (onEjection) onEjection();
        return status;
    }
    /// Asked for, in order.
    [[nodiscard]] std::vector<std::int16_t> ejected() {
        const std::lock_guard lock(walk);
        return fake.ejectedNumbers;
    }
    void change(const std::function<void(std::vector<FakeVolumes::Volume>&)>& work) {
        const std::lock_guard lock(walk);
        work(fake.volumes);
    }

    FakeVolumes fake;
    std::mutex walk;  ///< held while somebody walks
    std::atomic<int> walks{0};
    std::function<void()> onEjection;  ///< on the ejection's thread, before it ends
};

/// Volumes of which each answer stands by itself.
class LockedVolumes final : public ForwardingVolumes {
public:
    explicit LockedVolumes(std::vector<FakeVolumes::Volume> standing) : ForwardingVolumes(m_fake) {
        m_fake.volumes = std::move(standing);
    }

    std::int32_t FSGetVolumeInfo(std::uint32_t volumeIndex, IndexedVolume& answer) override {
        const std::lock_guard lock(m_mutex);
        return ForwardingVolumes::FSGetVolumeInfo(volumeIndex, answer);
    }
    std::int32_t FSGetVolumeParms(std::int16_t refNumber, GetVolParmsInfoBuffer& buffer) override {
        const std::lock_guard lock(m_mutex);
        return ForwardingVolumes::FSGetVolumeParms(refNumber, buffer);
    }
    std::int32_t FSEjectVolumeSync(std::int16_t refNumber, std::uint32_t options,
                                   EjectDissent& dissent) override {
        const std::lock_guard lock(m_mutex);
        return ForwardingVolumes::FSEjectVolumeSync(refNumber, options, dissent);
    }
    [[nodiscard]] std::optional<RegistryMatching> IOBSDNameMatching(
        const char* bsdName) const override {
        const std::lock_guard lock(m_mutex);
        return ForwardingVolumes::IOBSDNameMatching(bsdName);
    }
    template <class Work> auto with(Work work) {
        const std::lock_guard lock(m_mutex);
        return work(m_fake);
    }
    /// Asked for, in order.
    [[nodiscard]] std::vector<std::int16_t> ejected() {
        return with([](const FakeVolumes& fake) { return fake.ejectedNumbers; });
    }

private:
    FakeVolumes m_fake;
    mutable std::mutex m_mutex;
};

/// Has a mebibyte more free at each reading.
class CountedMemory final : public Memory {
public:
    [[nodiscard]] SysResult<std::optional<std::uint64_t>> figure(
        std::string_view /*name*/) const override {
        return 4096;
    }
    [[nodiscard]] SysResult<MemoryCounts> counts() const override { return MemoryCounts{}; }
    [[nodiscard]] SysResult<MemoryState> state() const override {
        return MemoryState{static_cast<std::uint64_t>(++readings) << 20U, 0, 0, {}};
    }
    [[nodiscard]] std::uint64_t room() const override { return 0; }
    [[nodiscard]] bool endThisProcessFirst() const override { return false; }

    mutable std::atomic<int> readings{0};
};

}  // namespace orrinvale::testing
