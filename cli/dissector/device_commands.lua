-- The commands that no table lays out. A shape is what a payload is made of: fields one behind the
-- other, or `show`, the name of a function of Payloads for what fields cannot say.

local DeviceCommands = {}

-- Gives the fields of a fixed payload their places.
local function shape(fields)
  local size = 0
  for _, field in ipairs(fields) do
    field.at = size
    size = size + field.size
  end
  return { fields = fields, size = size }
end

local NOTHING = { fields = {}, size = 0 }
local ANYTHING = { fields = {} }

local MODES = { ["0"] = "work", ["1"] = "upgrade" }
local ON_OFF = { ["0"] = "off", ["1"] = "on" }
local STANDBY = { ["0"] = "work", ["1"] = "standby" }
local COMPONENTS = { ["0"] = "TMB_FPGA", ["1"] = "BMB_FPGA", ["2"] = "application",
                     ["3"] = "TMB_PARAM" }

local function number(name, size, unit, labels)
  return { name = name, size = size, form = "uint", unit = unit, labels = labels }
end

-- One that takes the whole payload, however long that is.
local function whole(name, form)
  return { fields = { { name = name, at = 0, form = form } } }
end

local function text(name, size)
  return { name = name, size = size, form = "text" }
end

local function address(name)
  return { name = name, size = 4, form = "ip" }
end

local function baud_rate()
  return shape({ number("Baud Rate", 4, "bit/s") })
end

local function destination()
  return shape({ address("Point Cloud Address"), number("Point Cloud Port", 2) })
end

local function network()
  return shape({ address("IP Address"), address("Subnet Mask"), address("Gateway"),
                 number("VLAN", 1, nil, ON_OFF), number("VLAN Number", 2) })
end

local function image(fields)
  table.insert(fields, 1, number("Component", 1, nil, COMPONENTS))
  table.insert(fields, 2, number("Image Length", 4, "bytes"))
  table.insert(fields, 3, { name = "Image Checksum", size = 4, form = "raw" })
  return shape(fields)
end

-- Every lidar knows these.
DeviceCommands.common = {
  [0x03] = { name = "Switch Mode", answer = ANYTHING,
             request = shape({ number("Mode", 1, nil, MODES), number("Sub-mode", 1) }) },
  [0x07] = { name = "Liveness", request = ANYTHING, answer = ANYTHING },
  [0x08] = { name = "Liveness (older firmware)", request = ANYTHING, answer = ANYTHING },
  [0x10] = { name = "Restart", request = NOTHING, answer = NOTHING },
  [0x22] = { name = "Write Field of View", answer = NOTHING,
             request = shape({ { name = "Field of View", size = 42, form = "fov" } }) },
  [0x25] = { name = "Factory Reset", request = NOTHING, answer = NOTHING },
}

-- Serial-attached models know these, too.
DeviceCommands.serial = {
  [0x40] = { name = "Get Baud Rate", request = NOTHING, answer = baud_rate() },
  [0x41] = { name = "Set Baud Rate", request = baud_rate(), answer = NOTHING },
  [0x42] = { name = "Get Point-Cloud Destination", request = NOTHING, answer = destination() },
  [0x43] = { name = "Set Point-Cloud Destination", request = destination(), answer = NOTHING },
  [0x44] = { name = "Get Network Settings", request = NOTHING, answer = network() },
  [0x45] = { name = "Set Network Settings", request = network(), answer = NOTHING },
  [0x46] = { name = "Set Return Mode", answer = NOTHING,
             request = shape({ number("Return Mode", 1) }) },
  [0x47] = { name = "Set Spin Rate", answer = NOTHING,
             request = shape({ number("Spin Rate", 2, "rpm") }) },
  [0x48] = { name = "Set Standby", answer = NOTHING,
             request = shape({ number("Standby", 1, nil, STANDBY) }) },
  [0x49] = { name = "Set IMU Range", answer = NOTHING,
             request = shape({ number("Angular Range", 1), number("Acceleration Range", 1) }) },
  [0x4a] = { name = "Get Boot Loader Version", request = NOTHING,
             answer = whole("Boot Loader Version", "text") },
  [0x4b] = { name = "Get Serial Number", request = NOTHING, answer = whole("SN", "text") },
  [0x4c] = { name = "Get Part Number", request = NOTHING, answer = whole("PN", "text") },
  [0x4d] = { name = "Get Versions", request = NOTHING,
             answer = shape({ text("Firmware", 16), text("FPGA A", 16), text("FPGA B", 16) }) },
  [0x4e] = { name = "Get Function Safety", request = NOTHING, answer = { show = "function_safety" } },
  [0x4f] = { name = "Get Status", request = NOTHING,
             answer = shape({ number("Return Mode", 1), number("Spin Rate", 2, "rpm"),
                              number("Standby", 1, nil, STANDBY), number("Angular Range", 1),
                              number("Acceleration Range", 1),
                              { name = "Up-time", size = 4, form = "duration" } }) },
  [0x50] = { name = "Firmware Begin", request = image({}), answer = NOTHING },
  [0x51] = { name = "Firmware Piece", request = { show = "stream_piece" },
             answer = shape({ number("Piece", 4) }) },
  [0x52] = { name = "Firmware End", answer = NOTHING,
             request = image({ number("Then", 1, nil, { ["0"] = "stay", ["1"] = "restart" }) }) },
  [0x53] = { name = "Get Active Partition", request = NOTHING,
             answer = shape({ number("Partition", 1, nil, { ["0"] = "A", ["1"] = "B" }) }) },
  [0x54] = { name = "Get Calibration", request = NOTHING, answer = { show = "calibration" } },
}

-- Over serial lines the answers to probe and challenge begin with four more bytes.
local function behind_counter(frame, field)
  if frame.family ~= "serial" then
    return { fields = { field } }
  end
  field.at = field.at + 4
  return { fields = { { name = "Counter", at = 0, size = 4, form = "raw" }, field } }
end

-- The handshake of protected commands, whose codes are the model's own; nil for another command.
function DeviceCommands.handshake(model, frame)
  if frame.command == model.probe then
    return { name = "Authentication Probe", request = ANYTHING,
             answer = behind_counter(frame, {
               name = "Authentication Required", at = model.probe_at, size = model.probe_size,
               form = model.probe_is_little_endian and "uint_le" or "uint",
               labels = { ["0"] = "no", ["1"] = "yes" } }) }
  elseif frame.command == model.challenge then
    return { name = "Authentication Challenge", request = ANYTHING,
             answer = behind_counter(frame, {
               name = "Challenge", at = 0, size = 16, form = "challenge" }) }
  elseif frame.command == model.response then
    return { name = "Authentication Response", answer = NOTHING,
             request = whole("Response", "raw") }
  end
  return nil
end

-- What the request for an operation log ends with.
DeviceCommands.part_of_log = {
  name = "Part", at = 0, size = 1, form = "uint", is_detail = true,
  labels = { ["0"] = "warnings of the basic software", ["1"] = "warnings of the application software",
             ["2"] = "errors of the basic software", ["3"] = "errors of the application software" },
}

-- A piece of a firmware image over the network.
DeviceCommands.file_piece = { name = "Firmware Piece", request = { show = "file_piece" },
                              answer = NOTHING }
