#pragma once

#include <windows.h>

#include <cstddef>
#include <cstring>
#include <span>

namespace unit {

// Reads the record of a driver request; ERROR_INVALID_PARAMETER if the size differs.
template <class Record>
DWORD ReadRecord(std::span<const std::byte> input, Record& record) {
    if (input.size() != sizeof record)
        return ERROR_INVALID_PARAMETER;
    std::memcpy(&record, input.data(), sizeof record);
    return ERROR_SUCCESS;
}

}  // namespace unit
