#!/usr/bin/env python3
"""Synthesises the library's six short sounds, resources/sounds/101.wav to 106.wav.

Every file is uncompressed PCM, mono, with the rate, sample size, number of sample bytes and
total file size the controls were made with; where the RIFF chunks alone come out shorter, a
LIST/INFO chunk naming the sound fills the file to its size. The output depends on nothing but
this script (noise comes from a fixed linear congruential generator), so running it again
gives the same bytes.

    python3 resources/tools/make_sounds.py [OUTPUT_DIR]
"""

import math
import os
import struct
import sys

# id: (rate, bits, data bytes, file bytes, name)
SOUNDS = {
    101: (11025, 8, 705, 890, "Klick"),
    102: (22050, 16, 17088, 17132, "Glocke"),
    103: (11025, 8, 8772, 8864, "Gong"),
    104: (11025, 8, 4473, 4566, "Aufwaerts"),
    105: (11025, 8, 1714, 1758, "Blip"),
    106: (11025, 8, 1532, 1576, "Tupf"),
}


class Noise:
    """A fixed 32-bit LCG, so the click sounds the same on every run."""

    def __init__(self, seed):
        self.state = seed

    def next(self):
        self.state = (self.state * 1664525 + 1013904223) & 0xFFFFFFFF
        return (self.state >> 8) / float(1 << 23) - 1.0


def envelope(t, attack, decay):
    """A fast linear attack and an exponential decay (t, attack, decay in seconds)."""
    if t < attack:
        return t / attack
    return math.exp(-(t - attack) / decay)


def fade_out(i, n, tail):
    """Brings the last `tail` samples to silence so no sound ends with a click."""
    left = n - 1 - i
    return 1.0 if left >= tail else left / float(tail)


def click(n, rate):
    noise = Noise(101)
    out = []
    for i in range(n):
        t = i / rate
        tick = math.sin(2 * math.pi * 2400 * t) * 0.6 + noise.next() * 0.4
        out.append(tick * envelope(t, 0.001, 0.012) * fade_out(i, n, 40))
    return out


def bell(n, rate):
    # Partials of a small bell: a fundamental with two inharmonic overtones that die faster.
    partials = [(880.0, 0.55, 0.16), (880.0 * 2.76, 0.25, 0.07), (880.0 * 5.4, 0.12, 0.03)]
    out = []
    for i in range(n):
        t = i / rate
        v = sum(a * math.sin(2 * math.pi * f * t) * envelope(t, 0.002, d) for f, a, d in partials)
        out.append(v * fade_out(i, n, 300))
    return out


def two_tone(n, rate):
    # "Ding-dong": a major third down, the second strike halfway.
    half = n // 2
    out = []
    for i in range(n):
        t = i / rate
        v = 0.0
        for start, freq in ((0, 659.25), (half, 523.25)):
            if i >= start:
                ts = (i - start) / rate
                v += 0.45 * envelope(ts, 0.003, 0.22) * (
                    math.sin(2 * math.pi * freq * ts) + 0.3 * math.sin(2 * math.pi * 2 * freq * ts))
        out.append(v * fade_out(i, n, 200))
    return out


def sweep(n, rate, f0, f1):
    out = []
    phase = 0.0
    for i in range(n):
        t = i / rate
        f = f0 + (f1 - f0) * i / n
        phase += 2 * math.pi * f / rate
        out.append(0.6 * math.sin(phase) * envelope(t, 0.005, 0.25) * fade_out(i, n, 150))
    return out


def blip(n, rate, freq, decay):
    out = []
    for i in range(n):
        t = i / rate
        square = 1.0 if math.sin(2 * math.pi * freq * t) >= 0 else -1.0
        v = 0.35 * square + 0.25 * math.sin(2 * math.pi * freq * t)
        out.append(v * envelope(t, 0.002, decay) * fade_out(i, n, 80))
    return out


def samples(ident, n, rate):
    if ident == 101:
        return click(n, rate)
    if ident == 102:
        return bell(n, rate)
    if ident == 103:
        return two_tone(n, rate)
    if ident == 104:
        return sweep(n, rate, 440.0, 1320.0)
    if ident == 105:
        return blip(n, rate, 1046.5, 0.06)
    return blip(n, rate, 392.0, 0.05)


def pcm(values, bits):
    if bits == 8:  # unsigned, silence at 128
        return bytes(max(0, min(255, int(round(128 + 127 * v)))) for v in values)
    return b"".join(struct.pack("<h", max(-32768, min(32767, int(round(32767 * v))))) for v in values)


def chunk(tag, payload):
    data = tag + struct.pack("<I", len(payload)) + payload
    return data + (b"\0" if len(payload) % 2 else b"")


def info_list(ident, name, size):
    """A LIST/INFO chunk of exactly `size` bytes: the sound's name, then the maker's note
    padded with zero bytes to fill."""
    inam = chunk(b"INAM", name.encode("ascii") + b"\0")
    room = size - 8 - 4 - len(inam) - 8  # what the ISFT text may take
    if room < 2 or room % 2:
        raise SystemExit("sound %d: %d bytes cannot hold an INFO list" % (ident, size))
    note = b"Korvex-Tools make_sounds.py"
    text = (note + b"\0" * room)[: room - 1] + b"\0"
    body = b"INFO" + inam + chunk(b"ISFT", text)
    out = chunk(b"LIST", body)
    assert len(out) == size
    return out


def wave(ident):
    rate, bits, data_bytes, file_bytes, name = SOUNDS[ident]
    block = bits // 8
    count = data_bytes // block
    fmt = struct.pack("<HHIIHH", 1, 1, rate, rate * block, block, bits)
    body = chunk(b"fmt ", fmt) + chunk(b"data", pcm(samples(ident, count, rate), bits))
    rest = file_bytes - 12 - len(body)
    if rest:
        body += info_list(ident, name, rest)
    out = b"RIFF" + struct.pack("<I", 4 + len(body)) + b"WAVE" + body
    assert len(out) == file_bytes, (ident, len(out), file_bytes)
    return out


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    target = sys.argv[1] if len(sys.argv) > 1 else os.path.join(here, "..", "sounds")
    os.makedirs(target, exist_ok=True)
    for ident in sorted(SOUNDS):
        with open(os.path.join(target, "%d.wav" % ident), "wb") as f:
            f.write(wave(ident))


if __name__ == "__main__":
    main()
