// SPDX-License-Identifier: MIT
#include "desk/cue_sheet.h"

#include <algorithm>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "cd/cue_words.h"

namespace Desk
{

namespace
{

/// Bytes of one frame of audio: 588 samples for each of two channels, 16 bits each.
constexpr int AudioSectorBytes = 2352;

/// Words of a sheet that do not bear on where things are.
constexpr std::string_view WordsToLookOver[] = {"CATALOG", "CDTEXTFILE", "FLAGS",
                                                "ISRC",    "PERFORMER",  "SONGWRITER"};
/// Types of file without a header.
constexpr std::string_view SectorFiles[] = {"BINARY", "MOTOROLA"};
constexpr std::string_view AudioFiles[] = {"AIFF", "FLAC", "MP3", "WAVE"};
constexpr std::string_view AudioTracks[] = {"AUDIO", "CDG"};
constexpr std::string_view DataTracks[] = {"MODE1/2048", "MODE1/2352", "MODE2/2048", "MODE2/2324",
                                           "MODE2/2336", "MODE2/2352", "CDI/2336",   "CDI/2352"};

template <std::size_t Size>
bool Contains(const std::string_view (&list)[Size], const std::string& word)
{
    return std::find(std::begin(list), std::end(list), word) != std::end(list);
}

/// Takes a sheet line by line.
class Reader
{
public:
    explicit Reader(const CueFileLength& lengthOf) : m_lengthOf(lengthOf) {}

    void Take(std::string line)
    {
        ++m_line;
        if (m_line == 1 && line.starts_with("\xEF\xBB\xBF")) // the mark of UTF-8
            line.erase(0, 3);
        if (line.ends_with('\r'))
            line.pop_back();
        if (line.find('\0') != std::string::npos)
            Fail(m_line, "there is a byte of 0");
        try {
            const std::vector<std::string> words = IsCueRemark(line) ? Words() : SplitCueLine(line);
            if (!words.empty())
                TakeWords(ToUpper(words.front()), words);
        } catch (const CueProblem& problem) {
            Fail(m_line, problem.what());
        }
    }

    CdDisc Finish()
    {
        if (m_disc.tracks.empty())
            Fail(std::max(m_line, 1), "the sheet has no track");
        EndTrack();
        EndFile();
        m_disc.leadOut = m_base;
        try {
            m_disc.Check();
        } catch (const std::invalid_argument& error) {
            Fail(m_line, error.what());
        }
        return std::move(m_disc);
    }

private:
    typedef std::vector<std::string> Words;

    [[noreturn]] static void Fail(int line, const std::string& reason)
    {
        throw std::runtime_error("line " + std::to_string(line) + ": " + reason);
    }

    void TakeWords(const std::string& word, const Words& words)
    {
        if (word == "FILE")
            TakeFile(words);
        else if (word == "TRACK")
            TakeTrack(words);
        else if (word == "INDEX")
            TakeIndex(words);
        else if (word == "PREGAP")
            TakePregap(words);
        else if (word == "POSTGAP")
            TakePostgap(words);
        else if (word == "TITLE")
            TakeTitle(words);
        else if (word == "REM")
            TakeLength(words);
        else if (!Contains(WordsToLookOver, word))
            throw CueProblem(Quote(words.front()) + " is no word of a CUE sheet");
    }

    static void Expect(const Words& words, std::size_t count, const char* form)
    {
        if (words.size() != count)
            throw CueProblem(std::string("not of the form ") + form);
    }

    void TakeFile(const Words& words)
    {
        Expect(words, 3, "FILE \"name\" type");
        const std::string type = ToUpper(words[2]);
        const bool hasSectors = Contains(SectorFiles, type);
        if (!hasSectors && !Contains(AudioFiles, type))
            throw CueProblem(Quote(words[2]) + " is no type of file");
        // A track may go on in it: some programs put the gap at the end of the file before.
        if (!m_file.name.empty())
            EndFile();
        m_file = {words[1], m_line, hasSectors ? AudioSectorBytes : 0, 0, {}, {}};
    }

    void TakeTrack(const Words& words)
    {
        Expect(words, 3, "TRACK number type");
        if (m_file.name.empty())
            throw CueProblem("there is no FILE before this TRACK");
        const int number = ToCueNumber(words[1], 2);
        const std::string type = ToUpper(words[2]);
        const bool isData = Contains(DataTracks, type);
        if (number < 1)
            throw CueProblem(Quote(words[1]) + " is no number of a track, which is 01 to 99");
        if (!isData && !Contains(AudioTracks, type))
            throw CueProblem(Quote(words[2]) + " is no type of track");
        if (!m_disc.tracks.empty()) {
            EndTrack();
            if (number != m_disc.GetLastNumber() + 1)
                throw CueProblem("track " + words[1] + " does not follow track " +
                                 std::to_string(m_disc.GetLastNumber()));
        } else {
            m_disc.firstNumber = number;
        }
        if (m_file.tracks == 0 && m_file.sectorBytes != 0 && isData)
            m_file.sectorBytes = ToCueNumber(type.substr(type.find('/') + 1), 4);
        ++m_file.tracks;
        m_disc.tracks.push_back({"", isData, 0, {}});
        m_track = {m_line, {}, 0, 0};
    }

    void TakeIndex(const Words& words)
    {
        Expect(words, 3, "INDEX number mm:ss:ff");
        CdTrack& track = GetTrack("INDEX");
        const int number = ToCueNumber(words[1], 2);
        const int time = ParseCueTime(words[2]);
        if (number < 0)
            throw CueProblem(Quote(words[1]) + " is no number of an index, which is 00 to 99");
        if (m_file.lastIndex && time <= *m_file.lastIndex)
            throw CueProblem(Quote(words[2]) + " is not behind the index before, in the same file");
        const int next = static_cast<int>(track.indices.size()) + 1;
        const bool isPregap = number == 0 && next == 1 && !m_track.pregap;
        if (!isPregap && number != next)
            throw CueProblem("INDEX " + words[1] + " where " + (next < 10 ? "0" : "") +
                             std::to_string(next) + " is due");
        m_file.lastIndex = time;
        if (isPregap) {
            if (m_track.silence != 0)
                throw CueProblem("a track with PREGAP has no INDEX 00");
            m_track.pregap = m_base + time;
            return;
        }
        if (number == 1) {
            track.pregap = m_track.pregap.value_or(m_base + time);
            m_base += m_track.silence; // it is on the disc and not in the file
            if (m_disc.tracks.size() == 1)
                track.pregap = 0; // all that is ahead of the first track
        }
        track.indices.push_back(m_base + time);
    }

    void TakePregap(const Words& words)
    {
        Expect(words, 2, "PREGAP mm:ss:ff");
        const int length = ParseCueTime(words[1]);
        if (!GetTrack("PREGAP").indices.empty() || m_track.pregap)
            throw CueProblem("PREGAP stands ahead of a track's INDEX");
        m_track.silence = length;
    }

    void TakePostgap(const Words& words)
    {
        Expect(words, 2, "POSTGAP mm:ss:ff");
        const int length = ParseCueTime(words[1]);
        if (GetTrack("POSTGAP").indices.empty())
            throw CueProblem("POSTGAP stands behind a track's INDEX");
        m_track.postgap = length;
    }

    void TakeTitle(const Words& words)
    {
        Expect(words, 2, "TITLE \"text\"");
        (m_disc.tracks.empty() ? m_disc.title : m_disc.tracks.back().title) = words[1];
    }

    void TakeLength(const Words& words)
    {
        Expect(words, 3, "REM LENGTH mm:ss:ff");
        if (m_file.name.empty())
            throw CueProblem("there is no FILE before this length");
        m_file.length = ParseCueTime(words[2]);
    }

    CdTrack& GetTrack(const char* word)
    {
        if (m_disc.tracks.empty())
            throw CueProblem(std::string("there is no TRACK before this ") + word);
        return m_disc.tracks.back();
    }

    void EndTrack()
    {
        if (m_disc.tracks.back().indices.empty())
            Fail(m_track.line,
                 "track " + std::to_string(m_disc.GetLastNumber()) + " has no INDEX 01");
        m_base += std::exchange(m_track.postgap, 0);
    }

    /// What follows stands on the disc behind all of the file.
    void EndFile()
    {
        const std::string name = Quote(m_file.name);
        if (!m_file.lastIndex)
            Fail(m_file.line, "no INDEX stands for anything in " + name);
        if (!m_file.length)
            m_file.length = m_lengthOf(m_file.name, m_file.sectorBytes);
        if (!m_file.length)
            Fail(m_file.line, "the length of " + name +
                                  " is not known: there is no such file that can be read, and no "
                                  "'REM LENGTH mm:ss:ff' behind this line");
        if (*m_file.length <= *m_file.lastIndex)
            Fail(m_file.line,
                 name + " is only " + ToCdText(*m_file.length) + " long, which its tracks are not");
        m_base += *m_file.length;
        if (m_base >= CdMaximumFrames)
            Fail(m_file.line, "the disc is longer than 99:59:74 with " + name);
    }

    struct File {
        std::string name;
        int line = 0;
        int sectorBytes = 0;
        int tracks = 0; // that begin in it
        std::optional<int> lastIndex;
        std::optional<int> length;
    };
    struct Track {
        int line = 0;
        std::optional<int> pregap; // where its index 0 is
        int silence = 0;
        int postgap = 0;
    };

    const CueFileLength& m_lengthOf;
    CdDisc m_disc;
    int m_line = 0;
    int m_base = CdFirstFrame; // where the start of the file is on the disc
    File m_file;
    Track m_track;
};

} // namespace

CdDisc ParseCueSheet(const std::string& text, const CueFileLength& lengthOf)
{
    Reader reader(lengthOf);
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        reader.Take(line);
    return reader.Finish();
}

} // namespace Desk
