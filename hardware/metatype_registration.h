// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaType>

namespace Hardware
{

/// Registers T with Qt by name while the library is loaded, so that connections by name and
/// QMetaType::fromName() find it. Left behind at unload, the entry would point into nowhere.
template <class T> class MetatypeRegistration
{
public:
    /// @param name T as signals and slots spell it; static text. One object for each spelling.
    explicit MetatypeRegistration(const char* name) : m_name(name) { qRegisterMetaType<T>(name); }
    ~MetatypeRegistration()
    {
        // Another module may have registered the same type first; then the entry is that module's.
        const QMetaType own = QMetaType::fromType<T>();
        if (QMetaType::fromName(m_name).iface() != own.iface())
            return;
        // Where T is a built-in type, the name stands for Qt's own description of it.
        if (own.id() >= QMetaType::User)
            QMetaType::unregisterMetaType(own);
    }
    MetatypeRegistration(const MetatypeRegistration&) = delete;
    MetatypeRegistration& operator=(const MetatypeRegistration&) = delete;

private:
    const char* const m_name;
};

} // namespace Hardware
