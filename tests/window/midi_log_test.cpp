// SPDX-License-Identifier: MIT
#include "virtual-desk/midi_log_model.h"

#include <gmock/gmock.h>

#include "window/midi_log_texts.h"

namespace
{

using testing::ElementsAre;
using TestSupport::ListTexts;
using VirtualDesk::MidiKind;
using VirtualDesk::MidiLogModel;

Tools::MonitorEvent MakeEvent(const std::string& source, const std::string& text,
                              const std::string& signal = "txShortMessage")
{
    return {1.5, source, signal, text};
}

TEST(MidiLog, TellsKindsApart)
{
    using VirtualDesk::ClassifyMidi;
    EXPECT_EQ(ClassifyMidi("clock"), MidiKind::Clock);
    EXPECT_EQ(ClassifyMidi("active sensing"), MidiKind::Clock);
    EXPECT_EQ(ClassifyMidi("note on ch 1 C4 vel 100"), MidiKind::Note);
    EXPECT_EQ(ClassifyMidi("key pressure ch 1 C4 5"), MidiKind::Note);
    EXPECT_EQ(ClassifyMidi("program ch 1 5"), MidiKind::Controller);
    EXPECT_EQ(ClassifyMidi("pitch bend ch 1 +5"), MidiKind::Controller);
    EXPECT_EQ(ClassifyMidi("machine control STOP"), MidiKind::SystemExclusive);
    EXPECT_EQ(ClassifyMidi("timecode full frame 01:02:03:04"), MidiKind::SystemExclusive);
    EXPECT_EQ(ClassifyMidi("timecode quarter frame 1 value 2"), MidiKind::Other);
    EXPECT_EQ(ClassifyMidi("start"), MidiKind::Other);
    EXPECT_EQ(ClassifyMidi("90 3C 64, note on ch 1 C4 vel 100"), MidiKind::Note);
    EXPECT_EQ(ClassifyMidi("E1 00 40 E1 00 41"), MidiKind::Controller);
    EXPECT_EQ(ClassifyMidi("F0 7D F7"), MidiKind::SystemExclusive);
    EXPECT_EQ(ClassifyMidi("F8, clock"), MidiKind::Clock);
    EXPECT_EQ(ClassifyMidi("FA, start"), MidiKind::Other);
    EXPECT_EQ(ClassifyMidi(""), MidiKind::Other);
}

TEST(MidiLog, KeepsTheNewestLines)
{
    MidiLogModel model({"Keys"});
    std::vector<Tools::MonitorEvent> events;
    for (int i = 0; i < MidiLogModel::LineLimit + 10; ++i)
        events.push_back(MakeEvent("midi Keys", std::to_string(i)));
    model.Take(events, 0);
    EXPECT_EQ(model.rowCount(), MidiLogModel::LineLimit);
    EXPECT_EQ(ListTexts(model).front(), "10");
    model.Take({MakeEvent("midi Keys", "last")}, 0);
    EXPECT_EQ(model.rowCount(), MidiLogModel::LineLimit);
    EXPECT_EQ(ListTexts(model).front(), "11");
    EXPECT_EQ(ListTexts(model).back(), "last");
    model.SetPaused(true);
    model.Take(events, 0);
    EXPECT_EQ(model.CountWaiting(), std::size_t{MidiLogModel::LineLimit});
    model.SetPaused(false);
    EXPECT_EQ(ListTexts(model).front(), "10");
}

TEST(MidiLog, TakesWhatPortsSay)
{
    MidiLogModel model({"Keys", "Way out"});
    model.Take({MakeEvent("wing 1", "button 3"), MakeEvent("midi Keys", "clock"),
                MakeEvent("midi Keys out", "F8, clock", "received"),
                MakeEvent("midi Way out", "start"),
                MakeEvent("midi Keys", "receiving", "txMidiDeviceAdded")},
               0);
    ASSERT_EQ(model.rowCount(), 4);
    const auto get = [&](int row, int column) {
        return model.index(row, column).data().toString().toStdString();
    };
    EXPECT_EQ(get(0, MidiLogModel::Column_Direction), "← in");
    EXPECT_EQ(get(0, MidiLogModel::Column_Time), "1.500");
    EXPECT_EQ(get(1, MidiLogModel::Column_Port), "Keys");
    EXPECT_EQ(get(1, MidiLogModel::Column_Direction), "→ out");
    EXPECT_EQ(get(2, MidiLogModel::Column_Port), "Way out");
    EXPECT_EQ(get(2, MidiLogModel::Column_Direction), "← in");
    EXPECT_EQ(get(3, MidiLogModel::Column_Direction), "–");
    const auto kind = [&](int row) {
        return static_cast<MidiKind>(model.index(row, 0).data(MidiLogModel::KindRole).toInt());
    };
    EXPECT_EQ(kind(1), MidiKind::Clock);
    EXPECT_EQ(kind(3), MidiKind::Other);
}

TEST(MidiLog, TellsOfEventsThatHadNoRoom)
{
    MidiLogModel model({"Keys"});
    model.Take({MakeEvent("midi Keys", "clock")}, 12);
    EXPECT_THAT(ListTexts(model), ElementsAre("⚠ up to 12 lines left out here", "clock"));
    model.Take({MakeEvent("wing 1", "button 3")}, 12);
    EXPECT_EQ(model.rowCount(), 2);
}

} // namespace
