#pragma once
#include <stdlib.h>

#include <optional>
#include <string>

/// Sets an environment variable, or removes it, and puts back what was there.
class CScopedEnvironment {
public:
    CScopedEnvironment(std::string Name, const std::optional<std::string>& rValue) : m_Name(std::move(Name)) {
        if (const char* const pFormer = ::getenv(m_Name.c_str())) {
            m_Former = pFormer;
        }
        Set(rValue);
    }
    ~CScopedEnvironment() { Set(m_Former); }
    CScopedEnvironment(const CScopedEnvironment&) = delete;
    CScopedEnvironment& operator=(const CScopedEnvironment&) = delete;

    void Set(const std::optional<std::string>& rValue) {
        if (rValue) {
            ::setenv(m_Name.c_str(), rValue->c_str(), 1);
        } else {
            ::unsetenv(m_Name.c_str());
        }
    }

private:
    std::string m_Name;
    std::optional<std::string> m_Former;
};
