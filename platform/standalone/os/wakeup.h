// SPDX-License-Identifier: MIT
#pragma once

namespace Standalone
{

/// A descriptor that any thread makes readable, to end another one's wait for it.
class Wakeup
{
public:
    Wakeup();
    ~Wakeup();
    Wakeup(const Wakeup&) = delete;
    Wakeup& operator=(const Wakeup&) = delete;

    int GetDescriptor() const { return m_descriptor; }
    void Set() const;
    void Clear() const;

private:
    const int m_descriptor;
};

} // namespace Standalone
