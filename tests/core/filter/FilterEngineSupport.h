#pragma once

#include "filter/XQueryEngine.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

// Engine-running tests skip, with the reason, only where Java or Saxon-HE is not installed.
#define SKIP_WITHOUT_XQUERY_ENGINE()                                                                                   \
    if (!ZDTAnalyzer::Filter::findXQueryEngine())                                                                      \
    GTEST_SKIP() << "no XQuery engine: java or /usr/share/java/Saxon-HE.jar is not installed"

// Sets an environment variable for the life of the object.
class ScopedEnvironment {
public:
    ScopedEnvironment(const char* name, const std::string& value) : m_name(name) {
        if (const char* old = std::getenv(name))
            m_old = old;
        ::setenv(name, value.c_str(), 1);
    }
    ~ScopedEnvironment() {
        if (m_old)
            ::setenv(m_name, m_old->c_str(), 1);
        else
            ::unsetenv(m_name);
    }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

private:
    const char* m_name;
    std::optional<std::string> m_old;
};

inline std::size_t countOf(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}
