-- Whole numbers times a coefficient, in decimal digits: 64 bits are more than a number of Lua holds.

local Decimals = {}

-- What a coefficient is made of: "-" or "", a whole number, and a power of ten. It comes from a number
-- of single precision, which has at most nine digits.
local function parts_of(coefficient)
  local sign, first, rest, exponent = ("%.8e"):format(coefficient):match("^(-?)(%d)%.(%d+)e(.+)$")
  local digits = first .. rest:gsub("0+$", "")
  return sign, tonumber(digits), tonumber(exponent) - #digits + 1
end

local function multiplied(digits, factor)
  local product, carry = "", 0
  for place = #digits, 1, -1 do
    carry = carry + tonumber(digits:sub(place, place)) * factor
    product = ("%d"):format(carry % 10) .. product
    carry = math.floor(carry / 10)
  end
  return ((("%.0f"):format(carry) .. product):gsub("^0+", ""))
end

-- The product of a whole number, as text, and a coefficient, with all digits of both.
function Decimals.product(number, coefficient)
  local number_sign, magnitude = number:match("^(-?)(%d+)$")
  local sign, factor, exponent = parts_of(coefficient)
  local digits = multiplied(magnitude, factor)
  local minus = digits ~= "" and sign ~= number_sign and "-" or ""
  if exponent >= 0 then
    return minus .. (digits == "" and "0" or digits .. ("0"):rep(exponent))
  end
  digits = ("0"):rep(1 - exponent - #digits) .. digits
  return minus .. digits:sub(1, exponent - 1) .. "." .. digits:sub(exponent)
end
