-- Turns the bytes of a variable into the text that Tevron shows for it.
--
-- Each form of a value gives a text, and what a filter compares: a number, or nil for the bytes.

local Values = {}
local forms = {}

local function hex(range)
  local shown = range:len() > 24 and range:range(0, 24) or range
  return (shown:bytes():tohex(true, " ")) .. (shown == range and "" or " ...")
end

-- `exact` is a number, or a 64-bit object whose text is exact where a number cannot be.
local function scaled(field, exact)
  local digits = type(exact) == "number" and ("%.0f"):format(exact) or tostring(exact)
  local number = type(exact) == "number" and exact or exact:tonumber()
  if field.coefficient == nil then
    return digits, number
  end
  local text = field.exact and Decimals.product(digits, field.coefficient) or
               ("%.2f"):format(number * field.coefficient)
  return text, number * field.coefficient
end

function forms.uint(field, range)
  return scaled(field, range:len() > 4 and range:uint64() or range:uint())
end

function forms.uint_le(field, range)
  return scaled(field, range:le_uint64())
end

function forms.int(field, range)
  return scaled(field, range:len() > 4 and range:int64() or range:int())
end

function forms.real(field, range)
  local number = range:float() * (field.coefficient or 1)
  return ("%.2f"):format(number), number
end

-- Zero bytes at the end are padding.
local function characters(range)
  return Texts.printable(Texts.sound((range:raw():gsub("%z+$", ""))))
end

function forms.text(_, range)
  return characters(range)
end

function forms.ip(_, range)
  return tostring(range:ipv4())
end

function forms.mac(_, range)
  return (range:bytes():tohex(false, ":"))
end

-- Counted as 64-bit objects: a number has no room for all of them.
function forms.duration(_, range)
  local seconds = range:uint64()
  return ("%s h %s min %s s"):format(tostring(seconds / 3600), tostring(seconds / 60 % 60),
                                     tostring(seconds % 60)), seconds:tonumber()
end

function forms.hardware(_, range)
  local text = ("%s%d.%d.%d"):format(characters(range:range(0, 9)), range:range(9, 1):uint(),
                                     range:range(10, 1):uint(), range:range(11, 2):uint())
  local build = range:range(13, 2):uint()
  return build == 0 and text or text .. "." .. build
end

function forms.software(_, range)
  return ("%s%d.%d.%d.%d"):format(characters(range:range(0, 12)), range:range(12, 1):uint(),
                                  range:range(13, 1):uint(), range:range(14, 1):uint(),
                                  range:range(15, 1):uint())
end

function forms.raw(_, range)
  return hex(range)
end

function forms.challenge(_, range)
  local text = hex(range)
  return text:find("[1-9a-f]") and text or "a waiver: no response is needed"
end

function forms.secret()
  return "(not shown)"
end

-- The angle at this place, in degrees, of a field of view.
function Values.angle(range, place)
  local angle = range:range(2 + 4 * place, 4):float()
  return angle == angle and ("%.6g"):format(angle) or "nan"
end

local PAIRS = 5

function forms.fov(_, range)
  if range:range(1, 1):uint() ~= PAIRS then
    return hex(range)
  end
  local angles = {}
  for place = 0, 2 * PAIRS - 1 do
    angles[place + 1] = Values.angle(range, place)
  end
  return table.concat(angles, ", ")
end

-- The sizes that a form can be read from; any, where none are named.
local SIZES = {
  uint = { 1, 2, 3, 4, 5, 6, 7, 8 }, int = { 1, 2, 4, 8 }, real = { 4, 8 },
  uint_le = { 1, 2, 3, 4, 5, 6, 7, 8 }, duration = { 1, 2, 3, 4, 5, 6, 7, 8 },
  ip = { 4 }, mac = { 6 }, fov = { 42 }, hardware = { 16 }, software = { 16 },
}

local function fits(form, size)
  for _, possible in ipairs(SIZES[form] or { size }) do
    if size == possible then
      return true
    end
  end
  return false
end

local function with_unit(field, text)
  return field.unit and text .. " " .. field.unit or text
end

-- A label that is a number is one of the unit.
local function label_of(field, bare)
  local label = field.labels and field.labels[bare]
  return label and (label:find("^[%d.+-]+$") and with_unit(field, label) or label)
end

-- What the bytes of `range`, at least one, mean: `text`, with everything that is known of it;
-- `brief`, the label of a choice or the value with its unit; `bare`, the value alone; `number`, of
-- what is one; `fits`, whether these are as many bytes as the form has. Bytes that do not fit are
-- shown as they are.
function Values.read(field, range)
  local width = math.min(field.width or range:len(), range:len())
  local does_fit = fits(field.form, width)
  local bare, number = forms[does_fit and field.form or "raw"](field, range:range(0, width))
  local brief = Texts.printable(label_of(field, bare) or with_unit(field, bare))
  local has_label = field.labels and field.labels[bare]
  return { text = has_label and ("%s (%s)"):format(brief, bare) or brief, brief = brief, bare = bare,
           number = number, fits = does_fit }
end
