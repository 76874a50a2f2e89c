-- The kinds of frames, byte by byte. Everything here works on strings and offsets from 0.
--
-- A frame says where its parts are: what ends in "_at" is the offset of a part, and a part that the
-- kind of frame does not have is nil. `is_answer` is nil where the frame itself does not tell.

local function u16(bytes, at)
  local high, low = bytes:byte(at + 1, at + 2)
  return high * 256 + low
end

local function u32(bytes, at)
  return u16(bytes, at) * 65536 + u16(bytes, at + 2)
end

local function u32_little(bytes, at)
  local a, b, c, d = bytes:byte(at + 1, at + 4)
  return ((d * 256 + c) * 256 + b) * 256 + a
end

-- One that has begun: `missing` bytes more are needed before more can be said.
local function begun(at, missing)
  return { at = at, missing = missing }
end

-- The longest request, header included; how long an answer may be depends on its command.
local LONGEST_REQUEST = 65535
-- A refusal has no payload. One that has is shown, unless its length makes nonsense likelier.
local LONGEST_REFUSAL = 65535

local CMX_1 = { kind = "CMX 1.0", command = 2, reserved = nil, length = 4, header = 8 }
local CMX_2 = { kind = "CMX 2.0", protocol = 2, command = 3, reserved = 5, length = 8, header = 12 }

local function read_cmx(bytes, at, form, limits)
  local here = #bytes - at
  if here < form.header then
    return begun(at, form.header - here)
  end
  local length = u32(bytes, at + form.length)
  local command, return_code = bytes:byte(at + form.command + 1, at + form.command + 2)
  local longest = limits.is_answer == false and LONGEST_REQUEST - form.header or
                  limits.longest(command)
  if length > longest or (return_code ~= 0 and length > LONGEST_REFUSAL) then
    return nil
  end
  local size = form.header + length
  return {
    kind = form.kind, family = "cmx", at = at, size = math.min(size, here),
    missing = size > here and size - here or nil,
    identifier_at = at, identifier_size = 2,
    protocol_at = form.protocol and at + form.protocol,
    command_at = at + form.command, command = command,
    return_code_at = at + form.command + 1, return_code = return_code,
    reserved_at = form.reserved and at + form.reserved,
    length_at = at + form.length, length_size = 4, length = length,
    payload_at = at + form.header, payload_size = math.min(length, here - form.header),
  }
end

local PREFIX_SIZE = 7
local TERMINATOR = "\238\255"

local function ends_well(bytes, at, size)
  return #bytes >= at + size and bytes:sub(at + size - 1, at + size) == TERMINATOR
end

local function has_prefix_inside(bytes, at, size)
  local inner = bytes:sub(at + 2, at + size)
  return inner:find("$LDCMD,", 1, true) or inner:find("$LDOTA,", 1, true) or
         inner:find("$LDPTC,", 1, true)
end

-- What every serial frame has. Its checksum stands before the terminator and covers everything
-- between the prefix and itself.
local function serial_frame(bytes, at, size, kind, u32_of)
  local checksum_at = at + size - 6
  local frame = {
    kind = kind, family = "serial", at = at, size = size,
    identifier_at = at, identifier_size = PREFIX_SIZE,
    checksum_at = checksum_at, checksum = u32_of(bytes, checksum_at),
    expected = Checksum.of_line(bytes, at + PREFIX_SIZE, size - PREFIX_SIZE - 6),
    terminator_at = at + size - 2,
  }
  frame.is_sound = frame.checksum == frame.expected and ends_well(bytes, at, size)
  return frame
end

-- A frame whose checksum is wrong is one all the same when it ends where it says, and no other has
-- begun before.
local function sound_or_damaged(bytes, frame)
  local is_frame = frame.is_sound or
      (ends_well(bytes, frame.at, frame.size) and not has_prefix_inside(bytes, frame.at, frame.size))
  return is_frame and frame or nil
end

local function command_frame(bytes, at, size, is_answer)
  if #bytes < at + size then
    return nil
  end
  local frame = serial_frame(bytes, at, size, "$LDCMD", u32_little)
  local payload_at = at + (is_answer and 10 or 9)
  frame.is_answer = is_answer
  frame.length_at, frame.length_size, frame.length = at + 7, 1, bytes:byte(at + 8)
  frame.command_at, frame.command = at + 8, bytes:byte(at + 9)
  frame.random_at = at + size - 10
  frame.payload_at, frame.payload_size = payload_at, frame.random_at - payload_at
  if is_answer then
    frame.return_code_at, frame.return_code = at + 9, bytes:byte(at + 10)
  end
  -- The answer to a switch of the mode: the mode, a byte without meaning, the status.
  if is_answer and frame.command == 0x03 and frame.length == 3 then
    frame.mode_at = at + 9
    frame.return_code_at, frame.return_code = at + 11, bytes:byte(at + 12)
    frame.payload_at, frame.payload_size = frame.random_at, 0
  end
  return frame
end

-- The length byte counts differently in the two directions: what fits tells which it is.
local function read_command(bytes, at)
  local here = #bytes - at
  if here < 9 then
    return begun(at, 19 - here)
  end
  local length = bytes:byte(at + 8)
  if length == 0 then
    return nil
  end
  local request = command_frame(bytes, at, 18 + length, false)
  local answer = command_frame(bytes, at, 19 + length, true)
  for _, frame in ipairs({ request or false, answer or false }) do
    if frame and frame.is_sound then
      return frame
    end
  end
  local damaged = (answer and sound_or_damaged(bytes, answer)) or
                  (request and sound_or_damaged(bytes, request))
  return damaged or (not answer and begun(at, 19 + length - here)) or nil
end

local function read_long(bytes, at)
  local here = #bytes - at
  if here < 10 then
    return begun(at, 18 - here)
  end
  local length = u16(bytes, at + 7)
  local direction = bytes:sub(at + 10, at + 10)
  local is_answer = direction == "A"
  if not (is_answer or direction == "Q") or length < (is_answer and 4 or 3) then
    return nil
  end
  local size = 9 + length + 6
  if here < size then
    return begun(at, size - here)
  end
  local frame = serial_frame(bytes, at, size, "$LDOTA", u32)
  frame.is_answer = is_answer
  frame.length_at, frame.length_size, frame.length = at + 7, 2, length
  frame.direction_at = at + 9
  frame.number_at, frame.number = at + 10, bytes:byte(at + 11)
  frame.command_at, frame.command = at + 11, bytes:byte(at + 12)
  frame.payload_at = at + 12
  if is_answer then
    frame.return_code_at, frame.return_code = at + 12, bytes:byte(at + 13)
    frame.payload_at = at + 13
  end
  frame.payload_size = frame.checksum_at - frame.payload_at
  return sound_or_damaged(bytes, frame)
end

local LONGEST_POINT_DATA = 1400

local function read_points(bytes, at)
  local here = #bytes - at
  if here < 11 then
    return begun(at, 17 - here)
  end
  local length = u16(bytes, at + 9)
  if length > LONGEST_POINT_DATA then
    return nil
  end
  if here < 17 + length then
    return begun(at, 17 + length - here)
  end
  local frame = serial_frame(bytes, at, 17 + length, "$LDPTC", u32)
  frame.version_at = at + 7
  frame.length_at, frame.length_size, frame.length = at + 9, 2, length
  frame.payload_at, frame.payload_size = at + 11, length
  return frame.is_sound and frame or nil
end

-- What frames begin with. `read` gives the frame at an offset where that text stands, as Frames.find
-- does; nil when it is none.
local FrameForms = {
  { text = "$LDCMD,", family = "serial", read = read_command },
  { text = "$LDOTA,", family = "serial", read = read_long },
  { text = "$LDPTC,", family = "serial", read = read_points },
  { text = "Gt", family = "cmx",
    read = function(bytes, at, limits) return read_cmx(bytes, at, CMX_1, limits) end },
  { text = "Wu", family = "cmx",
    read = function(bytes, at, limits) return read_cmx(bytes, at, CMX_2, limits) end },
}
