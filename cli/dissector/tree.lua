-- One frame as a tree, and as the words for the list of packets.

local Tree = {}

-- In a request the place of the return code has to be zero.
local function add_return_code(tree, tvb, frame, is_answer)
  local range = frame.return_code_at and tvb(frame.return_code_at, 1)
  if is_answer and range then
    tree:add(Fields.return_code, range)
  elseif range then
    local is_usual = frame.return_code == 0
    tree:add(range, ("Return code: %d, %s in a request"):format(
        frame.return_code, is_usual and "as always" or "which should be 0"))
  end
end

local function add_header(tree, tvb, frame, is_answer)
  local function add(field, at, size)
    return at and tree:add(field, tvb(at, size)) or nil
  end
  tree:add(Fields.frame, frame.kind):set_generated()
  local identifier = tvb(frame.identifier_at, frame.identifier_size)
  tree:add(Fields.identifier, identifier):set_text(('Identifier: "%s"'):format(identifier:string()))
  add(Fields.protocol, frame.protocol_at, 1)
  add(Fields.version, frame.version_at, 2)
  local length = frame.length_at < (frame.command_at or math.huge)
  if length then
    add(Fields.length, frame.length_at, frame.length_size)
  end
  if frame.direction_at then
    tree:add(Fields.direction, tvb(frame.direction_at, 1))
  end
  add(Fields.number, frame.number_at, 1)
  add(Fields.command, frame.command_at, 1)
  add(Fields.mode, frame.mode_at, 1)
  add_return_code(tree, tvb, frame, is_answer)
  add(Fields.reserved, frame.reserved_at, 3)
  if not length then
    add(Fields.length, frame.length_at, frame.length_size)
  end
end

local function add_tail(tree, tvb, frame)
  if frame.checksum_at == nil then
    return
  end
  if frame.random_at then
    tree:add(Fields.random, tvb(frame.random_at, 4))
  end
  local item = tree:add(Fields.checksum, tvb(frame.checksum_at, 4), frame.checksum)
  item:append_text(frame.is_sound and " [right]" or (" [wrong, expected 0x%08x]"):format(frame.expected))
  item:add(Fields.is_sound, frame.is_sound):set_generated()
  if not frame.is_sound then
    item:add_proto_expert_info(Experts.checksum)
  end
  tree:add(Fields.terminator, tvb(frame.terminator_at, 2))
end

local function add_doubts(tree, record)
  if record.may_be_of then
    tree:add_proto_expert_info(
        Experts.doubt, ("May be the late answer to frame %d, which asked the same and had been " ..
                        "given up"):format(record.may_be_of))
  elseif record.in_excess then
    tree:add_proto_expert_info(
        Experts.doubt, "One answer more than requests of this command were open: late, or a copy")
  end
end

local function add_answer_links(tree, record)
  local request = record.request
  if request == nil then
    tree:add_proto_expert_info(Experts.no_request)
    return
  end
  local seconds = record.time - request.time
  tree:add(Fields.request_in, request.packet):set_generated()
  local item = tree:add(Fields.time, seconds)
  item:set_text(("Time from request to answer: %.3f ms"):format(seconds * 1000))
  item:set_generated()
  add_doubts(tree, record)
end

-- What comes later is known when the packet is asked for again.
local function add_request_links(tree, record, is_visited)
  if record.echo_of then
    tree:add(Fields.echo_of, record.echo_of):set_generated()
  elseif record.answer then
    tree:add(Fields.answer_in, record.answer.packet):set_generated()
  elseif is_visited then
    tree:add_proto_expert_info(Experts.no_answer)
  end
end

local MOST_TEXTS = 4

local function joined(texts)
  local shown = table.concat(texts, ", ", 1, math.min(#texts, MOST_TEXTS))
  return #texts > MOST_TEXTS and ("%s, and %d more"):format(shown, #texts - MOST_TEXTS) or shown
end

local function reason_of(return_code)
  return ("%s (%d)"):format(TABLES.return_codes[return_code] or "the model's own reason", return_code)
end

-- What is called like the command needs no name: "Read SN: Orca26110042".
local function without_name(texts, meaning)
  local name = meaning.name:match("^%a+ (.*)$")
  if #texts == 1 and name and texts[1]:sub(1, #name + 1) == name .. " " then
    return { texts[1]:sub(#name + 2) }
  end
  return texts
end

-- "Read Scan" and its answer "Read Scan: Spin Rate 600 rpm".
local function summary(frame, record, meaning, texts, told)
  texts = without_name(texts, meaning)
  record.detail = record.request and record.request.detail or told.detail
  local text = (record.echo_of and "Echo of " or "") .. meaning.name .. (record.detail or "")
  if record.is_answer and frame.return_code ~= 0 then
    text = text .. ": refused, " .. reason_of(frame.return_code)
  elseif record.is_answer then
    text = text .. ": " .. (#texts > 0 and joined(texts) or "done")
  elseif #texts > 0 then
    text = text .. " = " .. joined(texts)
  end
  text = told.misfit and text .. " [wrong length]" or text
  text = frame.is_sound == false and text .. " [wrong checksum]" or text
  return frame.missing and text .. " [not whole]" or text
end

local function title(frame, record, meaning)
  local what = not record.is_answer and "request" or frame.return_code == 0 and "answer" or "refusal"
  return ("Tevron, %s: %s"):format(what, meaning.name)
end

local function add_facts(tree, record, meaning, model)
  tree:add(Fields.name, meaning.name):set_generated()
  tree:add(Fields.model, model.name):set_generated()
  tree:add(record.is_answer and Fields.is_answer or Fields.is_request, true):set_generated()
  if meaning.is_protected and not record.is_answer then
    tree:add(Fields.is_protected, true):set_generated()
  end
end

-- Adds a command frame and gives its words. `told.version` is set where the frame tells it.
function Tree.add_command(root, tvb, frame, record, model, is_visited, told)
  local meaning = record.meaning
  local tree = root:add(tevron, tvb(frame.at, frame.size))
  add_header(tree, tvb, frame, record.is_answer)
  add_facts(tree, record, meaning, model)
  local shape = record.is_answer and Commands.shape_of_answer(meaning, frame, record.version) or
                meaning.request
  local texts = {}
  if frame.payload_size > 0 then
    texts = Payloads.add(tree, tvb(frame.payload_at, frame.payload_size), shape, told, frame.missing)
  elseif (shape.size or 0) > 0 and frame.return_code == 0 then
    told.misfit = true
    tree:add_proto_expert_info(Experts.payload,
                               "No payload, and the table has " .. Payloads.count(shape.size, "byte"))
  end
  add_tail(tree, tvb, frame)
  if record.is_answer and frame.return_code ~= 0 then
    tree:add_proto_expert_info(Experts.refused, "The lidar refused: " .. reason_of(frame.return_code))
  end
  if frame.is_sound ~= false then
    local add_links = record.is_answer and add_answer_links or add_request_links
    add_links(tree, record, is_visited)
  end
  if frame.missing then
    tree:add_proto_expert_info(Experts.cut, Payloads.count(frame.missing, "byte") .. " missing")
  end
  tree:set_text(title(frame, record, meaning))
  return summary(frame, record, meaning, texts, told)
end

function Tree.add_points(root, tvb, frame)
  local tree = root:add(tevron, tvb(frame.at, frame.size))
  add_header(tree, tvb, frame)
  if frame.payload_size > 0 then
    Payloads.add_points(tree, tvb(frame.payload_at, frame.payload_size))
  end
  add_tail(tree, tvb, frame)
  tree:set_text("Tevron, point cloud")
  return "Point cloud"
end

-- Bytes that belong to no frame, or to one that is not whole: `why` says which. `expert_of` is nil
-- where nothing is wrong with that.
function Tree.add_stray(root, range, expert_of, why)
  local tree = root:add(tevron, range)
  tree:add(Fields.stray, range)
  local text = ("%s (%s)"):format(why, Payloads.count(range:len(), "byte"))
  tree:set_text("Tevron, " .. text)
  if expert_of then
    tree:add_proto_expert_info(expert_of)
  end
  return text
end
