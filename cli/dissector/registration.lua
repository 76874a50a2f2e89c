-- Which connections are the lidars': by their port, or by how they begin.

-- Of a connection on any port the first bytes have to be a frame: whole and followed by nothing but
-- frames, or one that goes on in the next segment and is of a likely size.
local LIKELY_LENGTH = 1024 * 1024

local function likely_length()
  return LIKELY_LENGTH
end

local function begins_with_frame(bytes, family)
  local frame = Frames.find(bytes, 0, { family = family, longest = likely_length })
  if frame == nil or frame.at ~= 0 then
    return false
  elseif frame.family ~= "cmx" then
    return #bytes >= 7
  end
  local is_likely = frame.return_code == 0 or frame.length == 0
  local next = Frames.find(bytes, frame.size, { family = "cmx", longest = likely_length })
  return is_likely and (frame.size == #bytes or (next ~= nil and next.at == frame.size))
end

local function is_ours_over_tcp(tvb, pinfo, root)
  if not begins_with_frame(tvb:raw()) then
    return false
  end
  pinfo.conversation = tevron
  tevron.dissector(tvb, pinfo, root)
  return true
end

local function is_ours_over_udp(tvb, pinfo, root)
  if not begins_with_frame(tvb:raw(), "serial") then
    return false
  end
  pinfo.conversation = tevron_serial
  tevron_serial.dissector(tvb, pinfo, root)
  return true
end

tevron:register_heuristic("tcp", is_ours_over_tcp)
tevron:register_heuristic("tls", is_ours_over_tcp)
tevron_serial:register_heuristic("udp", is_ours_over_udp)

local tcp_ports = DissectorTable.get("tcp.port")
local ports = tostring(prefs.ports)
tcp_ports:add(ports, tevron)
tcp_ports:add_for_decode_as(tevron_serial)
DissectorTable.get("udp.port"):add_for_decode_as(tevron_serial)

function tevron.prefs_changed()
  tcp_ports:remove(ports, tevron)
  ports = tostring(prefs.ports)
  tcp_ports:add(ports, tevron)
end
