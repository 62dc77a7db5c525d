#pragma once
#include <utility>

/// A file descriptor that closes itself.
class CDescriptor {
public:
    explicit CDescriptor(int Handle = -1) : m_Handle(Handle) {}
    ~CDescriptor() { Close(); }
    CDescriptor(CDescriptor&& rOther) noexcept : m_Handle(std::exchange(rOther.m_Handle, -1)) {}
    CDescriptor& operator=(CDescriptor&& rOther) noexcept {
        std::swap(m_Handle, rOther.m_Handle);
        return *this;
    }

    bool IsOpen() const { return m_Handle >= 0; }
    int Get() const { return m_Handle; }
    bool Close();

private:
    int m_Handle;
};
