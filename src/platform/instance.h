// ProgramInstance: one running program a user. The first start becomes it, a later one hands over
// what it was asked for and ends. linux/LinuxInstance.cpp implements it;
// services/lifecycle/StartService.h is the other end.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/StartRequest.h"
#include "platform/descriptor.h"

namespace orrinvale {

/// The name on the session bus, its object and its interface (Desktop Entry, "D-Bus Activation").
inline constexpr const char* programBusName = "com.kelpford.Orrinvale";
inline constexpr const char* programBusPath = "/com/kelpford/Orrinvale";
inline constexpr const char* programBusInterface = "org.freedesktop.Application";

/// A lock file with the process id decides who is first: the kernel lets go of it however a process
/// ends, and two that start at the same moment can not both have it. What a later start wants goes
/// over the session bus, and through a socket beside the lock where there is no bus. One thread.
class ProgramInstance final {
public:
    enum class Start : std::uint8_t {
        First,       ///< this process is the program now, until the object ends
        HandedOver,  ///< the running one has taken the request over
        Unanswered,  ///< the running one has been told, and has not answered within the time
        NoWay,       ///< somebody holds the lock, and nobody can be told
    };

    /// `folder` holds the lock and the socket; it is made where it is missing. Where no lock can be
    /// made at all, a full disk for instance, every start is the first.
    explicit ProgramInstance(std::string folder = folderOfUser());
    ~ProgramInstance();
    ProgramInstance(const ProgramInstance&) = delete;
    ProgramInstance& operator=(const ProgramInstance&) = delete;

    /// Waits no longer than `patience` altogether, whoever does not answer.
    [[nodiscard]] Start begin(const StartRequest& request,
                              std::chrono::milliseconds patience = std::chrono::seconds(1));

    /// Whether begin() found a session bus that answers. Who connects to one that hangs, hangs with
    /// it.
    [[nodiscard]] bool hasSessionBus() const { return m_hasSessionBus; }

    /// Of the process that holds the lock, as the file has it; 0 when it says nothing. After
    /// begin().
    [[nodiscard]] int holder() const { return m_holder; }

    /// Readable when somebody sent a request through the socket; -1 when this is not the first.
    [[nodiscard]] int descriptor() const { return m_socket.get(); }

    /// The next request from a process of this user; never waits.
    [[nodiscard]] std::optional<StartRequest> receive() const;

    /// From now on nobody reaches this process through the socket. The lock stays until the object
    /// ends.
    void stopListening();

    /// The user's runtime folder ($XDG_RUNTIME_DIR or /run/user/UID, where it is the user's), else
    /// the folder of the settings.
    [[nodiscard]] static std::string folderOfUser();

private:
    [[nodiscard]] bool takeLock();
    void listen();
    [[nodiscard]] std::optional<Start> handOverThroughSocket(
        const StartRequest& request, std::chrono::milliseconds patience) const;
    [[nodiscard]] std::string socketAddress() const;

    const std::string m_folder;
    Descriptor m_folderHandle;
    Descriptor m_lock;
    Descriptor m_socket;
    int m_holder = 0;
    bool m_hasSessionBus = false;
};

/// How a hand-over on the session bus went.
struct BusHandOver {
    bool isBusThere = false;                     ///< it has greeted us; one that hangs has not
    std::optional<ProgramInstance::Start> told;  ///< nothing where nobody could be told
};

/// Hands a request to the program of that name on the session bus. Never starts a program. Within
/// `patience`, less than half a second of it for a bus that does not even greet, so that there is
/// time for another way.
[[nodiscard]] BusHandOver handOverBySessionBus(const StartRequest& request,
                                               std::chrono::milliseconds patience);

}  // namespace orrinvale
