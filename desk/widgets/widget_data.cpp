// SPDX-License-Identifier: MIT
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cmath>
#include <stdexcept>

#include "desk/widget_bus.h"

namespace Desk
{

namespace
{

constexpr double LargestSerialNumber = 65535;

[[noreturn]] void Refuse(const std::string& reason)
{
    throw std::invalid_argument("widget description: " + reason);
}

WidgetData ReadWidget(const QJsonValue& value)
{
    if (!value["model"].isString())
        Refuse("every widget needs a \"model\"");
    WidgetData data{value["model"].toString().toStdString(), {}, {}};
    const QJsonValue serial = value["serial"];
    if (!serial.isUndefined() && !serial.isNull()) {
        const double number = serial.toDouble(-1);
        if (number < 0 || number > LargestSerialNumber || number != std::floor(number))
            Refuse("\"serial\" is a whole number from 0 to 65535");
        data.serialNumber = static_cast<std::uint16_t>(number);
    }
    const QJsonValue path = value["path"];
    if (!path.isUndefined() && !path.isString())
        Refuse("\"path\" is a text");
    data.path = path.toString().toStdWString();
    return data;
}

} // namespace

std::vector<WidgetData> ReadWidgetData(const std::string& json)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(json), &error);
    if (document.isNull())
        Refuse(error.errorString().toStdString());
    if (!document.isArray())
        Refuse("it is a list of widgets");
    std::vector<WidgetData> widgets;
    for (const QJsonValue value : document.array())
        widgets.push_back(ReadWidget(value));
    return widgets;
}

} // namespace Desk
