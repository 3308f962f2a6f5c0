#include "platform/resource/resource_file.h"

#include "platform/kernel/text.h"
#include "platform/resource/byte_reader.h"

namespace platform::resource {

namespace {

// Stands before a name that is a number.
constexpr char16_t kNumberFollows = 0xFFFF;
// Version of the data, memory flags, language, version and characteristics.
constexpr std::size_t kTrailerSize = 16;

ResourceName ReadName(ByteReader& reader) {
    const char16_t first = reader.Word();
    if (first == kNumberFollows)
        return ResourceName(reader.Word());
    if (first == 0)
        return ResourceName(std::wstring_view());
    return ResourceName(kernel::FromUtf16(first + reader.Text()));
}

// The first entry of every such file: of type 0, named 0 and empty.
bool IsSignature(const Resource& resource) {
    return resource.type == ResourceName(WORD{0}) && resource.name == ResourceName(WORD{0}) &&
           resource.data.empty();
}

// An empty text when the entry could be read.
std::string ReadEntry(ByteReader& reader, std::span<const std::byte> file, Resource& resource) {
    const std::size_t start = reader.position();
    const std::size_t data_size = reader.Dword();
    const std::size_t header_size = reader.Dword();
    if (!reader || header_size > file.size() - start)
        return "header cut off";
    ByteReader header(file.subspan(start, header_size));
    header.Bytes(reader.position() - start);
    resource.type = ReadName(header);
    resource.name = ReadName(header);
    header.Align();
    header.Bytes(kTrailerSize);
    if (!header)
        return "header too small for its fields";
    reader.Bytes(start + header_size - reader.position());
    resource.data = reader.Bytes(data_size);
    if (!reader)
        return "data cut off";
    reader.Align();
    return {};
}

}  // namespace

std::optional<std::vector<Resource>> ReadResourceFile(std::span<const std::byte> file,
                                                      std::string& problem) {
    std::vector<Resource> resources;
    bool signed_file = false;
    ByteReader reader(file);
    while (reader.left() > 0) {
        const std::size_t start = reader.position();
        Resource resource;
        problem = ReadEntry(reader, file, resource);
        if (problem.empty() && !signed_file && !IsSignature(resource))
            problem = "not the beginning of a compiled resource file";
        if (!problem.empty()) {
            problem.insert(0, "byte " + std::to_string(start) + ": ");
            return std::nullopt;
        }
        if (signed_file)
            resources.push_back(std::move(resource));
        signed_file = true;
    }
    if (!signed_file) {
        problem = "empty";
        return std::nullopt;
    }
    problem.clear();
    return resources;
}

}  // namespace platform::resource
