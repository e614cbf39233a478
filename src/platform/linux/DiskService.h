// The desktop's disk service, UDisks2, as far as ejecting needs it. LinuxVolumesEjection.h asks it;
// EjectionPlan.h makes sense of its objects.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <tl/expected.hpp>
#include <vector>

#include "platform/linux/BusHandles.h"

namespace orrinvale {

/// One object of the service: a block device, or a drive. Fields of interfaces that it does not
/// have keep these values; a path that leads to no object is empty.
struct DiskObject {
    std::string path;  ///< on the bus

    bool isBlock = false;
    std::uint64_t number = 0;  ///< of the device, as makedev(3) makes it
    std::string node;          ///< "/dev/sdb1"
    std::string drive;         ///< the drive that it lies on
    std::string locked;        ///< the encrypted device that it shows unlocked
    std::string table;         ///< the whole device that it is a partition of
    std::vector<std::string> mountPoints;
    std::string unlocked;  ///< the device that shows this encrypted one unlocked
    bool isLoop = false;
    bool isActiveSwap = false;

    bool isDrive = false;
    bool canEject = false;
    bool canPowerOff = false;
    bool isOptical = false;
    std::string
        siblings;  ///< the same for drives that one plug holds, such as the slots of a card reader
};

struct DiskServiceFailure {
    enum class Kind : std::uint8_t {
        Unreachable,  ///< no bus, no service, or no answer in time
        Gone,         ///< the object is not there any more
        NotMounted,
        Busy,
        Other  ///< not authorised, an error of the medium
    };
    Kind kind = Kind::Other;
    std::string reason;  ///< a sentence for people, the service's own where it gave one
};

template <class T> using DiskServiceResult = tl::expected<T, DiskServiceFailure>;

/// A connection to the service. One thread.
class DiskService final {
public:
    /// Connects to the system bus and takes all objects of the service, which is started where it
    /// can be. `patience` is for all of this together.
    [[nodiscard]] static DiskServiceResult<DiskService> open(std::chrono::milliseconds patience);

    [[nodiscard]] const std::vector<DiskObject>& objects() const { return m_objects; }

    /// Calls an operation that takes nothing but options, and gives it none. It may ask the person
    /// for the right, and take as long as a slow medium needs, ten minutes at most.
    [[nodiscard]] DiskServiceResult<void> call(const std::string& path, const char* interface,
                                               const char* operation);

private:
    explicit DiskService(BusHandle bus) : m_bus(std::move(bus)) {}

    BusHandle m_bus;
    std::vector<DiskObject> m_objects;
};

}  // namespace orrinvale
