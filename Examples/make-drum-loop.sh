#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Plays four bars of drums, 96 beats a minute, from recorded single hits, and writes drum-loop.flac beside this script.
# Needs Debian's sox and hydrogen-drumkits. The loop is in the repository; this tells how it was made.
set -euo pipefail
cd "$(dirname "$0")"
kit=/usr/share/hydrogen/data/drumkits/ColomboAcousticDrumkit
step=0.15625                                  # a sixteenth, seconds
tracks=()
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

hit() { # sample, gain, sixteenths from the start...
    local sample=$1 gain=$2 at
    shift 2
    for at in "$@"; do
        local file="$scratch/${#tracks[@]}.wav"
        sox "$kit/$sample.flac" -b 24 "$file" vol "$gain" pad "$(awk "BEGIN { print $at * $step }")" 0
        tracks+=("$file")
    done
}

hit bassdrum-4mics-br-stereo-normal3 0.95 0 7 10 16 23 26 32 39 42 48 55 58
hit bassdrum-4mics-br-stereo-soft4   0.70 6 22 38 61
hit snare-opaque-2mics_normal-shot1        0.85 4 20 36 52
hit snare-opaque-normal-mic-normal_shot2   0.80 12 28 44
hit snare-opaque-normal-mic-rimshot6       0.80 60
hit snare-opaque-normal-mic-normal_shot3   0.22 9 25 31 41 57
hit hihat-closed-4 0.50 0 4 8 12 16 20 24 28 32 36 40 44 48 52 56
hit hihat-closed-1 0.35 2 6 10 18 22 26 34 38 42 50 54
hit hihat-semi-open-1 0.40 14 46
hit hihat-open-1 0.40 30
hit crash16i__crash1 0.50 0
hit tom-hi-1  0.70 58 59
hit tom-mid-1 0.70 61
hit tom-low-1 0.75 62 63

sox -m "${tracks[@]}" -b 16 -r 44100 drum-loop.flac trim 0 10 fade t 0 10 0.01 norm -3
