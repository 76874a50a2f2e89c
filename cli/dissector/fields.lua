-- What can be filtered for, and what the user can set.

local tevron = Proto("tevron", "Tevron")
local tevron_serial = Proto("tevron_serial", "Tevron, serial line")

local RETURN_CODES = {}
for code = 0, 255 do
  RETURN_CODES[code] = TABLES.return_codes[code] or "the model's own"
end

local Fields = {
  frame = ProtoField.string("tevron.frame", "Frame"),
  identifier = ProtoField.bytes("tevron.identifier", "Identifier"),
  protocol = ProtoField.uint8("tevron.protocol", "Protocol byte", base.HEX),
  version = ProtoField.bytes("tevron.version", "Version"),
  direction = ProtoField.string("tevron.direction", "Direction"),
  number = ProtoField.uint8("tevron.number", "Number"),
  command = ProtoField.uint8("tevron.command", "Command", base.HEX),
  name = ProtoField.string("tevron.name", "Name"),
  model = ProtoField.string("tevron.model", "Model"),
  return_code = ProtoField.uint8("tevron.return_code", "Return code", base.DEC, RETURN_CODES),
  mode = ProtoField.uint8("tevron.mode", "Mode", base.DEC, { [0] = "work", [1] = "upgrade" }),
  reserved = ProtoField.bytes("tevron.reserved", "Reserved"),
  length = ProtoField.uint32("tevron.length", "Length"),
  head = ProtoField.bytes("tevron.head", "Fixed bytes"),
  payload = ProtoField.bytes("tevron.payload", "Payload"),
  value = ProtoField.string("tevron.value", "Value"),
  random = ProtoField.bytes("tevron.random", "Random value"),
  checksum = ProtoField.uint32("tevron.checksum", "Checksum", base.HEX),
  is_sound = ProtoField.bool("tevron.checksum.good", "Checksum is right"),
  terminator = ProtoField.bytes("tevron.terminator", "Terminator"),
  is_protected = ProtoField.bool("tevron.protected", "Needs a handshake"),
  is_request = ProtoField.bool("tevron.request", "Request"),
  is_answer = ProtoField.bool("tevron.answer", "Answer"),
  answer_in = ProtoField.framenum("tevron.answer_in", "Answer in frame", base.NONE,
                                  frametype.RESPONSE),
  request_in = ProtoField.framenum("tevron.request_in", "Request in frame", base.NONE,
                                   frametype.REQUEST),
  echo_of = ProtoField.framenum("tevron.echo_of", "Echo of frame"),
  time = ProtoField.double("tevron.time", "Time from request to answer, in seconds"),
  stray = ProtoField.bytes("tevron.stray", "Stray bytes"),
  piece = ProtoField.uint32("tevron.piece", "Piece"),
  pieces = ProtoField.uint32("tevron.pieces", "Pieces"),
  packet = ProtoField.uint32("tevron.packet", "Packet number"),
}


-- A variable has a field of its own, which compares the value that the user sees:
-- tevron.var.spin_rate > 600. Models that name a variable alike share its field.
local TYPES = { uint = "double", uint_le = "double", int = "double", real = "double",
                duration = "double", ip = "ipv4", mac = "ether", raw = "bytes", fov = "bytes",
                secret = "bytes", challenge = "bytes", text = "string", hardware = "string",
                software = "string" }

local var_fields = {}

local function filter_name(field)
  local name = field.name:lower():gsub("[^%w]+", "_"):gsub("^_", ""):gsub("_$", "")
  return "tevron.var." .. (name == "" and "other" or name)
end

local function declare_variable(field)
  local name = filter_name(field)
  local known = var_fields[name]
  if known == nil then
    var_fields[name] = { type = TYPES[field.form], title = field.name }
  elseif known.type ~= TYPES[field.form] then
    known.type = "string" -- models disagree: the text is what they have in common
  end
end

local function declare_shape(shape)
  for _, field in ipairs(shape and shape.fields or {}) do
    declare_variable(field)
  end
end

-- Of a handshake, serial lines have the most.
for _, model in ipairs(TABLES.models) do
  for _, layout in ipairs(model.layouts) do
    declare_shape(layout)
  end
  for _, code in ipairs({ model.probe, model.challenge, model.response }) do
    local known = DeviceCommands.handshake(model, { command = code, family = "serial" })
    declare_shape(known.request)
    declare_shape(known.answer)
  end
end
declare_variable(DeviceCommands.part_of_log)
for _, commands in ipairs({ DeviceCommands.common, DeviceCommands.serial }) do
  for _, known in pairs(commands) do
    declare_shape(known.request)
    declare_shape(known.answer)
  end
end

for name, variable in pairs(var_fields) do
  variable.field = ProtoField[variable.type](name, variable.title)
  Fields[name] = variable.field
end

-- The field of a variable, and the type that its values have there.
function Fields.of(variable)
  local known = var_fields[filter_name(variable)]
  return known.field, known.type
end

local function expert_info(name, text, group, severity)
  return ProtoExpert.new("tevron.expert." .. name, text, group, severity)
end

local Experts = {
  stray = expert_info("stray", "Bytes that belong to no frame", expert.group.MALFORMED,
                      expert.severity.WARN),
  cut = expert_info("cut", "The frame is not whole", expert.group.MALFORMED, expert.severity.WARN),
  checksum = expert_info("checksum", "The checksum is wrong", expert.group.CHECKSUM,
                         expert.severity.ERROR),
  payload = expert_info("payload", "The payload is not what the table says", expert.group.PROTOCOL,
                        expert.severity.WARN),
  refused = expert_info("refused", "The lidar refused", expert.group.RESPONSE_CODE,
                        expert.severity.NOTE),
  no_answer = expert_info("no_answer", "No answer was seen", expert.group.SEQUENCE,
                          expert.severity.WARN),
  no_request = expert_info("no_request", "No request that this answers was seen",
                           expert.group.SEQUENCE, expert.severity.WARN),
  doubt = expert_info("doubt", "The answer may belong to another request", expert.group.SEQUENCE,
                      expert.severity.NOTE),
}

-- Wireshark wants the lists without what is not for it.
local listed = {}
for _, field in pairs(Fields) do
  if type(field) ~= "function" then
    listed[#listed + 1] = field
  end
end
tevron.fields = listed
tevron.experts = { Experts.stray, Experts.cut, Experts.checksum, Experts.payload, Experts.refused,
                   Experts.no_answer, Experts.no_request, Experts.doubt }

local choices, chosen = {}, 1
for place, model in ipairs(TABLES.models) do
  choices[place] = { place, model.name, place }
  chosen = model.name == TABLES.chosen and place or chosen
end

local prefs = tevron.prefs
prefs.model = Pref.enum("Model", chosen, "The table that payloads are read by", choices, false)
prefs.ports = Pref.range("TCP ports", tostring(TABLES.port), "Where lidars listen", 65535)
prefs.longest = Pref.uint("Longest answer (MiB)", 64,
                          "A frame that announces more is taken for damaged; not more than 1024")

-- How the rest asks for them.
local Settings = {}

function Settings.model()
  local place = tonumber(prefs.model) or chosen
  return TABLES.models[place] or TABLES.models[chosen]
end

function Settings.longest()
  return math.min(prefs.longest, 1024) * 1024 * 1024
end

function Settings.is_lidar_port(port)
  for first, last in tostring(prefs.ports):gmatch("(%d+)%-?(%d*)") do
    if port >= tonumber(first) and port <= (tonumber(last) or tonumber(first)) then
      return true
    end
  end
  return false
end
