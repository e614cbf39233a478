// Volumes of a test's making: any volume, any status, any tree of devices. Read platform/volumes.h
// first.
#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/volumes.h"

namespace orrinvale {

/// One object of a made-up tree of devices.
struct FakeRegistryEntry final : public RegistryEntry {
    std::vector<std::string> classes;  ///< all that it conforms to
    std::optional<bool> whole;         ///< nothing: the property can not be read
    std::shared_ptr<FakeRegistryEntry> parent;

    FakeRegistryEntry(std::vector<std::string> conformsTo, std::optional<bool> isWhole,
                      std::shared_ptr<FakeRegistryEntry> above = nullptr)
        : classes(std::move(conformsTo)), whole(isWhole), parent(std::move(above)) {}

    [[nodiscard]] bool IOObjectConformsTo(std::string_view className) const override {
        for (const std::string& each : classes)
            if (each == className) return true;
        return false;
    }
    [[nodiscard]] std::optional<bool> IORegistryEntryCreateCFProperty(
        std::string_view key) const override {
        return key == "Whole" ? whole : std::nullopt;
    }
};

/// Answers from its public fields. Not to be changed while another thread asks.
class FakeVolumes final : public Volumes {
public:
    struct Volume {
        std::int32_t infoStatus = noErr;
        IndexedVolume volume;
        std::int32_t parmsStatus = noErr;
        GetVolParmsInfoBuffer parms;
    };

    struct Ejection {
        std::int32_t status = noErr;
        EjectDissent dissent;
    };

    /// A volume that is half empty; one that can be ejected is a removable medium.
    [[nodiscard]] static Volume volume(std::int16_t number, const std::string& name,
                                       const std::string& path, bool canEject,
                                       std::uint64_t total = 1000) {
        Volume made;
        made.volume = {number, {total, total / 2}, name, path, 0};
        made.parms = {3, 0, canEject ? 1U << bIsEjectable | 1U << bIsRemovable : 0, "vda"};
        return made;
    }

    std::vector<Volume> volumes;
    std::map<std::int16_t, Ejection>
        ejections;  ///< by reference number; any other volume goes without trouble
    std::vector<std::int16_t> ejectedNumbers;  ///< asked for, in order
    std::function<void(std::int16_t)>
        onEjection;  ///< called when the answer stands; may change `volumes`
    std::map<std::string, std::shared_ptr<FakeRegistryEntry>> devices;  ///< by name
    std::uint32_t iteratorStatus = 0;
    bool hasIterator = true;
    std::vector<std::uint32_t> askedIndexes;
    mutable std::vector<std::string> askedNames;  ///< of devices

    std::int32_t FSGetVolumeInfo(std::uint32_t volumeIndex, IndexedVolume& answer) override {
        askedIndexes.push_back(volumeIndex);
        if (volumeIndex == 0 || volumeIndex > volumes.size()) return nsvErr;
        const Volume& volume = volumes[volumeIndex - 1];
        answer = volume.volume;
        return volume.infoStatus;
    }

    std::int32_t FSGetVolumeParms(std::int16_t refNumber, GetVolParmsInfoBuffer& buffer) override {
        for (const Volume& each : volumes) {
            if (each.volume.refNumber != refNumber) continue;
            buffer = each.parms;
            return each.parmsStatus;
        }
        return nsvErr;
    }

    std::int32_t FSEjectVolumeSync(std::int16_t refNumber, std::uint32_t /*options*/,
                                   EjectDissent& dissent) override {
        ejectedNumbers.push_back(refNumber);
        const bool isListed = std::any_of(volumes.begin(), volumes.end(), [&](const Volume& each) {
            return each.volume.refNumber == refNumber;
        });
        const auto scripted = ejections.find(refNumber);
        const Ejection answer = scripted != ejections.end()
                                    ? scripted->second
                                    : Ejection{isListed ? noErr : nsvErr, {}};
        if (onEjection) onEjection(refNumber);
        dissent = answer.dissent;
        return answer.status;
    }

    [[nodiscard]] std::optional<RegistryMatching> IOBSDNameMatching(
        const char* bsdName) const override {
        askedNames.emplace_back(bsdName);
        if (*bsdName == 0) return std::nullopt;
        return RegistryMatching{bsdName};
    }

    [[nodiscard]] RegistryEntryRef IOServiceGetMatchingService(
        const RegistryMatching& matching) const override {
        const auto found = devices.find(matching.bsdName);
        return found == devices.end() ? nullptr : found->second;
    }

    std::uint32_t IORegistryEntryCreateIterator(
        const RegistryEntry& entry, std::unique_ptr<RegistryIterator>& iterator) const override {
        const auto* const start = dynamic_cast<const FakeRegistryEntry*>(&entry);
        if (hasIterator && start != nullptr) iterator = std::make_unique<Parents>(start->parent);
        return iteratorStatus;
    }

private:
    class Parents final : public RegistryIterator {
    public:
        explicit Parents(std::shared_ptr<FakeRegistryEntry> first) : m_next(std::move(first)) {}
        [[nodiscard]] RegistryEntryRef IOIteratorNext() override {
            auto here = m_next;
            if (here) m_next = here->parent;
            return here;
        }

    private:
        std::shared_ptr<FakeRegistryEntry> m_next;
    };
};

}  // namespace orrinvale
