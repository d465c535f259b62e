-- SPDX-License-Identifier: GPL-3.0-or-later
-- Makes a session with one stereo track: the drum loop through the plug-in, a program chosen, some parameters set.
-- Arguments: folder for the session (new), sound file at 44100 Hz, its length in samples, program.
local folder, sound, length, program = arg[1], arg[2], tonumber(arg[3]), arg[4]
local kSuperclocks = 282240000 // 44100 -- how this version writes positions, a sample
io.stdout:setvbuf("no")

assert(AudioEngine:set_backend("None (Dummy)", "", ""))
local session = assert(create_session(folder, "drums", 44100))
local track = session:new_audio_track(2, 2, nil, 1, "drums", ARDOUR.PresentationInfo.max_order,
                                      ARDOUR.TrackMode.Normal, true):front()
local insert = ARDOUR.LuaAPI.new_plugin(session, "Thumpcraft", ARDOUR.PluginType.VST3, "")
assert(not insert:isnil(), "the plug-in is not known: was it scanned?")
assert(track:add_processor_by_index(insert, 0, nil, true) == 0)
local plugin = insert:to_insert():plugin(0)
print("plug-in: " .. plugin:name() .. " by " .. plugin:maker() .. ", " .. plugin:parameter_count() ..
      " parameters, latency " .. insert:to_insert():signal_latency())

local preset = plugin:preset_by_label(program)
assert(preset ~= nil, "no program " .. program)
assert(plugin:load_preset(preset), "the program is refused")
for index, value in pairs({[12] = 0.4, [19] = 0.55, [71] = 0.6}) do
    assert(ARDOUR.LuaAPI.set_processor_param(insert, index, value))
end
track:panner_shell():set_bypassed(true) -- its law is not ours to measure
session:save_state("")
close_session()

-- There is no import without the editor, so the region is written into the file.
local copy = folder .. "/interchange/" .. folder:match("[^/]+$") .. "/audiofiles/drum-loop.flac"
local input, output = assert(io.open(sound, "rb")), assert(io.open(copy, "wb"))
output:write(input:read("a"))
input:close()
output:close()
local name = folder .. "/drums.ardour"
local file = assert(io.open(name))
local text = file:read("a")
file:close()
local finish = length * kSuperclocks
local sources = '<Sources>\n' ..
    '<Source name="drum-loop.flac" take-id="" type="audio" flags="" id="90000" channel="0" origin="drum-loop.flac"/>\n' ..
    '<Source name="drum-loop.flac" take-id="" type="audio" flags="" id="90001" channel="1" origin="drum-loop.flac"/>\n' ..
    '</Sources>'
local region = '<Region name="drum-loop" type="audio" id="90002" start="a0" length="a' .. finish .. '@a0" channels="2"' ..
    ' source-0="90000" source-1="90001" master-source-0="90000" master-source-1="90001" opaque="1" external="1"' ..
    ' fade-in-active="0" fade-out-active="0" default-fade-in="0" default-fade-out="0" scale-amplitude="1"' ..
    ' first-edit="nothing" layering-index="0"/>'
local function replace(pattern, by)
    local count
    text, count = text:gsub(pattern, function() return by end, 1)
    assert(count == 1, pattern .. " is not in the session's file")
end
replace('<Sources/>', sources)
replace('<Locations/>', '<Locations><Location id="90003" name="session" start="a0" end="a' .. finish ..
        '" flags="IsSessionRange" locked="0" timestamp="0"/></Locations>')
replace('(<Playlist id="%d+" name="drums"[^>]*)/>', text:match('(<Playlist id="%d+" name="drums"[^>]*)/>') .. '>' ..
        region .. '</Playlist>')
file = assert(io.open(name, "w"))
file:write(text)
file:close()
