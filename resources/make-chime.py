#!/usr/bin/env python3
"""Writes Email1.wav, the sound of new mail: two struck notes that ring out. Same bytes every time."""
import math
import struct
import sys
import wave

RATE = 22050
SECONDS = 1.2
NOTES = [(0.0, 659.26), (0.16, 987.77)]  # start in seconds, frequency: E5, B5
PARTIALS = [(1.0, 1.0, 4.5), (2.0, 0.35, 7.0), (3.01, 0.12, 11.0)]  # of frequency, level, decay


def note(time, frequency):
    if time < 0:
        return 0.0
    attack = min(1.0, time / 0.004)
    return attack * sum(
        level * math.exp(-decay * time) * math.sin(2 * math.pi * frequency * ratio * time)
        for ratio, level, decay in PARTIALS
    )


def sample(index):
    time = index / RATE
    fade = min(1.0, (SECONDS - time) / 0.1)
    return fade * 0.3 * sum(note(time - start, frequency) for start, frequency in NOTES)


def main():
    samples = [round(32767 * sample(i)) for i in range(int(RATE * SECONDS))]
    with wave.open(sys.argv[1] if len(sys.argv) > 1 else "Email1.wav", "wb") as chime:
        chime.setnchannels(1)
        chime.setsampwidth(2)
        chime.setframerate(RATE)
        chime.writeframes(struct.pack(f"<{len(samples)}h", *samples))


if __name__ == "__main__":
    main()
