-- Where frames come from: TCP, whether a lidar is there or a serial line behind a device server;
-- UDP, for device servers; captures of a serial line itself.

local tcp_stream, udp_stream = Field.new("tcp.stream"), Field.new("udp.stream")
local interface = Field.new("frame.interface_id")

-- How long a frame may pause on a serial line before it is given up, in seconds.
local LONGEST_PAUSE = 0.5

local lines, put_ahead, goes_on = {}, {}, {}

function tevron.init()
  Pairing.forget()
  lines, put_ahead, goes_on = {}, {}, {}
end

local function number_of(extractor)
  local info = extractor()
  return info and tostring(info.value) or "0"
end

-- The words for the list of packets. A packet may hold many frames, and is asked for in portions.
local function tell(pinfo, text)
  local is_first = pinfo.private["tevron.told"] == nil
  pinfo.private["tevron.told"] = "1"
  pinfo.cols.protocol = "Tevron"
  if is_first then
    pinfo.cols.info = text
  else
    pinfo.cols.info:append("; " .. text)
  end
  pinfo.cols.info:fence()
end

-- Which of the packet's frames this is.
local function next_place(pinfo)
  local place = (tonumber(pinfo.private["tevron.place"]) or 0) + 1
  pinfo.private["tevron.place"] = tostring(place)
  return place
end

-- Frames of TCP do not tell which of the two sides is the lidar: its port does. On any other port
-- the first frame has to give a hint, or is taken for a request, since the client speaks first.
local function looks_like_answer(bytes, frame, model)
  local payload = bytes:sub(frame.payload_at + 1, frame.payload_at + frame.payload_size)
  local as_request = Commands.of_request(model, frame, payload)
  local size = as_request.request.size
  local fits_request = size == nil or size + (as_request.request.head or 0) == frame.payload_size
  return frame.return_code ~= 0 or
         (not fits_request and not Commands.of_answer(model, frame).is_unknown)
end

local function is_from_lidar(link, pinfo, bytes, frame)
  local from = Settings.is_lidar_port(pinfo.src_port)
  local to = Settings.is_lidar_port(pinfo.dst_port)
  if from ~= to then
    return from
  end
  if frame == nil and link.lidar == nil then
    return nil
  end
  local source = tostring(pinfo.src) .. ":" .. pinfo.src_port
  if link.lidar == nil then
    local is_answer = looks_like_answer(bytes, frame, Settings.model())
    link.lidar = is_answer and source or tostring(pinfo.dst) .. ":" .. pinfo.dst_port
  end
  return source == link.lidar
end

local function make_record(link, pinfo, bytes, frame, is_answer, model)
  local record = { is_answer = is_answer, command = frame.command, number = frame.number,
                   time = pinfo.rel_ts, version = link.version }
  if is_answer then
    record.meaning = Commands.of_answer(model, frame)
  else
    local payload = bytes:sub(frame.payload_at + 1, frame.payload_at + frame.payload_size)
    record.meaning = Commands.of_request(model, frame, payload, link.version)
    record.echo_key = frame.family == "serial" and bytes:sub(frame.at + 1, frame.at + frame.size) or nil
  end
  return record
end

local function add_frame(tvb, pinfo, root, bytes, frame, link)
  if frame.command == nil then
    return tell(pinfo, Tree.add_points(root, tvb, frame))
  end
  local model = Settings.model()
  local is_answer = frame.is_answer
  if is_answer == nil then
    is_answer = is_from_lidar(link, pinfo, bytes, frame)
  end
  local function make()
    return make_record(link, pinfo, bytes, frame, is_answer, model)
  end
  local place = next_place(pinfo)
  -- A damaged frame is nothing that anybody answers, or takes for an answer.
  local record = frame.is_sound == false and make() or
                 Pairing.record(link, pinfo.number, place, make)
  if record.request then
    record.meaning = record.request.meaning
  end
  local told = {}
  tell(pinfo, Tree.add_command(root, tvb, frame, record, model, pinfo.visited, told))
  link.version = link.version or told.version
end

local function add_stray(tvb, pinfo, root, from, to, what, why)
  if to > from then
    tell(pinfo, Tree.add_stray(root, tvb(from, to - from), what, why))
  end
end

local function longest_answer(command)
  return Commands.longest_answer(Settings.model(), command, Settings.longest())
end

-- Adds every frame of `tvb`. The one that has begun at the end is returned, and not added.
local function add_frames(tvb, pinfo, root, link, family)
  local bytes = tvb:raw()
  local at = 0
  while at < #bytes do
    local limits = { family = family or link.family, longest = longest_answer,
                     is_answer = pinfo.src_port ~= 0 and is_from_lidar(link, pinfo) or nil }
    local frame = Frames.find(bytes, at, limits)
    add_stray(tvb, pinfo, root, at, frame and frame.at or #bytes, Experts.stray, "Stray bytes")
    if frame == nil then
      return nil
    elseif frame.missing then
      return frame, bytes
    end
    link.family = link.family or frame.family
    add_frame(tvb, pinfo, root, bytes, frame, link)
    at = frame.at + frame.size
  end
  return nil
end

-- What is left of a frame whose rest will not come: too little was captured, or Wireshark is told
-- not to reassemble.
local function add_cut(tvb, pinfo, root, frame, bytes, link)
  if frame.kind then
    add_frame(tvb, pinfo, root, bytes, frame, link)
  else
    add_stray(tvb, pinfo, root, frame.at, tvb:len(), Experts.cut, "Part of a frame")
  end
end

local function is_tls(tvb)
  return tvb:len() >= 3 and tvb(0, 1):uint() >= 0x14 and tvb(0, 1):uint() <= 0x17 and
         tvb(1, 1):uint() == 3 and tvb(2, 1):uint() <= 4
end

-- A frame that has begun is looked at again with every segment, since its length may be damaged and
-- the next one may show it. Of a long one that would cost too much.
local LONGEST_LOOK = 65536

function tevron.dissector(tvb, pinfo, root)
  local link = Pairing.link("tcp " .. number_of(tcp_stream))
  if link.family == nil and is_tls(tvb) then
    link.is_tls = true
  end
  if link.is_tls and pinfo.curr_proto ~= "TLS" and is_tls(tvb) then
    return Dissector.get("tls"):call(tvb, pinfo, root)
  end
  local frame, bytes = add_frames(tvb, pinfo, root, link)
  if frame == nil then
    return tvb:len()
  elseif pinfo.can_desegment == 0 then
    add_cut(tvb, pinfo, root, frame, bytes, link)
    return tvb:len()
  end
  pinfo.desegment_offset = frame.at
  pinfo.desegment_len = frame.missing > LONGEST_LOOK and frame.missing or DESEGMENT_ONE_MORE_SEGMENT
  return tvb:len()
end

-- The bytes that a line has ready ahead of this packet: of a frame that began in one before.
local function bytes_ahead(line, pinfo)
  if not pinfo.visited and put_ahead[pinfo.number] == nil then
    local waits = lines[line]
    local is_in_time = waits and pinfo.rel_ts - waits.time <= LONGEST_PAUSE
    put_ahead[pinfo.number] = is_in_time and waits.bytes or ""
    if is_in_time then
      goes_on[waits.packet] = pinfo.number
    end
    lines[line] = nil
  end
  return put_ahead[pinfo.number] or ""
end

-- A serial line is one stream, whatever portions it was captured in.
local function dissect_line(tvb, pinfo, root, link_key, line)
  local ahead = bytes_ahead(line, pinfo)
  if #ahead > 0 then
    local whole = ByteArray.new(ahead, true)
    whole:append(tvb:bytes())
    tvb = whole:tvb("Serial line")
  end
  local link = Pairing.link(link_key)
  local frame, bytes = add_frames(tvb, pinfo, root, link, "serial")
  if frame == nil then
    return
  end
  local rest = goes_on[pinfo.number]
  if not pinfo.visited then
    lines[line] = { bytes = bytes:sub(frame.at + 1), packet = pinfo.number, time = pinfo.rel_ts }
  end
  local why = rest and ("Part of a frame that goes on in frame %d"):format(rest) or "Part of a frame"
  add_stray(tvb, pinfo, root, frame.at, tvb:len(), not rest and Experts.cut or nil, why)
end

function tevron_serial.dissector(tvb, pinfo, root)
  local stream = udp_stream()
  if stream then
    local key = "udp " .. tostring(stream.value)
    dissect_line(tvb, pinfo, root, key, key .. " " .. tostring(pinfo.src) .. " " .. pinfo.src_port)
  else
    dissect_line(tvb, pinfo, root, "line", "line " .. number_of(interface))
  end
  return tvb:len()
end
