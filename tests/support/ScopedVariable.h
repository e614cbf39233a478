// An environment variable that is another one for a while.
#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

namespace orrinvale::testing {

/// Of this process and of those that it starts. Make it where no other thread asks for variables.
class ScopedVariable final {
public:
    ScopedVariable(const char* name, const std::string& value) : m_name(name) {
        if (const char* const before = std::getenv(name)) m_before = before;
        set(value);
    }
    ~ScopedVariable() { set(m_before); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    void set(const std::optional<std::string>& value) const {
        if (value) ::setenv(m_name, value->c_str(), 1);
        else ::unsetenv(m_name);
        ::tzset();  // the zone is one of them
    }
    const char* m_name;
    std::optional<std::string> m_before;
};

}  // namespace orrinvale::testing
