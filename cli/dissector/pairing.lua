-- Which answer belongs to which request, as a client has to decide it: docs/wire-formats.md.
--
-- Answers come in the order of their requests, and some never come. An answer belongs to the newest
-- open request with its command (and its number, where frames have one). Requests older than all it
-- may belong to are lost from then on. One of the same command before it had been given up: that the
-- answer may be its late one cannot be told apart, and is said.
--
-- Wireshark asks for a packet more than once. What is decided the first time, in the order of the
-- packets, holds.

local Pairing = {}

local MOST_OPEN = 64

local links, decided

function Pairing.forget()
  links, decided = {}, {}
end
Pairing.forget()

-- The two ends of a connection, or a serial line: requests that are open, and what is known of it.
function Pairing.link(key)
  local link = links[key] or { open = {} }
  links[key] = link
  return link
end

local function is_answered_by(request, answer)
  local has_number = answer.number ~= nil and answer.number ~= 0
  return request.command == answer.command and
         request.number == (has_number and answer.number or nil)
end

local function take_request(link, record)
  for _, earlier in ipairs(link.open) do
    if record.echo_key ~= nil and earlier.echo_key == record.echo_key then
      record.echo_of = earlier.packet
      return
    end
  end
  table.insert(link.open, record)
  if #link.open > MOST_OPEN then
    table.remove(link.open, 1)
  end
end

local function take_answer(link, record)
  local oldest, newest
  for place, request in ipairs(link.open) do
    if is_answered_by(request, record) then
      oldest, newest = oldest or place, place
    end
  end
  if newest == nil then
    return
  end
  local request = table.remove(link.open, newest)
  record.request = request
  record.in_excess = request.is_given_up
  if oldest < newest then
    record.may_be_of = link.open[oldest].packet
    for place = oldest, newest - 1 do
      link.open[place].is_given_up = true
    end
  end
  request.answer = request.answer or record
  for _ = 1, oldest - 1 do
    table.remove(link.open, 1)
  end
end

-- What is known of the frame with this place in its packet; `make` gives its record when it is seen
-- for the first time.
function Pairing.record(link, packet, place, make)
  local of_packet = decided[packet] or {}
  decided[packet] = of_packet
  local record = of_packet[place]
  if record == nil then
    record = make()
    record.packet = packet
    of_packet[place] = record
    if record.is_answer then
      take_answer(link, record)
    else
      take_request(link, record)
    end
  end
  return record
end
