-- SPDX-License-Identifier: GPL-3.0-or-later
-- Run by run-mono-track: puts the plug-in in both formats on mono tracks with two outputs, feeds them with noise, and
-- prints "VST3 left right" and "VST2 left right", peaks in dBFS behind the plug-in.
local folder = os.getenv ("TONALIGN_SESSION")
local session = create_session (folder, "mono", 48000)
assert (session, "no session")

local plugins = {
	{ "VST3", ARDOUR.PluginType.VST3, "7176726E506C756751547E3251547E32" },
	{ "VST2", ARDOUR.PluginType.LXVST, "TonalignLinearPhase" },
}
local tracks = {}
for _, plugin in ipairs (plugins) do
	local name, kind, id = table.unpack (plugin)
	local track = session:new_audio_track (1, 2, nil, 1, name, ARDOUR.PresentationInfo.max_order,
		ARDOUR.TrackMode.Normal, true):front ()
	track:monitoring_control ():set_value (ARDOUR.MonitorChoice.MonitorInput, PBD.GroupControlDisposition.NoGroup)
	local noise = ARDOUR.LuaAPI.new_luaproc (session, "ACE Noise")
	assert (not noise:isnil (), "Ardour's noise generator is missing")
	assert (track:add_processor_by_index (noise, 0, nil, true) == 0)
	local effect = ARDOUR.LuaAPI.new_plugin (session, id, kind, "")
	assert (not effect:isnil (), name .. " can't be loaded")
	assert (track:add_processor_by_index (effect, 1, nil, true) == 0)
	local insert = effect:to_insert ()
	print (name .. " streams", insert:input_streams ():n_audio (), insert:output_streams ():n_audio ())
	tracks[name] = track
end

ARDOUR.LuaAPI.usleep (4 * 1000 * 1000)   -- behind the latency of 0.7 seconds
for name, track in pairs (tracks) do
	local meter = track:peak_meter ()
	print (name .. " peaks", meter:meter_level (0, ARDOUR.MeterType.MeterPeak),
		meter:meter_level (1, ARDOUR.MeterType.MeterPeak))
end
close_session ()
