#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace ce {

// An address of the emulated program.
using Address = std::uint32_t;

// An executable of Windows CE as its file describes it.
struct ImageFile {
    struct Section {
        Address address;
        std::uint32_t bytes;  // in memory; what the file does not have is zero
        bool writable;
        bool executable;
        std::string contents;
    };
    struct Import {
        std::string name;
        Address slot;  // where the loader stores the function's address
    };

    Address base = 0;
    std::uint32_t bytes = 0;
    Address entry = 0;
    std::uint32_t stack_bytes = 0;
    std::vector<Section> sections;
    std::vector<Import> imports;
    std::map<std::string, Address> symbols;  // of the linker's map, as C++ writes them

    // Reads the executable and the linker's map. False with one line in `problem`.
    bool Read(const std::string& executable, const std::string& map, std::string& problem);
};

}  // namespace ce
