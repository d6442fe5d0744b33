#pragma once

#include <cstdlib>
#include <optional>
#include <string>

// Sets (or, given null, clears) an environment variable for one scope and restores it after.
class EnvironmentOverride {
public:
    EnvironmentOverride(const char* name, const char* value) : m_name(name) {
        if (const char* old = std::getenv(name))
            m_old = old;
        if (value != nullptr)
            setenv(name, value, 1);
        else
            unsetenv(name);
    }
    ~EnvironmentOverride() {
        if (m_old)
            setenv(m_name, m_old->c_str(), 1);
        else
            unsetenv(m_name);
    }
    EnvironmentOverride(const EnvironmentOverride&) = delete;
    EnvironmentOverride& operator=(const EnvironmentOverride&) = delete;

private:
    const char* m_name;
    std::optional<std::string> m_old;
};
