-- Characters as they may be shown.

local Texts = {}

-- Nothing may break the line or command a terminal.
function Texts.printable(text)
  return (text:gsub("%c", function(char) return ("\\x%02x"):format(char:byte()) end))
end

-- The second byte of what begins so is bounded: the rest is surrogates, too large, or could be shorter.
local SECOND = { [0xe0] = "[\160-\191]", [0xed] = "[\128-\159]", [0xf0] = "[\144-\191]",
                 [0xf4] = "[\128-\143]" }

local function following_bytes(first)
  return (first < 0x80 and 0) or (first >= 0xc2 and first < 0xe0 and 1) or
         (first >= 0xe0 and first < 0xf0 and 2) or (first >= 0xf0 and first < 0xf5 and 3) or nil
end

-- How many bytes the UTF-8 character at this place has; nil where there is none.
local function character_size(bytes, place)
  local first = bytes:byte(place)
  local following = following_bytes(first)
  if following == nil or following == 0 then
    return following and 1
  end
  local pattern = "^" .. (SECOND[first] or "[\128-\191]") .. ("[\128-\191]"):rep(following - 1)
  return bytes:find(pattern, place + 1) and following + 1
end

local REPLACEMENT = "\239\191\189"

-- Each byte that is no part of a UTF-8 character as a replacement character. Wireshark's own reading
-- cuts a text short by what the replacements are longer.
function Texts.sound(bytes)
  local parts, place = {}, 1
  while place <= #bytes do
    local size = character_size(bytes, place)
    parts[#parts + 1] = size and bytes:sub(place, place + size - 1) or REPLACEMENT
    place = place + (size or 1)
  end
  return table.concat(parts)
end
