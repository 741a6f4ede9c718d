// SPDX-License-Identifier: MIT
#include "standalone/wing_table.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>

#include "os/fatal.h"
#include "os/fatal_site.h"

namespace Standalone
{

namespace
{

using Hardware::WingModel;

constexpr char FatalSite[] = PLATFORM_FATAL_SITE("widget/wing_table.cpp");

constexpr const GUID* Identifiers[] = {
    &GUID_DEVINTERFACE_QRTUMPLAYBACKWING,
    &GUID_DEVINTERFACE_QRTUMEXPANSIONWING,
    &GUID_DEVINTERFACE_QRTUMPROGRAMMERWING,
    &GUID_DEVINTERFACE_QRTUMVNEXT_EXTERNAL_PLAYBACKWING,
    &GUID_DEVINTERFACE_QRTUMVNEXT_EXTERNAL_PIXI,
    &GUID_DEVINTERFACE_QRTUMVNEXT_KEYSTONE,
    &GUID_DEVINTERFACE_QRTUMVNEXT_SPRIG,
    &GUID_DEVINTERFACE_QRTUMVNEXT_PETITE,
    &GUID_DEVINTERFACE_QRTUMVNEXTPLAYBACKWING,
    &GUID_DEVINTERFACE_QRTUMVNEXTPROGRAMWING,
    &GUID_DEVINTERFACE_QRTUMVNEXT_TARNEL,
    &GUID_DEVINTERFACE_QRTUMVNEXT_BRAMBLE,
    &GUID_DEVINTERFACE_QRTUMVEX4TOUCHD,
    &GUID_DEVINTERFACE_QRTUMTBALLD,
    &GUID_DEVINTERFACE_QRTUMLTCD,
};

/// Buttons without a master: {100 + index, 65535}.
constexpr int FirstOtherButton = 100;
constexpr int NoMaster = 65535;

const GUID* FindIdentifier(const QString& name)
{
    const auto* const found = std::find_if(std::begin(Identifiers), std::end(Identifiers),
                                           [&](const GUID* id) { return name == id->name; });
    return found == std::end(Identifiers) ? nullptr : *found;
}

/// Each entry stands for count controls: the first has pid and mid, each next one pidStep and
/// midStep more.
WingModel::Map ReadMap(const QJsonValue& entries)
{
    WingModel::Map map;
    for (const QJsonValue entry : entries.toArray()) {
        const int pidStep = entry["pidStep"].toInt(0);
        const int midStep = entry["midStep"].toInt(1);
        for (int n = 0; n < entry["count"].toInt(); ++n)
            map.emplace_back(entry["pid"].toInt() + n * pidStep,
                             entry["mid"].toInt() + n * midStep);
    }
    return map;
}

WingModel ReadModel(const QJsonObject& row)
{
    WingModel model;
    model.classId = FindIdentifier(row["class"].toString());
    model.name = row["name"].toString().toStdString();
    if (row.contains("kind"))
        model.kind = static_cast<unsigned>(row["kind"].toInt());
    model.productId = static_cast<unsigned short>(row["productId"].toInt());
    model.isFrontPanel = row["frontPanel"].toBool();
    model.sections = row["sections"].toInt();
    model.mastersPerSection = row["mastersPerSection"].toInt();
    model.buttons = ReadMap(row["buttons"]);
    for (int n = 0; n < row["otherButtons"].toInt(); ++n)
        model.buttons.emplace_back(FirstOtherButton + static_cast<int>(model.buttons.size()),
                                   NoMaster);
    model.leds = model.buttons; // every button has a LED of its own, under the same numbers
    model.faders = ReadMap(row["faders"]);
    model.hasMotorFaders = row["motorFaders"].toBool();
    model.encoders = ReadMap(row["encoders"]);
    model.lcds = ReadMap(row["lcds"]);
    for (const QJsonValue channel : row["dimmers"].toArray())
        model.dimmers.push_back(static_cast<unsigned char>(channel.toInt()));
    return model;
}

std::vector<WingModel> ReadModels()
{
    QFile file(":/widget/wing_models.json");
    const bool isOpen = file.open(QIODevice::ReadOnly);
    OS_TRAP(!isOpen, FatalSite);
    std::vector<WingModel> models;
    for (const QJsonValue row : QJsonDocument::fromJson(file.readAll()).array())
        models.push_back(ReadModel(row.toObject()));
    const bool isComplete = std::equal(
        models.begin(), models.end(), std::begin(Identifiers), std::end(Identifiers),
        [](const WingModel& model, const GUID* identifier) { return model.classId == identifier; });
    OS_TRAP(!isComplete, FatalSite);
    return models;
}

} // namespace

const std::vector<WingModel>& GetWingModels()
{
    // Never destroyed: wings at work ask it until the process ends.
    static const std::vector<WingModel>* const models = new std::vector(ReadModels());
    return *models;
}

const WingModel& GetWingModel(const GUID& classId)
{
    return GetWingModels()[classId.position];
}

const WingModel* FindWingModel(const std::string& name)
{
    const auto& models = GetWingModels();
    const auto found = std::find_if(models.begin(), models.end(),
                                    [&](const WingModel& model) { return model.name == name; });
    return found == models.end() ? nullptr : &*found;
}

} // namespace Standalone
