#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Plays recorded material through every program and prints the table of Docs/Presets.md.

    Tools/PresetTable/measure.py [PROGRAM...]

Needs a build in build/release and Debian's python3-numpy, ffmpeg and sox. The material is fetched from Debian's packages
into build/material and cut there; it is not part of the project.
"""
import json
import pathlib
import re
import subprocess
import sys

import numpy as np

ROOT = pathlib.Path(__file__).resolve().parents[2]
RENDER = ROOT / "build/release/thumpcraft-render"
MATERIAL = ROOT / "build/material"
VOICE = ["Front_Center", "Front_Left", "Front_Right", "Rear_Center", "Rear_Left", "Rear_Right", "Side_Left", "Side_Right"]
WINDOW = 0.05  # seconds of one look at the gain
FLOOR = 10 ** (-50 / 20)  # quieter windows say nothing of it


def run(*words, **more):
    return subprocess.run([str(word) for word in words], check=True, capture_output=True, **more)


def fetch():
    """The loop of the project twice; 20 s of a finished song, 4 dB down; spoken words one after the other."""
    names = [MATERIAL / (name + ".wav") for name in ("drums", "mix", "voice")]
    if all(name.exists() for name in names):
        return names
    MATERIAL.mkdir(parents=True, exist_ok=True)
    run("apt-get", "download", "alsa-utils", "extremetuxracer-data", cwd=MATERIAL)
    for package in MATERIAL.glob("*.deb"):
        run("dpkg", "-x", package, MATERIAL)
    run("sox", ROOT / "Examples/drum-loop.flac", names[0], "repeat", "1")
    song = MATERIAL / "usr/share/games/etr/music/credits1-cp.ogg"
    run("sox", "-v", "0.63", song, names[1], "trim", "30", "20")
    run("sox", *(MATERIAL / f"usr/share/sounds/alsa/{word}.wav" for word in VOICE), names[2])
    return names


def samples(path):
    channels, rate = (int(run("sox", "--i", flag, path, text=True).stdout) for flag in ("-c", "-r"))
    raw = run("ffmpeg", "-v", "error", "-i", path, "-f", "f64le", "-").stdout
    return np.frombuffer(raw).reshape(-1, channels), rate


def loudness(path):
    told = run("ffmpeg", "-nostats", "-i", path, "-af", "ebur128", "-f", "null", "-", text=True).stderr
    return float(re.findall(r"I:\s+(-?[\d.]+) LUFS", told)[-1])


def decibels(value):
    return 20 * np.log10(max(value, 1e-12))


def rms(x):
    return np.sqrt((x**2).mean())


def gain_range(before, after, rate):
    """From the 5th to the 95th percentile of the gain of short windows, dB."""
    count = int(rate * WINDOW)
    windows = [slice(i, i + count) for i in range(0, len(before) - count, count)]
    gains = [decibels(rms(after[w]) / rms(before[w])) for w in windows if rms(before[w]) > FLOOR]
    return np.percentile(gains, 95) - np.percentile(gains, 5)


def main():
    presets = json.loads(run(RENDER, "--presets", "--json", text=True).stdout)
    wanted = sys.argv[1:] or [preset["name"] for preset in presets]
    print("| program | piece | loudness LU | RMS dB | peak dBFS | crest dB | gain moves dB |")
    print("|---|---|---|---|---|---|---|")
    out = MATERIAL / "out.wav"
    for name in wanted:
        for piece in fetch():
            run(RENDER, "--preset", name, piece, out)
            (before, rate), (after, _) = samples(piece), samples(out)
            crest = [decibels(np.abs(x).max() / rms(x)) for x in (before, after)]
            print(
                f"| {name} | {piece.stem} | {loudness(out) - loudness(piece):+.1f} "
                f"| {decibels(rms(after) / rms(before)):+.1f} | {decibels(np.abs(after).max()):+.1f} "
                f"| {crest[0]:.1f} to {crest[1]:.1f} | {gain_range(before, after, rate):.1f} |",
                flush=True,
            )


if __name__ == "__main__":
    main()
