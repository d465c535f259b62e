#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks what the compiler does not: floors of includes, rings of headers, foreign headers, links in the docs."""
import os
import re
import subprocess
import sys

FLOORS = [  # the first prefix that fits counts
    ("Source/Platform/", 0),
    ("Source/Core/", 1),
    ("Source/Audio/VST/", 4),
    ("Source/Audio/", 2),
    ("Source/Other/", 2),
    ("Source/UI/", 3),
    ("Tools/", 5),
    ("Tests/", 5),
    ("Bench/", 5),
    ("Fuzz/", 5),
]
STANDARD = set("""algorithm array atomic bit cassert cctype cerrno cfenv cfloat charconv chrono climits cmath compare
    complex concepts condition_variable csignal ctime cstdarg cstddef cstdint cstdio cstdlib cstring deque filesystem fstream functional
    initializer_list iomanip iosfwd iostream iterator limits list map memory mutex new numbers numeric optional ostream queue
    random ratio set shared_mutex span sstream string string_view system_error thread tuple type_traits typeinfo
    unordered_map unordered_set utility variant vector version immintrin.h emmintrin.h xmmintrin.h pmmintrin.h
    smmintrin.h""".split())
CLIENTS = [  # who talks to the engine by messages only: what of the engine's floor their headers lead to, however far off
    ("Tools/Monitor/Client/", re.compile(
        r"Source/Audio/(Interface/(CAudioInterfaceClient|CParamInterfaceClient\w*|CParamInterface(Param|Registry)Listener"
        r"|CGroupNamesParamListener|CParamInterfaceIds)"
        r"|Viz/(CVizExchange|CVizListener|CAudioVizData\w*|CAudioInterfaceViz(Processor|Requests))"
        r"|CAudioParam(Info|Format|Storage|Data|DataItem|Update|Converter)|Presets/CAudioPreset)\.h")),
]
FOREIGN = {  # floor: what it alone may include besides the standard library
    0: re.compile(r"(fftw3|pthread|unistd|fcntl|dlfcn|link|pwd|sched|time|errno|poll|signal)\.h|sys/\w+\.h|linux/\w+\.h"),
    1: re.compile(r"zlib\.h"),
    2: re.compile(r"$^"),
    3: re.compile(r"$^"),
    4: re.compile(r"(pluginterfaces|public\.sdk|base)/.*|productResources\.h"),
    5: re.compile(r".*"),
}
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.M)


def tracked(*patterns):
    out = subprocess.run(["git", "ls-files", "-z", "--", *patterns], check=True, capture_output=True, text=True).stdout
    return [name for name in out.split("\0") if name and os.path.exists(name)]


def floor_of(path):
    return next((floor for prefix, floor in FLOORS if path.startswith(prefix)), None)


def resolve(user, name):
    for candidate in (os.path.join("Source", name), os.path.join(os.path.dirname(user), name), name):
        candidate = os.path.normpath(candidate)
        if os.path.exists(candidate):
            return candidate
    return None


def rings(graph):
    state, stack, found = {}, [], []

    def visit(node):
        state[node] = 1
        stack.append(node)
        for target in graph.get(node, ()):
            if state.get(target) == 1:
                found.append(" -> ".join(stack[stack.index(target):] + [target]))
            elif target not in state:
                visit(target)
        stack.pop()
        state[node] = 2

    for node in graph:
        if node not in state:
            visit(node)
    return found


def beyond_messages(graph):
    for prefix, allowed in CLIENTS:
        for user in [path for path in graph if path.startswith(prefix)]:
            reached, left = set(), [user]
            while left:
                for target in graph.get(left.pop(), ()):
                    if target not in reached:
                        reached.add(target)
                        left.append(target)
            for target in sorted(reached):
                known = target.startswith(prefix) or floor_of(target) < 2 or allowed.fullmatch(target)
                if not known:
                    yield f"{user}: leads to {target}, which clients of the engine do not know"


def main():
    sys.setrecursionlimit(10000)
    problems, graph = [], {}
    for path in tracked("*.h", "*.cpp"):
        floor = floor_of(path)
        if floor is None:
            problems.append(f"{path}: stands in no room")
            continue
        with open(path, encoding="utf-8") as file:
            text = file.read()
        if not text.startswith("// SPDX-License-Identifier: GPL-3.0-or-later"):
            problems.append(f"{path}: the licence line is missing")
        for kind, name in INCLUDE.findall(text):
            if kind == "<":
                if name not in STANDARD and not FOREIGN[floor].fullmatch(name):
                    problems.append(f"{path}: <{name}> does not belong on floor {floor}")
                continue
            target = resolve(path, name)
            if target is None:
                if floor < 5:
                    problems.append(f'{path}: "{name}" is not there')
                continue
            graph.setdefault(path, []).append(target)
            target_floor = floor_of(target)
            if target_floor is not None and target_floor > floor:
                problems.append(f"{path}: floor {floor} includes {target} of floor {target_floor}")
    problems += [f"ring of includes: {ring}" for ring in rings(graph)]
    problems += beyond_messages(graph)

    for path in tracked("*.md"):
        with open(path, encoding="utf-8") as file:
            text = file.read()
        for link in re.findall(r"\]\(([^)#\s]+)[^)]*\)", text):
            if "://" not in link and not os.path.exists(os.path.join(os.path.dirname(path), link)):
                problems.append(f"{path}: the link {link} leads nowhere")

    for problem in problems:
        print(problem, file=sys.stderr)
    return 1 if problems else 0


sys.exit(main())
