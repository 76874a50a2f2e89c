-- The checksum of serial frames and of firmware pieces.

local Checksum = {}

-- What "bit" gives is signed; everything else here is not.
local function unsigned(number)
  return number % 4294967296
end

local crc_of_byte = {}
for byte = 0, 255 do
  local crc = bit.lshift(byte, 24)
  for _ = 1, 8 do
    local carries = crc < 0
    crc = bit.lshift(crc, 1)
    crc = carries and bit.bxor(crc, 0x04c11db7) or crc
  end
  crc_of_byte[byte] = crc
end

-- CRC-32/MPEG-2 of `size` bytes from the offset `at` on, and of `padding` zero bytes behind them.
function Checksum.mpeg2(bytes, at, size, padding)
  local crc = -1
  for place = at + 1, at + size + (padding or 0) do
    local byte = place <= at + size and bytes:byte(place) or 0
    crc = bit.bxor(bit.lshift(crc, 8), crc_of_byte[bit.bxor(bit.rshift(crc, 24), byte)])
  end
  return unsigned(crc)
end

-- The same as serial frames have it: padded with zeros to a multiple of four.
function Checksum.of_line(bytes, at, size)
  return Checksum.mpeg2(bytes, at, size, -size % 4)
end
