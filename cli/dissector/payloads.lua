-- Cuts payloads into their parts and adds these to the tree. What is added comes back as texts for
-- the summary of the packet: "Spin Rate 600 rpm".

local Payloads = {}

local function count(number, what)
  return ("%d %s%s"):format(number, what, number == 1 and "" or "s")
end
Payloads.count = count

local function add_field_of_view(tree, range)
  tree:add(range:range(0, 1), ("Mode: %d"):format(range:range(0, 1):uint()))
  tree:add(range:range(1, 1), ("Pairs: %d"):format(range:range(1, 1):uint()))
  for pair = 0, 4 do
    tree:add(range:range(2 + 8 * pair, 8), ("Pair %d: %s to %s deg"):format(
        pair, Values.angle(range, 2 * pair), Values.angle(range, 2 * pair + 1)))
  end
end

local function add_variable(tree, variable, range)
  local value = Values.read(variable, range)
  local name = Texts.printable(variable.name)
  local field, type = Fields.of(variable)
  local item
  if type == "string" then
    item = tree:add(field, range, value.bare)
  elseif type == "double" and value.number then
    item = tree:add(field, range, value.number)
  elseif type ~= "double" and value.fits then
    item = tree:add(field, range)
  end
  local as_text = tree:add(Fields.value, range, name .. " = " .. value.text)
  if item then
    item:set_text(name .. ": " .. value.text)
    as_text:set_hidden()
  else
    as_text:set_text(name .. ": " .. value.text .. " (of another length than its type)")
  end
  if variable.form == "fov" and value.fits then
    add_field_of_view(item, range)
  end
  return name .. " " .. value.brief, value
end

local function add_rest(tree, range, what)
  tree:add(range, ("%s: %s"):format(what, Values.read({ form = "raw" }, range).text))
end

-- Variables one behind the other. Rows of a table that are left out keep their places.
local function add_variables(tree, range, shape, told)
  local head = shape.head or 0
  local texts, place = {}, 0
  if head > 0 and range:len() >= head then
    tree:add(Fields.head, range:range(0, head))
    place = head
  end
  for _, variable in ipairs(shape.fields) do
    local at = head + variable.at
    local size = variable.size or range:len() - at
    if size > 0 and at + size <= range:len() then
      if at > place then
        add_rest(tree, range:range(place, at - place), "In no row of the table")
      end
      local text, value = add_variable(tree, variable, range:range(at, size))
      if variable.is_detail then
        told.detail = ", " .. text
      else
        texts[#texts + 1] = text
      end
      if variable.tells_version then
        told.version = value.bare
      end
      place = at + size
    end
  end
  if place < range:len() and #shape.fields > 0 then
    add_rest(tree, range:range(place), "Behind the variables")
  elseif place < range:len() then
    texts[1] = count(range:len() - place, "byte")
  end
  return texts
end

local show = {}

local function add_checked_data(tree, checksum, data)
  local expected = Checksum.mpeg2(data:raw(), 0, data:len())
  local is_right = checksum:uint() == expected
  local item = tree:add(Fields.checksum, checksum)
  item:append_text(is_right and " [right]" or (" [wrong, expected 0x%08x]"):format(expected))
  if not is_right then
    item:add_proto_expert_info(Experts.checksum, "The checksum of the piece is wrong")
  end
  tree:add(data, "Data: " .. count(data:len(), "byte"))
end

function show.file_piece(tree, range, told)
  if range:len() < 17 then
    add_rest(tree, range, "Too short for a piece")
    return {}
  end
  tree:add(range:range(0, 4), "Zero: " .. range:range(0, 4):uint())
  tree:add(Fields.piece, range:range(4, 4))
  tree:add(Fields.pieces, range:range(8, 4))
  add_checked_data(tree, range:range(12, 4), range:range(16))
  told.detail = (" %d of %d"):format(range:range(4, 4):uint(), range:range(8, 4):uint())
  return { count(range:len() - 16, "byte") }
end

function show.stream_piece(tree, range, told)
  if range:len() < 10 then
    add_rest(tree, range, "Too short for a piece")
    return {}
  end
  tree:add(range:range(0, 1), ("Component: %d"):format(range:range(0, 1):uint()))
  tree:add(Fields.piece, range:range(1, 4))
  add_checked_data(tree, range:range(5, 4), range:range(9))
  told.detail = (" %d"):format(range:range(1, 4):uint())
  return { count(range:len() - 9, "byte") }
end

function show.function_safety(tree, range)
  local functions = math.min(range:range(0, 1):uint(), math.floor((range:len() - 1) / 4))
  tree:add(range:range(0, 1), ("Functions: %d"):format(range:range(0, 1):uint()))
  for place = 0, functions - 1 do
    local entry = range:range(1 + 4 * place, 4)
    tree:add(entry, ("Function %d: state %d, fault code %d"):format(
        entry:range(0, 1):uint(), entry:range(1, 1):uint(), entry:range(2, 2):uint()))
  end
  return { count(functions, "function") }
end

function show.calibration(tree, range)
  if range:len() < 10 or range:raw(0, 4) ~= "LCAL" then
    add_rest(tree, range, "No calibration")
    return {}
  end
  local channels = math.min(range:range(5, 1):uint(), math.floor((range:len() - 10) / 4))
  tree:add(range:range(4, 1), ("Version: %d"):format(range:range(4, 1):uint()))
  tree:add(range:range(5, 1), ("Channels: %d"):format(range:range(5, 1):uint()))
  for channel = 0, channels - 1 do
    local angles = range:range(6 + 4 * channel, 4)
    tree:add(angles, ("Channel %d: elevation %.2f deg, azimuth %.2f deg"):format(
        channel, angles:range(0, 2):int() / 100, angles:range(2, 2):int() / 100))
  end
  return { count(channels, "channel") }
end

-- Adds the payload `range`, which has at least one byte, by its shape. `told.version` is set where a
-- variable tells the hardware version, `told.detail` to what tells requests of one name apart, and
-- `told.misfit` where the payload has another length than its shape, unless it `is_cut`.
function Payloads.add(tree, range, shape, told, is_cut)
  local item = tree:add(Fields.payload, range)
  local texts = shape.show and show[shape.show](item, range, told) or
                add_variables(item, range, shape, told)
  item:set_text("Payload, " .. count(range:len(), "byte"))
  local expected = shape.size and shape.size + (shape.head or 0)
  if expected and expected ~= range:len() and not is_cut then
    told.misfit = true
    item:add_proto_expert_info(Experts.payload, ("%s, and the table has %d"):format(
        count(range:len(), "byte"), expected))
  end
  return texts
end

-- A packet of the point cloud, of which only the head is the same for all models.
function Payloads.add_points(tree, range)
  if range:len() >= 16 and range:raw(0, 4) == "KPCL" then
    tree:add(Fields.packet, range:range(4, 4))
    tree:add(range:range(8, 8), "Time: " .. tostring(range:range(8, 8):uint64()) .. " µs")
    range = range:len() > 16 and range:range(16) or nil
  end
  if range then
    tree:add(range, "Data: " .. count(range:len(), "byte"))
  end
end
