// LoadedLibrary: a library that is looked for when it is first wanted, so that programs start
// without it.
#pragma once

#include <dlfcn.h>

#include <type_traits>

namespace orrinvale {

/// Never unloaded: its functions may be kept.
class LoadedLibrary final {
public:
    explicit LoadedLibrary(const char* name)
        : m_handle(::dlopen(name, RTLD_NOW | RTLD_LOCAL)), m_isWhole(m_handle != nullptr) {}

    /// Sets a pointer to a function, null where the library lacks it.
    template <class Function> void find(Function*& function, const char* name) {
        function =
            m_handle == nullptr ? nullptr : reinterpret_cast<Function*>(::dlsym(m_handle, name));
        m_isWhole = m_isWhole && function != nullptr;
    }

    /// It is there, with all that was looked for so far.
    [[nodiscard]] bool isWhole() const { return m_isWhole; }

private:
    void* const m_handle;
    bool m_isWhole;
};

}  // namespace orrinvale
