-- SPDX-License-Identifier: GPL-3.0-or-later
-- Opens a session again, prints the parameters of its plug-in and saves it.
-- Argument: folder of the session.
io.stdout:setvbuf("no")
assert(AudioEngine:set_backend("None (Dummy)", "", ""))
local session = assert(load_session(arg[1], "drums"))
local insert = session:route_by_name("drums"):nth_plugin(0)
local plugin = insert:to_insert():plugin(0)
for i = 0, plugin:parameter_count() - 1 do
    print(plugin:parameter_label(i), string.format("%.7f", (ARDOUR.LuaAPI.get_processor_param(insert, i, true))))
end
session:save_state("")
close_session()
