// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractItemModel>
#include <string>
#include <vector>

#include "virtual-desk/midi_log_model.h"

namespace TestSupport
{

/// The texts of a log's messages, from the top.
inline std::vector<std::string> ListTexts(const QAbstractItemModel& model)
{
    std::vector<std::string> texts;
    for (int row = 0; row < model.rowCount(); ++row)
        texts.push_back(model.index(row, VirtualDesk::MidiLogModel::Column_Text)
                            .data()
                            .toString()
                            .toStdString());
    return texts;
}

} // namespace TestSupport
