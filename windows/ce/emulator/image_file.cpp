#include "windows/ce/emulator/image_file.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>

namespace ce {
namespace {

constexpr std::uint16_t kMachineThumb = 0x01C2;
constexpr std::uint32_t kExecutable = 0x20000000;
constexpr std::uint32_t kWritable = 0x80000000;
constexpr std::size_t kSectionHeaderBytes = 40;
constexpr std::size_t kImportDescriptorBytes = 20;

std::optional<std::string> Contents(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(file), {});
}

// Numbers of a file or of an image in memory. What lies outside is 0.
class Bytes {
  public:
    explicit Bytes(const std::string& bytes) : bytes_(bytes) {}

    template <typename Number>
    Number At(std::size_t offset) const {
        Number number = 0;
        if (offset + sizeof number <= bytes_.size())
            std::memcpy(&number, bytes_.data() + offset, sizeof number);
        return number;
    }

    std::string Text(std::size_t offset) const {
        return offset < bytes_.size() ? std::string(bytes_.c_str() + offset) : std::string();
    }

  private:
    const std::string& bytes_;
};

// The import table, by addresses relative to the image.
std::vector<ImageFile::Import> ReadImports(const ImageFile& image, std::uint32_t table) {
    std::string memory(image.bytes, '\0');
    for (const ImageFile::Section& section : image.sections)
        memory.replace(section.address - image.base, section.contents.size(), section.contents);
    const Bytes bytes(memory);
    std::vector<ImageFile::Import> imports;
    for (std::size_t descriptor = table; bytes.At<std::uint32_t>(descriptor) != 0;
         descriptor += kImportDescriptorBytes) {
        const auto names = bytes.At<std::uint32_t>(descriptor);
        const auto slots = bytes.At<std::uint32_t>(descriptor + 16);
        for (std::uint32_t offset = 0;; offset += 4) {
            const auto name = bytes.At<std::uint32_t>(names + offset);
            if (name == 0)
                break;
            imports.push_back({bytes.Text(name + 2), image.base + slots + offset});
        }
    }
    return imports;
}

// Lines like "00005306 00000000     0                 UART_ParseData(unsigned char const*, ...)".
std::map<std::string, Address> ReadSymbols(const std::string& map, Address base) {
    std::map<std::string, Address> symbols;
    std::istringstream lines(map);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream fields(line);
        std::uint32_t address = 0;
        std::uint32_t size = 0;
        unsigned alignment = 0;
        if (!(fields >> std::hex >> address >> size >> std::dec >> alignment) || alignment != 0)
            continue;
        std::string name;
        std::getline(fields >> std::ws, name);
        symbols.emplace(name, base + address);
    }
    return symbols;
}

}  // namespace

bool ImageFile::Read(const std::string& executable, const std::string& map, std::string& problem) {
    const std::optional<std::string> file = Contents(executable);
    const std::optional<std::string> map_file = Contents(map);
    if (!file || !map_file) {
        problem = (file ? map : executable) + " cannot be read; tools/build-unit makes it";
        return false;
    }
    const Bytes header(*file);
    const std::size_t file_header = header.At<std::uint32_t>(0x3C) + std::size_t{4};
    const std::size_t optional_header = file_header + 20;
    if (header.At<std::uint16_t>(file_header) != kMachineThumb) {
        problem = executable + " is no executable for Windows CE on ARM (machine 0x01c2)";
        return false;
    }
    base = header.At<std::uint32_t>(optional_header + 28);
    entry = base + header.At<std::uint32_t>(optional_header + 16);
    bytes = header.At<std::uint32_t>(optional_header + 56);
    stack_bytes = header.At<std::uint32_t>(optional_header + 72);
    std::size_t section = optional_header + header.At<std::uint16_t>(file_header + 16);
    for (int count = header.At<std::uint16_t>(file_header + 2); count > 0; --count) {
        const auto memory_bytes = header.At<std::uint32_t>(section + 8);
        const auto file_bytes = header.At<std::uint32_t>(section + 16);
        const auto flags = header.At<std::uint32_t>(section + 36);
        sections.push_back({base + header.At<std::uint32_t>(section + 12), memory_bytes,
                            (flags & kWritable) != 0, (flags & kExecutable) != 0,
                            file->substr(header.At<std::uint32_t>(section + 20),
                                         std::min(memory_bytes, file_bytes))});
        section += kSectionHeaderBytes;
    }
    imports = ReadImports(*this, header.At<std::uint32_t>(optional_header + 104));
    symbols = ReadSymbols(*map_file, base);
    return true;
}

}  // namespace ce
