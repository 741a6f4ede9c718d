#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Writes performance.txt: ten seconds of a show, as a keyboard and a show controller send it.

A bass line and chords under running status, a volume pedal and a pitch bend, a clock of 24 bytes a
quarter note, cues by MIDI Show Control, a full-frame timecode, machine control, and one private
system-exclusive dump. As a receiver of this library wants it, a channel message carries its status
byte again after a clock byte.

Usage: make_performance.py > performance.txt
"""

TEMPO = 120  # quarter notes a minute
LENGTH_MS = 9600
CLOCKS_A_QUARTER = 24

QUARTER_MS = 60000 / TEMPO
NOTE_ON, NOTE_OFF, CONTROL, PROGRAM, PRESSURE, BEND = 0x90, 0x80, 0xB0, 0xC0, 0xD0, 0xE0
CLOCK, START, STOP, SENSING = 0xF8, 0xFA, 0xFC, 0xFE

# One chord a bar: root of the bass, then the notes of the chord.
CHORDS = [(36, (60, 64, 67)), (33, (57, 60, 64)), (41, (60, 65, 69)), (43, (59, 62, 67)), (36, (60, 64, 67))]


def show_control(command, cue, cue_list=""):
    """MIDI Show Control to all devices for general lighting."""
    data = cue.encode() + (b"\0" + cue_list.encode() if cue_list else b"")
    return [0xF0, 0x7F, 0x7F, 0x02, 0x01, command, *data, 0xF7]


def performance():
    """All events as (milliseconds, bytes of one message), in no order."""
    yield 0, [PROGRAM | 0, 4]
    yield 0, [PROGRAM | 1, 33]
    yield 0, [CONTROL | 0, 7, 100]
    yield 10, [START]
    yield 20, [0xF0, 0x7F, 0x7F, 0x01, 0x01, 0x20 | 1, 0, 0, 0, 0xF7]  # timecode 01:00:00:00, 25 fps
    yield 30, [0xF0, 0x7F, 0x7F, 0x06, 0x02, 0xF7]  # machine control: play
    yield 40, [0xF0, 0x7D, *range(64), 0xF7]  # a private dump

    for number in range(int(LENGTH_MS / QUARTER_MS * CLOCKS_A_QUARTER)):
        yield round(10 + number * QUARTER_MS / CLOCKS_A_QUARTER), [CLOCK]

    bar_ms = 4 * QUARTER_MS
    for bar, (root, chord) in enumerate(CHORDS):
        start = bar * bar_ms
        for note in chord:
            yield round(start + 60), [NOTE_ON, note, 72]
        for note in chord:
            yield round(start + bar_ms - 80), [NOTE_ON, note, 0]  # off, as a keyboard sends it
        for eighth in range(8):
            at = start + eighth * QUARTER_MS / 2
            note = root + (12 if eighth % 2 else 0)
            yield round(at + 65), [NOTE_ON | 1, note, 100]
            yield round(at + 200), [NOTE_OFF | 1, note, 64]
        yield round(start + 15), show_control(0x01, str(bar + 1), "1")
        for step in range(6):  # the volume pedal comes up in the first half of each bar
            yield round(start + 300 + step * 90), [CONTROL, 7, 40 + step * 17]
        for step, value in enumerate((8192, 9000, 10500, 9000, 8192)):
            yield round(start + 1200 + step * 60), [BEND, value & 0x7F, value >> 7]
        yield round(start + 1000), [PRESSURE, 50 + bar * 10]
        yield round(start + 1100), [SENSING]
    yield LENGTH_MS - 20, show_control(0x08, "")
    yield LENGTH_MS - 10, [STOP]


def main():
    print("# Ten seconds of a show. Written by make_performance.py; do not edit.")
    print("# MILLISECONDS MESSAGES BYTES")
    events = sorted((event for event in performance() if event[0] <= LENGTH_MS), key=lambda event: event[0])
    running = None
    total_messages = total_bytes = 0
    position = 0
    while position < len(events):
        at = events[position][0]
        line, messages = [], 0
        while position < len(events) and events[position][0] == at:
            message = events[position][1]
            status = message[0]
            line += message[1:] if status == running else message
            running = status if status < 0xF0 else None
            messages += 1
            position += 1
        total_messages += messages
        total_bytes += len(line)
        print(at, messages, " ".join(f"{byte:02X}" for byte in line))
    print(f"# {total_messages} messages, {total_bytes} bytes")


if __name__ == "__main__":
    main()
