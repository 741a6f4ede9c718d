// SPDX-License-Identifier: MIT
#include "desk/cue_sheet.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace
{

using Desk::CdDisc;
using testing::ElementsAre;
using testing::HasSubstr;

/// Every file is a minute long.
std::optional<int> AMinute(const std::string&, int)
{
    return 4500;
}

CdDisc Parse(const std::string& text)
{
    return Desk::ParseCueSheet(text, AMinute);
}

/// What is wrong with a sheet, or nothing.
std::string GetProblem(const std::string& text)
{
    try {
        Parse(text);
        return "nothing";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

/// A folder of its own, gone afterwards.
class CueSheetFile : public testing::Test
{
protected:
    CueSheetFile()
    {
        std::string name = (std::filesystem::temp_directory_path() / "cue-XXXXXX").string();
        EXPECT_NE(mkdtemp(name.data()), nullptr);
        m_folder = name;
    }
    ~CueSheetFile() override { std::filesystem::remove_all(m_folder); }

    std::string Write(const std::string& name, const std::string& text) const
    {
        std::ofstream(m_folder / name, std::ios::binary) << text;
        return m_folder / name;
    }

    std::string GetProblem(const std::string& path) const
    {
        try {
            Desk::ReadCueSheet(path);
            return "nothing";
        } catch (const std::runtime_error& error) {
            return error.what();
        }
    }

    std::filesystem::path m_folder;
};

} // namespace

TEST(CueSheet, GivesTracksWithGapsAndIndices)
{
    const CdDisc disc = Parse("TITLE \"A disc\"\n"
                              "FILE \"a.wav\" WAVE\n"
                              "  TRACK 01 AUDIO\n"
                              "    TITLE \"First one\"\n"
                              "    INDEX 01 00:00:00\n"
                              "  TRACK 02 AUDIO\n"
                              "    INDEX 00 00:10:00\n"
                              "    INDEX 01 00:12:05\n"
                              "    INDEX 02 00:20:00\n"
                              "    INDEX 03 00:20:01\n");
    EXPECT_EQ(disc.title, "A disc");
    EXPECT_EQ(disc.firstNumber, 1);
    ASSERT_EQ(disc.tracks.size(), 2U);
    EXPECT_EQ(disc.tracks[0].title, "First one");
    EXPECT_EQ(disc.tracks[0].pregap, 0);
    EXPECT_THAT(disc.tracks[0].indices, ElementsAre(150));
    EXPECT_EQ(disc.tracks[1].pregap, 150 + 750);
    EXPECT_THAT(disc.tracks[1].indices, ElementsAre(150 + 905, 150 + 1500, 150 + 1501));
    EXPECT_EQ(disc.leadOut, 150 + 4500);
}

TEST(CueSheet, JoinsFiles)
{
    const CdDisc disc = Parse("FILE a.wav WAVE\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n"
                              "FILE b.wav WAVE\nTRACK 02 AUDIO\nINDEX 01 00:01:00\n");
    EXPECT_EQ(disc.tracks[1].GetStart(), 150 + 4500 + 75);
    EXPECT_EQ(disc.tracks[1].pregap, disc.tracks[1].GetStart());
    EXPECT_EQ(disc.leadOut, 150 + 9000);
}

TEST(CueSheet, MayHaveAGapAtTheEndOfTheFileBefore)
{
    const CdDisc disc = Parse("FILE a.wav WAVE\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n"
                              "TRACK 02 AUDIO\nINDEX 00 00:58:00\n"
                              "FILE b.wav WAVE\nINDEX 01 00:00:00\n");
    EXPECT_EQ(disc.tracks[1].pregap, 150 + 4350);
    EXPECT_EQ(disc.tracks[1].GetStart(), 150 + 4500);
    EXPECT_EQ(disc.leadOut, 150 + 9000);
}

TEST(CueSheet, PutsSilenceOnTheDisc)
{
    const CdDisc disc = Parse("FILE a.wav WAVE\n"
                              "TRACK 01 AUDIO\nPREGAP 00:01:00\nINDEX 01 00:00:00\n"
                              "POSTGAP 00:03:00\n"
                              "TRACK 02 AUDIO\nPREGAP 00:02:00\nINDEX 01 00:30:00\n"
                              "POSTGAP 00:00:01\n");
    EXPECT_EQ(disc.tracks[0].pregap, 0);
    EXPECT_EQ(disc.tracks[0].GetStart(), 150 + 75);
    EXPECT_EQ(disc.tracks[1].pregap, 225 + 2250 + 225);
    EXPECT_EQ(disc.tracks[1].GetStart(), 225 + 2250 + 225 + 150);
    EXPECT_EQ(disc.leadOut, 150 + 4500 + 75 + 225 + 150 + 1);
}

TEST(CueSheet, TellsDataFromAudio)
{
    const CdDisc disc = Parse("FILE a.bin BINARY\nTRACK 01 MODE1/2352\nINDEX 01 00:00:00\n"
                              "TRACK 02 AUDIO\nINDEX 01 00:30:00\n");
    EXPECT_TRUE(disc.tracks[0].isData);
    EXPECT_FALSE(disc.tracks[1].isData);
}

TEST(CueSheet, AsksForTheLengthOfFilesWithTheirSectors)
{
    std::vector<std::string> asked;
    const auto lengthOf = [&](const std::string& name, int sectorBytes) {
        asked.push_back(name + " " + std::to_string(sectorBytes));
        return 4500;
    };
    Desk::ParseCueSheet("FILE \"a b.wav\" WAVE\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n"
                        "FILE c.bin BINARY\nTRACK 02 AUDIO\nINDEX 01 00:00:00\n"
                        "FILE d.bin BINARY\nTRACK 03 MODE1/2048\nINDEX 01 00:00:00\n"
                        "FILE e.bin BINARY\nREM LENGTH 00:10:00\nTRACK 04 AUDIO\n"
                        "INDEX 01 00:00:00\n",
                        lengthOf);
    EXPECT_THAT(asked, ElementsAre("a b.wav 0", "c.bin 2352", "d.bin 2048"));
}

TEST(CueSheet, TakesALengthFromARemark)
{
    const CdDisc disc = Parse("FILE a.wav WAVE\nREM LENGTH 02:00:10\nTRACK 01 AUDIO\n"
                              "INDEX 01 00:00:00\n");
    EXPECT_EQ(disc.leadOut, 150 + 9010);
}

TEST(CueSheet, MayBeginWithAnyTrack)
{
    const CdDisc disc = Parse("FILE a.wav WAVE\nTRACK 07 AUDIO\nINDEX 01 00:00:00\n"
                              "TRACK 08 AUDIO\nINDEX 01 00:10:00\n");
    EXPECT_EQ(disc.firstNumber, 7);
    EXPECT_EQ(disc.GetLastNumber(), 8);
}

TEST(CueSheet, MayBeWrittenInManyWays)
{
    const CdDisc disc = Parse("\xEF\xBB\xBFREM GENRE \"not closed\r\n"
                              "REM\r\n"
                              "CATALOG 1234567890123\r\n"
                              "PERFORMER \"Somebody \" \r\n"
                              "\r\n"
                              "\tfile \"a.wav\"\twave\r\n"
                              "track 1 audio\r\n"
                              "flags DCP\r\nisrc ABCDE1234567\r\nsongwriter X\r\n"
                              "index 1 00:00:00");
    EXPECT_EQ(disc.tracks.size(), 1U);
}

TEST(CueSheet, ProblemsHaveALineAndAReason)
{
    const std::string file = "FILE a.wav WAVE\n";
    const std::string track = file + "TRACK 01 AUDIO\n";
    const std::string first = track + "INDEX 01 00:00:00\n";
    const std::pair<std::string, const char*> table[] = {
        {"", "line 1: the sheet has no track"},
        {file, "line 1: the sheet has no track"},
        {"HELLO world\n", "line 1: 'HELLO' is no word of a CUE sheet"},
        {std::string("\nFILE a\0.wav WAVE\n", 18), "line 2: there is a byte of 0"},
        {"\n\nFILE a.wav\n", "line 3: not of the form FILE \"name\" type"},
        {"FILE \"a.wav WAVE\n", "line 1: a quotation mark is missing"},
        {"FILE a.txt TEXT\n", "line 1: 'TEXT' is no type of file"},
        {"TRACK 01 AUDIO\n", "line 1: there is no FILE before this TRACK"},
        {"INDEX 01 00:00:00\n", "line 1: there is no TRACK before this INDEX"},
        {"PREGAP 00:00:00\n", "line 1: there is no TRACK before this PREGAP"},
        {"POSTGAP 00:00:00\n", "line 1: there is no TRACK before this POSTGAP"},
        {"REM LENGTH 00:10:00\n", "line 1: there is no FILE before this length"},
        {file + "REM LENGTH long\n", "line 2: 'long' is no time, which is mm:ss:ff"},
        {file + "REM LENGTH 1 minute\n", "line 2: not of the form REM LENGTH mm:ss:ff"},
        {"TITLE\n", "line 1: not of the form TITLE \"text\""},
        {file + "TRACK 00 AUDIO\n", "line 2: '00' is no number of a track, which is 01 to 99"},
        {file + "TRACK x AUDIO\n", "line 2: 'x' is no number of a track, which is 01 to 99"},
        {file + "TRACK 01 VIDEO\n", "line 2: 'VIDEO' is no type of track"},
        {file + "TRACK 01\n", "line 2: not of the form TRACK number type"},
        {first + "TRACK 03 AUDIO\n", "line 4: track 03 does not follow track 1"},
        {first + "TRACK 01 AUDIO\n", "line 4: track 01 does not follow track 1"},
        {track, "line 2: track 1 has no INDEX 01"},
        {track + "INDEX 00 00:00:00\n", "line 2: track 1 has no INDEX 01"},
        {first + "TRACK 02 AUDIO\nTRACK 03 AUDIO\n", "line 4: track 2 has no INDEX 01"},
        {track + "INDEX 01 00:60:00\n", "line 3: '00:60:00' is no time, which is mm:ss:ff"},
        {track + "INDEX 01 00:00:75\n", "line 3: '00:00:75' is no time, which is mm:ss:ff"},
        {track + "INDEX 01 00:00\n", "line 3: '00:00' is no time, which is mm:ss:ff"},
        {track + "INDEX 01 0:0:0:0\n", "line 3: '0:0:0:0' is no time, which is mm:ss:ff"},
        {track + "INDEX 01 -1:00:00\n", "line 3: '-1:00:00' is no time, which is mm:ss:ff"},
        {track + "INDEX 01\n", "line 3: not of the form INDEX number mm:ss:ff"},
        {track + "INDEX -1 00:00:00\n", "line 3: '-1' is no number of an index, which is 00 to 99"},
        {track + "INDEX 02 00:00:00\n", "line 3: INDEX 02 where 01 is due"},
        {first + "INDEX 01 00:01:00\n", "line 4: INDEX 01 where 02 is due"},
        {first + "INDEX 00 00:01:00\n", "line 4: INDEX 00 where 02 is due"},
        {first + "INDEX 02 00:00:00\n",
         "line 4: '00:00:00' is not behind the index before, in the same file"},
        {first + "TRACK 02 AUDIO\nPREGAP 00:02:00\nINDEX 00 00:10:00\n",
         "line 6: a track with PREGAP has no INDEX 00"},
        {first + "PREGAP 00:02:00\n", "line 4: PREGAP stands ahead of a track's INDEX"},
        {track + "POSTGAP 00:02:00\n", "line 3: POSTGAP stands behind a track's INDEX"},
        {first + "INDEX 02 01:00:00\n",
         "line 1: 'a.wav' is only 01:00:00 long, which its tracks are not"},
        {first + "FILE b.wav WAVE\n", "line 4: no INDEX stands for anything in 'b.wav'"},
        {file + first, "line 1: no INDEX stands for anything in 'a.wav'"},
        {file + "REM LENGTH 99:59:74\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n",
         "line 1: the disc is longer than 99:59:74 with 'a.wav'"},
    };
    for (const auto& [text, problem] : table)
        EXPECT_EQ(GetProblem(text), problem) << text;
}

TEST_F(CueSheetFile, MeasuresTheAudioFilesBesideIt)
{
    // 44100 samples a second, of one byte each: a second and one sample.
    const std::string header("RIFF\x69\xAC\0\0WAVEfmt \x10\0\0\0\x01\0\x01\0\x44\xAC\0\0\x44\xAC"
                             "\0\0\x01\0\x08\0"
                             "data\x45\xAC\0\0",
                             44);
    Write("a b.wav", header + std::string(44101, '\x80'));
    const std::string path =
        Write("disc.cue", "FILE \"a b.wav\" WAVE\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n");
    EXPECT_EQ(Desk::ReadCueSheet(path).leadOut, 150 + 76) << "filled up with silence";
}

TEST_F(CueSheetFile, MeasuresFilesOfSectors)
{
    Write("a.bin", std::string(2352 * 100 + 1, '\0'));
    const std::string path =
        Write("disc.cue", "FILE a.bin BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n");
    EXPECT_EQ(Desk::ReadCueSheet(path).leadOut, 150 + 101) << "filled up with silence";
}

TEST_F(CueSheetFile, ProblemsNameIt)
{
    const std::string path =
        Write("disc.cue", "REM\nFILE gone.wav WAVE\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n");
    EXPECT_EQ(GetProblem(path),
              "CUE sheet '" + path +
                  "', line 2: the length of 'gone.wav' is not known: there is no such file that "
                  "can be read, and no 'REM LENGTH mm:ss:ff' behind this line");
    Write("gone.wav", "no audio at all");
    EXPECT_THAT(GetProblem(path), HasSubstr("line 2: the length of 'gone.wav' is not known"));
    EXPECT_EQ(GetProblem("/nowhere/disc.cue"), "CUE sheet '/nowhere/disc.cue' cannot be read");
    EXPECT_EQ(GetProblem(m_folder), "CUE sheet '" + m_folder.string() + "' cannot be read");
}

TEST_F(CueSheetFile, MeasuresFilesAlone)
{
    // Neither waits for a pipe that nobody writes to, nor reads a device.
    ASSERT_EQ(mkfifo((m_folder / "pipe").c_str(), 0600), 0);
    for (const char* const name : {"pipe", "/dev/zero"}) {
        const std::string path = Write(
            "disc.cue", "FILE " + std::string(name) + " WAVE\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n");
        EXPECT_THAT(GetProblem(path), HasSubstr("is not known")) << name;
    }
    EXPECT_EQ(GetProblem(m_folder / "pipe"),
              "CUE sheet '" + (m_folder / "pipe").string() + "' cannot be read");
}

TEST_F(CueSheetFile, OfAnyLengthIsNotRead)
{
    const std::string path = Write("disc.cue", std::string((1U << 20U) + 1, '\n'));
    EXPECT_EQ(GetProblem(path), "CUE sheet '" + path + "' is longer than 1048576 bytes");
}

TEST_F(CueSheetFile, IsShippedAsASample)
{
    const CdDisc disc = Desk::ReadCueSheet(DATA_FOLDER "/cd/soundtrack.cue");
    EXPECT_EQ(disc.title, "Soundtrack");
    ASSERT_EQ(disc.tracks.size(), 6U);
    EXPECT_EQ(disc.tracks[3].title, "Storm");
    EXPECT_EQ(disc.tracks[3].indices.size(), 3U);
    EXPECT_EQ(Desk::ToCdText(disc.tracks[4].pregap), "17:50:74");
    EXPECT_EQ(Desk::ToCdText(disc.tracks[4].GetStart()), "17:52:74");
    EXPECT_EQ(Desk::ToCdText(disc.leadOut), "23:45:30");
}
