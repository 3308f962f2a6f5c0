-- Dissects the serial protocol between the unit and the DVR (docs/protocol.md) in the traces that tolvane
-- writes, whose link type is USER0. Usage: wireshark -X lua_script:tools/wireshark/tolvane.lua FILE.pcapng

local protocol = Proto("tolvane", "Tolvane DVR serial protocol")

local types = { [0x10] = "request", [0x20] = "acknowledgement", [0x80] = "indication" }
local commands = {
    [0x0010] = "DVR_RunningState",
    [0x0011] = "DVR_Mode",
    [0x0012] = "Video_Resolution",
    [0x0013] = "Video_TimeStamp",
    [0x0014] = "Video_CycleTime",
    [0x0015] = "Video_SoundRecording",
    [0x0016] = "Photo_Resolution",
    [0x0017] = "Play_DeleteFile",
    [0x0018] = "Play_Thumbnail",
    [0x0019] = "Play_Volume",
    [0x001A] = "Language",
    [0x001B] = "Automatic_ShutDown",
    [0x001C] = "System_Reboot",
    [0x001D] = "Factory_DefaultSetting",
    [0x001E] = "Frequency",
    [0x001F] = "Time",
    [0x0020] = "Key",
    [0x0021] = "Play_File",
    [0x0022] = "Video_Record",
    [0x0023] = "Photo_Capture",
    [0x0024] = "AC_LineStatus",
    [0x0025] = "BatteryStatus",
    [0x0026] = "StorageCardStatus",
    [0x0027] = "QueryInformation",
    [0x0028] = "QueryFileName",
    [0x0029] = "G_Sensor",
    [0x002A] = "Normal_REC_Overwrite",
    [0x002B] = "Event_REC_Overwrite",
    [0x002C] = "Lock_UnLock_File",
    [0x002D] = "EventTrigger",
    [0x002E] = "FW_Upgrade_Version",
}
local running_states = {
    [0] = "initializing", "initialization finished", "normal", "rebooting", "shutting down",
}
local modes = { [0] = "video", "photo", "play" }
local card_states = {
    [0] = "out", "in", "broken", "formatting", "full of normal files", "full of event files", "full of both",
}

local SYNC, HEADER, CHECKSUM, MAX_PAYLOAD, QUERY = 0xA55A, 7, 2, 64, 0x8000
local REQUEST, ACKNOWLEDGEMENT, INDICATION = 0x10, 0x20, 0x80

local fields = {
    direction = ProtoField.string("tolvane.direction", "Direction"),
    sync = ProtoField.uint16("tolvane.sync", "Sync", base.HEX),
    type = ProtoField.uint8("tolvane.type", "Type", base.HEX, types),
    code = ProtoField.uint16("tolvane.code", "Code", base.HEX),
    query = ProtoField.bool("tolvane.query", "Query", 16, nil, QUERY),
    command = ProtoField.uint16("tolvane.command", "Command", base.HEX, commands, 0x7FFF),
    name = ProtoField.string("tolvane.name", "Command name"),
    length = ProtoField.uint16("tolvane.length", "Length", base.DEC),
    payload = ProtoField.bytes("tolvane.payload", "Payload"),
    running_state = ProtoField.uint8("tolvane.running_state", "Running state", base.DEC, running_states),
    mode = ProtoField.uint8("tolvane.mode", "Mode", base.DEC, modes),
    card = ProtoField.uint8("tolvane.card", "Card", base.DEC, card_states),
    card_percent = ProtoField.uint8("tolvane.card_percent", "Card percent in use", base.DEC),
    percent = ProtoField.uint8("tolvane.percent", "Update percent", base.DEC),
    version = ProtoField.string("tolvane.version", "Version"),
    recording = ProtoField.bool("tolvane.recording", "Recording"),
    record_time = ProtoField.string("tolvane.record_time", "Recording time"),
    time = ProtoField.string("tolvane.time", "Time"),
    checksum = ProtoField.uint16("tolvane.checksum", "Checksum", base.HEX),
    checksum_good = ProtoField.bool("tolvane.checksum_good", "Checksum is right"),
    stray = ProtoField.bytes("tolvane.stray", "Stray bytes"),
}
local field_list = {}
for _, field in pairs(fields) do
    field_list[#field_list + 1] = field
end
protocol.fields = field_list

local bad_checksum = ProtoExpert.new("tolvane.checksum.bad", "Wrong checksum", expert.group.CHECKSUM,
                                     expert.severity.ERROR)
local bad_length = ProtoExpert.new("tolvane.length.bad", "Impossible length", expert.group.MALFORMED,
                                   expert.severity.ERROR)
local bad_type = ProtoExpert.new("tolvane.type.bad", "Unknown type", expert.group.PROTOCOL,
                                 expert.severity.WARN)
local stray_bytes = ProtoExpert.new("tolvane.stray.found", "Bytes outside a frame", expert.group.PROTOCOL,
                                    expert.severity.WARN)
local incomplete = ProtoExpert.new("tolvane.incomplete", "Incomplete frame", expert.group.MALFORMED,
                                   expert.severity.WARN)
protocol.experts = { bad_checksum, bad_length, bad_type, stray_bytes, incomplete }

-- The decoders add the payload's parts and return them in words.
local function named(field, names)
    return function(payload, tree)
        local value = payload(0, 1):uint()
        tree:add(field, payload(0, 1))
        return names[value] or ("unknown " .. value)
    end
end

-- Up to the first zero byte, as the program reads it.
local function text(field)
    return function(payload, tree)
        local value = payload:string():match("^[^\0]*")
        tree:add(field, payload, value)
        return value
    end
end

-- The percent is the second byte of two, the third of more.
local function card(payload, tree)
    local words = named(fields.card, card_states)(payload, tree)
    local at = payload:len() == 2 and 1 or 2
    if at >= payload:len() then
        return words
    end
    tree:add(fields.card_percent, payload(at, 1))
    return string.format("%s, %d%% in use", words, payload(at, 1):uint())
end

local function percent(payload, tree)
    tree:add(fields.percent, payload(0, 1))
    local words = payload(0, 1):uint() .. "%"
    if payload:len() > 1 then
        words = words .. " " .. text(fields.version)(payload(1), tree)
    end
    return words
end

local function record(payload, tree)
    if payload:len() < 8 then
        return nil
    end
    local first = payload(0, 1):uint()
    local recording = first == 1 or first == 0x31
    tree:add(fields.recording, payload(0, 1), recording)
    if not recording then
        return "stopped"
    end
    local digits = payload(2, 6):string()
    local time = digits:sub(1, 2) .. ":" .. digits:sub(3, 4) .. ":" .. digits:sub(5, 6)
    tree:add(fields.record_time, payload(2, 6), time)
    return "recording for " .. time
end

local running_state, mode, time =
    named(fields.running_state, running_states), named(fields.mode, modes), text(fields.time)
local decoders = {
    [ACKNOWLEDGEMENT] = {
        DVR_RunningState = running_state, DVR_Mode = mode, Time = time, StorageCardStatus = card,
        FW_Upgrade_Version = text(fields.version),
    },
    [INDICATION] = {
        DVR_RunningState = running_state, DVR_Mode = mode, Time = time, StorageCardStatus = card,
        FW_Upgrade_Version = percent, Video_Record = record,
    },
}

local function add_checksum(buffer, tree, summed)
    local sum = 0
    for index = 0, summed - 1 do
        sum = (sum + buffer(index, 1):uint()) % 0x10000
    end
    local part = buffer(summed, CHECKSUM)
    local good = part:uint() == sum
    local item = tree:add(fields.checksum, part)
    tree:add(fields.checksum_good, part, good):set_generated()
    if not good then
        item:add_proto_expert_info(bad_checksum, string.format("Wrong checksum, must be 0x%04X", sum))
    end
    return good
end

-- Returns the packet's line in the list.
local function dissect_frame(buffer, tree)
    tree:add(fields.sync, buffer(0, 2))
    local kind, code, length = buffer(2, 1):uint(), buffer(3, 2):uint(), buffer(5, 2):uint()
    local type_item = tree:add(fields.type, buffer(2, 1))
    if not types[kind] then
        type_item:add_proto_expert_info(bad_type)
    end
    local query = code >= QUERY
    local number = code % QUERY
    local name = commands[number] or string.format("0x%04X", number)
    local code_tree = tree:add(fields.code, buffer(3, 2))
    code_tree:add(fields.query, buffer(3, 2))
    code_tree:add(fields.command, buffer(3, 2))
    code_tree:add(fields.name, buffer(3, 2), name):set_generated()
    local line = (types[kind] or string.format("type 0x%02X", kind)) .. " " .. name .. (query and " query" or "")
    local length_item = tree:add(fields.length, buffer(5, 2))
    if length > MAX_PAYLOAD then
        length_item:add_proto_expert_info(bad_length)
        return line .. ", length " .. length .. " is impossible"
    end
    if buffer:len() < HEADER + length + CHECKSUM then
        tree:add_proto_expert_info(incomplete)
        return line .. ", incomplete"
    end
    if length > 0 then
        local payload = buffer(HEADER, length)
        local payload_tree = tree:add(fields.payload, payload)
        local decode = decoders[kind] and decoders[kind][name]
        local words = decode and decode(payload, payload_tree)
        line = line .. ": " .. (words or tostring(payload:bytes()))
    end
    if not add_checksum(buffer, tree, HEADER + length) then
        line = line .. " [wrong checksum]"
    end
    return line
end

function protocol.dissector(buffer, info, root)
    info.cols.protocol = "DVR"
    local to_unit = info.p2p_dir == 1
    info.cols.src = to_unit and "DVR" or "unit"
    info.cols.dst = to_unit and "unit" or "DVR"
    if buffer:len() == 0 then
        -- Only a comment.
        info.cols.info = "(see the comment)"
        return 0
    end
    local tree = root:add(protocol, buffer())
    tree:add(fields.direction, to_unit and "to unit" or "to DVR"):set_generated()
    local begins = buffer:len() >= 2 and buffer(0, 2):uint() == SYNC
    if begins and buffer:len() >= HEADER then
        info.cols.info = dissect_frame(buffer, tree)
    else
        tree:add(fields.stray, buffer())
        tree:add_proto_expert_info(begins and incomplete or stray_bytes)
        info.cols.info = begins and "incomplete frame" or buffer:len() .. " stray bytes"
    end
    return buffer:len()
end

DissectorTable.get("wtap_encap"):add(wtap.USER0, protocol)
