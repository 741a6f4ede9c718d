// SPDX-License-Identifier: MIT
#include "support/recorded_calls.h"

#include <dlfcn.h>

#include <QObject>

#include "widget/widget_manager.h"
#include "widget/widget_signaller.h"

namespace TestSupport
{

RecordedCalls& GetRecordedCalls()
{
    static RecordedCalls calls;
    return calls;
}

namespace
{

std::string Shorten(const GUID& classId)
{
    std::string name = classId.name;
    for (const std::string common : {"GUID_DEVINTERFACE_QRTUM", "VNEXT_"})
        if (name.starts_with(common))
            name.erase(0, common.size());
    return name;
}

std::string GetPlace(const QObject* signaller)
{
    if (!signaller->parent())
        return "alone";
    const auto siblings =
        signaller->parent()->findChildren<Hardware::WidgetSignaller*>(Qt::FindDirectChildrenOnly);
    return std::to_string(siblings.indexOf(signaller));
}

/// "widgetAdded" of "2widgetAdded( const ... )".
std::string GetName(const char* member)
{
    const std::string text = member + 1;
    return text.substr(0, text.find_first_of("( "));
}

bool Note(const std::string& call, const std::function<bool(const std::string&)>& answer)
{
    GetRecordedCalls().calls.push_back(call);
    return answer(call);
}

typedef QMetaObject::Connection Connect(const QObject*, const char*, const QObject*, const char*,
                                        Qt::ConnectionType);

} // namespace

// The symbol of the overload that connects by name.
__attribute__((visibility("default"))) QMetaObject::Connection
RecordedConnect(const QObject* sender, const char* signal, const QObject* receiver,
                const char* member,
                Qt::ConnectionType type) asm("_ZN7QObject7connectEPKS_PKcS1_S3_N2Qt14"
                                             "ConnectionTypeE");

QMetaObject::Connection RecordedConnect(const QObject* sender, const char* signal,
                                        const QObject* receiver, const char* member,
                                        Qt::ConnectionType type)
{
    const std::string call = "connect " + GetPlace(sender) + " " + GetName(signal) + " " +
                             GetName(member) +
                             (type == Qt::DirectConnection ? " direct" : " not direct");
    if (!Note(call, GetRecordedCalls().connects))
        return {};
    static Connect* const real = reinterpret_cast<Connect*>(
        dlsym(RTLD_NEXT, "_ZN7QObject7connectEPKS_PKcS1_S3_N2Qt14ConnectionTypeE"));
    return real(sender, signal, receiver, member, type);
}

} // namespace TestSupport

namespace Hardware
{

using TestSupport::GetRecordedCalls;

bool WidgetSignaller::RegisterWidgetClass(const GUID* classId)
{
    return TestSupport::Note("register " + TestSupport::GetPlace(this) + " " +
                                 TestSupport::Shorten(*classId),
                             GetRecordedCalls().registers);
}

bool WidgetSignaller::UnregisterWidgetClass(const GUID* classId)
{
    return TestSupport::Note("unregister " + TestSupport::GetPlace(this) + " " +
                                 TestSupport::Shorten(*classId),
                             GetRecordedCalls().registers);
}

std::set<WidgetMapData> WidgetManager::GetClassMapData(const GUID& classId)
{
    GetRecordedCalls().calls.push_back("list " + TestSupport::Shorten(classId));
    return {};
}

} // namespace Hardware
