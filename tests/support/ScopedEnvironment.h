#pragma once

#include <cstdlib>
#include <optional>
#include <string>

// Sets or unsets one environment variable for the life of a test and puts
// the old value back, so that tests run in one process do not leak state.
class ScopedEnvironment {
public:
    ScopedEnvironment(char const* name, char const* value) : m_name(name) {
        if (char const* const old = std::getenv(name)) {
            m_old = old;
        }
        if (value != nullptr) {
            ::setenv(name, value, 1);
        } else {
            ::unsetenv(name);
        }
    }
    ~ScopedEnvironment() {
        if (m_old) {
            ::setenv(m_name.c_str(), m_old->c_str(), 1);
        } else {
            ::unsetenv(m_name.c_str());
        }
    }
    ScopedEnvironment(ScopedEnvironment const&) = delete;
    ScopedEnvironment& operator=(ScopedEnvironment const&) = delete;

private:
    std::string m_name;
    std::optional<std::string> m_old;
};
