// The functions are declared here, with the plain types that they come down to, since headers of
// the library would be wanted for five calls of a stable interface.
#include "platform/linux/FlatpakLibrary.h"

#include <chrono>
#include <memory>
#include <stop_token>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

#include "platform/linux/LoadedLibrary.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

// As GLib lays it out.
struct GError {
    std::uint32_t domain;
    int code;
    char* message;
};

struct Library {
    void* (*fileForPath)(const char* path) = nullptr;
    void (*unref)(void* object) = nullptr;
    void* (*newCancellable)() = nullptr;
    void (*cancel)(void* cancellable) = nullptr;
    void (*freeError)(GError* error) = nullptr;
    void* (*installationFor)(void* folder, int isPersons, void* cancellable,
                             GError** error) = nullptr;
    int (*uninstall)(void* installation, int kind, const char* name, const char* arch,
                     const char* branch, void* progress, void* data, void* cancellable,
                     GError** error) = nullptr;
    bool isWhole = false;
};

// What it needs of GLib comes with it.
Library loadSymbol() {
    Library out;
    LoadedLibrary library("libflatpak.so.0");
    library.find(out.fileForPath, "g_file_new_for_path");
    library.find(out.unref, "g_object_unref");
    library.find(out.newCancellable, "g_cancellable_new");
    library.find(out.cancel, "g_cancellable_cancel");
    library.find(out.freeError, "g_error_free");
    library.find(out.installationFor, "flatpak_installation_new_for_path");
    library.find(out.uninstall, "flatpak_installation_uninstall");
    out.isWhole = library.isWhole();
    return out;
}

const Library& library() {
    static const Library loaded = loadSymbol();
    return loaded;
}

class Failure final {
public:
    Failure() = default;
    ~Failure() {
        if (m_error != nullptr && library().freeError != nullptr) library().freeError(m_error);
    }
    Failure(const Failure&) = delete;
    Failure& operator=(const Failure&) = delete;
    [[nodiscard]] GError** get() { return &m_error; }
    [[nodiscard]] tl::unexpected<std::string> words() const {
        return tl::unexpected(flatpakReason(
            m_error != nullptr && m_error->message != nullptr ? m_error->message : ""));
    }

private:
    GError* m_error = nullptr;
};

// Passes the flag on until it is asked to end. Without a thread nobody can stop.
std::jthread watched(void* cancellable, const std::atomic<bool>& stop) {
    try {
        return std::jthread([cancellable, &stop](const std::stop_token& isOver) {
            constexpr std::chrono::milliseconds pause(50);
            while (!isOver.stop_requested() && !stop) std::this_thread::sleep_for(pause);
            if (!isOver.stop_requested()) library().cancel(cancellable);
        });
    } catch (const std::system_error&) {
        return {};
    }
}

}  // namespace

// Its service says the same of a password that was dismissed and of a person who has no right.
std::string flatpakReason(std::string_view words) {
    if (words.empty()) return "flatpak gave no reason";
    for (const std::string_view known : {"not allowed for user", "Error.AccessDenied"})
        if (words.find(known) != std::string_view::npos)
            return "The password was not given, or the system does not allow it";
    return std::string(words);
}

bool hasFlatpakLibrary() { return library().isWhole; }

tl::expected<void, std::string> removeFlatpak(const std::string& installation, bool isPersons,
                                              const std::string& ref,
                                              const std::atomic<bool>& stop) {
    const auto release = [](void* object) { library().unref(object); };
    using Object = std::unique_ptr<void, decltype(release)>;
    std::vector<std::string> fields;
    for (std::string_view rest = ref; fields.size() < 4;) fields.emplace_back(nextComponent(rest));
    const Object folder(library().fileForPath(installation.c_str()), release);
    Failure failure;
    const Object opened(
        library().installationFor(folder.get(), isPersons ? 1 : 0, nullptr, failure.get()),
        release);
    if (!opened) return failure.words();
    const Object cancellable(library().newCancellable(), release);
    const std::jthread watcher = watched(cancellable.get(), stop);
    constexpr int application = 0;
    if (library().uninstall(opened.get(), application, fields[1].c_str(), fields[2].c_str(),
                            fields[3].c_str(), nullptr, nullptr, cancellable.get(),
                            failure.get()) == 0)
        return stop ? tl::unexpected(std::string("stopped")) : failure.words();
    return {};
}

}  // namespace orrinvale
