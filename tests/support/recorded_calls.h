// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <vector>

/// A program with recorded_calls.cpp among its sources has its own WidgetSignaller::
/// RegisterWidgetClass(), UnregisterWidgetClass(), WidgetManager::GetClassMapData() and
/// QObject::connect() by name, which stand before the libraries'. They take down each call and, but
/// for GetClassMapData(), do what they are told to.
namespace TestSupport
{

struct RecordedCalls {
    /// Such as "register 0 KEYSTONE": the number is the signaller's place among its parent's
    /// children, in "connect 0 widgetAdded wing_add direct" too. Class identifiers are shortened
    /// by what all have in common. A signaller without a parent is "alone".
    std::vector<std::string> calls;
    /// Whether a registration succeeds; it does nothing besides.
    std::function<bool(const std::string& call)> registers = [](const std::string&) {
        return true;
    };
    /// Whether a connection is made; one that is not, fails.
    std::function<bool(const std::string& call)> connects = [](const std::string&) { return true; };
};

RecordedCalls& GetRecordedCalls();

} // namespace TestSupport
