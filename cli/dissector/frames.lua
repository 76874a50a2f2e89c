-- Finds frames in bytes that may hold anything. Offsets count from 0.

local Frames = {}

local LONGEST_START = #"$LDCMD,"

local function first_start(bytes, from, family)
  local first, first_at
  for _, start in ipairs(FrameForms) do
    local place = (family == nil or family == start.family) and bytes:find(start.text, from + 1, true)
    if place and (first_at == nil or place - 1 < first_at) then
      first, first_at = start, place - 1
    end
  end
  return first, first_at
end

-- A start may be broken off by the end of the bytes.
local function start_at_end(bytes, from, family)
  for size = math.min(LONGEST_START - 1, #bytes - from), 1, -1 do
    local tail = bytes:sub(-size)
    for _, start in ipairs(FrameForms) do
      local is_it = (family == nil or family == start.family) and size < #start.text
      if is_it and start.text:sub(1, size) == tail then
        return { at = #bytes - size, missing = 1 }
      end
    end
  end
  return nil
end

-- A damaged length announces bytes that never come, and would hide the frames behind it: one that is
-- sound, or that ends where the bytes do.
local function hides_a_frame(bytes, at, family, limits)
  local place = at + 1
  while true do
    local start, start_at = first_start(bytes, place, family)
    if start == nil then
      return false
    end
    local frame = start.read(bytes, start_at, limits)
    local ends_here = frame and frame.family == "cmx" and frame.at + frame.size == #bytes
    if frame and not frame.missing and (frame.is_sound or ends_here) then
      return true
    end
    place = start_at + 1
  end
end

-- The first frame at or behind the offset `from`: whole, or with `missing` bytes to come (the parts
-- that are there are filled in where they are known already). Nil when none is there and none has
-- begun. `limits.family` is "cmx", "serial" or nil for both; `limits.is_answer` may be nil;
-- `limits.longest` gives the longest payload that an answer to a command may have.
function Frames.find(bytes, from, limits)
  local at = from
  while true do
    local start, start_at = first_start(bytes, at, limits.family)
    if start == nil then
      return start_at_end(bytes, at, limits.family)
    end
    local frame = start.read(bytes, start_at, limits)
    local is_hiding = frame and frame.missing and
                      hides_a_frame(bytes, start_at, start.family, limits)
    if frame and not is_hiding then
      return frame
    end
    at = start_at + 1
  end
end
