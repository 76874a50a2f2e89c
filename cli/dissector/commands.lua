-- What a frame is about: its name, and the shapes that its payload may have, by the tables of a
-- model. See DeviceCommands for what a shape is; of the tables it has `head` as well, the fixed bytes
-- ahead of the fields.

local Commands = {}

local LONG_COMMAND = 0xff

local models_by_name = {}
for _, model in ipairs(TABLES.models) do
  models_by_name[model.name] = model
  model.by_code = {}
  for _, layout in ipairs(model.layouts) do
    local same = model.by_code[layout.code] or {}
    same[#same + 1] = layout
    model.by_code[layout.code] = same
  end
end

function Commands.model(name)
  return models_by_name[name]
end

local function name_of(layout)
  return layout.verb .. " " .. Texts.printable(layout.name)
end

local function starts_with(bytes, head)
  return bytes:sub(1, #head) == head
end

local function behind_head(layout)
  return { fields = layout.fields, head = #layout.head, size = layout.size }
end

local PART = DeviceCommands.part_of_log

local function only_head(layout)
  local fields = layout.has_parts and { PART } or {}
  return { fields = fields, head = #layout.head, size = #fields }
end

local function is_request_of(layout, payload)
  local rest = #payload - #layout.head
  if not starts_with(payload, layout.head) then
    return false
  end
  if layout.verb == "Write" then
    return rest == layout.size
  end
  return rest == (layout.has_parts and 1 or 0)
end

-- How well a request fits none of the layouts does not hide which it means: that with the longest
-- head, and among these one that writes.
local function nearest(layouts, payload)
  local best, best_rank
  for _, layout in ipairs(layouts) do
    local rank = #layout.head * 2 + (layout.verb == "Write" and 1 or 0)
    if starts_with(payload, layout.head) and (best == nil or rank > best_rank) then
      best, best_rank = layout, rank
    end
  end
  return best
end

-- Of the same request to several hardware versions, that of the lidar's.
local function of_version(layouts, version)
  for _, layout in ipairs(layouts) do
    if layout.version == version then
      return layout
    end
  end
  return layouts[1]
end

local function by_table(model, frame, payload, version)
  local layouts = model.by_code[frame.command] or {}
  local meant = {}
  for _, layout in ipairs(layouts) do
    if is_request_of(layout, payload) then
      meant[#meant + 1] = layout
    end
  end
  local first = of_version(meant, version) or nearest(layouts, payload)
  if first == nil then
    return nil
  end
  if first.verb == "Write" then
    return { name = name_of(first), request = behind_head(first),
             answers = { { fields = {}, size = 0 } } }
  elseif first.verb == "Download" then
    return { name = name_of(first), request = only_head(first), answers = { { fields = {} } } }
  end
  local answers = {}
  for _, layout in ipairs(#meant > 0 and meant or { first }) do
    answers[#answers + 1] = { fields = layout.fields, size = layout.size, version = layout.version }
  end
  return { name = name_of(first), request = only_head(first), answers = answers }
end

-- An answer whose request is not there: by its length, where that leaves no doubt.
local function by_answer(model, frame)
  local fitting = {}
  for _, layout in ipairs(model.by_code[frame.command] or {}) do
    local size = layout.verb == "Read" and layout.size or 0
    if size == frame.payload_size and layout.verb ~= "Download" then
      fitting[#fitting + 1] = layout
    end
  end
  if #fitting ~= 1 then
    return nil
  end
  local fields = fitting[1].verb == "Read" and fitting[1].fields or {}
  return { name = name_of(fitting[1]), request = { fields = {} },
           answers = { { fields = fields, size = frame.payload_size } } }
end

-- The tables know the choices of what some of these read.
local function with_table(model, frame, known)
  local answers = {}
  for _, layout in ipairs(model.by_code[frame.command] or {}) do
    if layout.verb == "Read" and layout.head == "" then
      answers[#answers + 1] = { fields = layout.fields, size = layout.size }
    end
  end
  answers[#answers + 1] = known.answer
  return { name = known.name, request = known.request, answers = answers }
end

local function built_in(model, frame)
  local known = DeviceCommands.handshake(model, frame) or
                (frame.command == model.firmware and DeviceCommands.file_piece) or
                (model.is_serial_kind and DeviceCommands.serial[frame.command])
  if not known and (frame.command ~= 0x22 or not model.by_code[0x22]) then
    known = DeviceCommands.common[frame.command]
  end
  return known and with_table(model, frame, known)
end

local function unknown(frame)
  local what = frame.command == LONG_COMMAND and "Long Command" or "Command"
  return { name = ("%s 0x%02x"):format(what, frame.command), is_unknown = true,
           request = { fields = {} }, answers = { { fields = {} } } }
end

-- The meaning of a request whose payload is this string, for its answer as well: `name`, the shape
-- `request`, and the shapes `answers`, of which one is right. `version` is that of the hardware, or
-- nil.
function Commands.of_request(model, frame, payload, version)
  local meaning = built_in(model, frame) or by_table(model, frame, payload, version) or
                  unknown(frame)
  meaning.is_protected = model.protected[frame.command] or false
  return meaning
end

-- The same of an answer that belongs to no request that was seen.
function Commands.of_answer(model, frame)
  return built_in(model, frame) or by_answer(model, frame) or unknown(frame)
end

local LONGEST_OF_FIXED = 65535

-- The longest payload that an answer to this command is believed to have; `longest` is that of what a
-- lidar hands out whole. An answer with a length of its own cannot have become that long.
function Commands.longest_answer(model, command, longest)
  local known = DeviceCommands.common[command]
  for _, layout in ipairs(model.by_code[command] or { known and known.answer or {} }) do
    if layout.size == nil or layout.verb == "Download" then
      return longest
    end
  end
  return math.min(longest, LONGEST_OF_FIXED)
end

-- The shape of an answer's payload: of the hardware version that the lidar told, and of its length,
-- as far as there is one.
function Commands.shape_of_answer(meaning, frame, version)
  local best, best_rank
  for _, shape in ipairs(meaning.answers) do
    local fits = shape.size == nil or shape.size == frame.payload_size
    local is_version = shape.version == nil or shape.version == version
    local rank = (is_version and version and 2 or 0) + (fits and 1 or 0)
    if best == nil or rank > best_rank then
      best, best_rank = shape, rank
    end
  end
  return best
end
