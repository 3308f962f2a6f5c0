#include "platform/resource/module.h"

#include <algorithm>
#include <mutex>

#include "platform/resource/program_module.h"

namespace platform::resource {

namespace {

struct Entry {
    Resource resource;
    bool hidden = false;
};

struct Program {
    std::mutex mutex;
    std::wstring path;
    // Changes its length in SetModule only.
    std::vector<Entry> entries;
};

Program& TheProgram() {
    static Program program;
    return program;
}

}  // namespace

bool SetModule(std::span<const std::byte> resources, std::wstring path, std::string& problem) {
    auto read = ReadResourceFile(resources, problem);
    Program& program = TheProgram();
    const std::scoped_lock lock(program.mutex);
    program.path = std::move(path);
    program.entries.clear();
    if (!read)
        return false;
    for (Resource& resource : *read)
        program.entries.push_back({std::move(resource)});
    return true;
}

HINSTANCE ModuleInstance() {
    static HINSTANCE__ instance{};
    return &instance;
}

void Hide(LPCWSTR type, LPCWSTR name) {
    const auto wanted_type = ResourceName::FromApi(type);
    const auto wanted_name = ResourceName::FromApi(name);
    Program& program = TheProgram();
    const std::scoped_lock lock(program.mutex);
    for (Entry& entry : program.entries)
        if (entry.resource.type == wanted_type && entry.resource.name == wanted_name)
            entry.hidden = true;
}

std::optional<std::span<const std::byte>> Find(LPCWSTR type, LPCWSTR name) {
    const Resource* resource = FindEntry(type, name);
    if (!resource)
        return std::nullopt;
    return resource->data;
}

bool IsProgram(HMODULE module) {
    if (!module || module == ModuleInstance())
        return true;
    SetLastError(ERROR_MOD_NOT_FOUND);
    return false;
}

std::wstring ProgramPath() {
    Program& program = TheProgram();
    const std::scoped_lock lock(program.mutex);
    return program.path;
}

const Resource* FindEntry(LPCWSTR type, LPCWSTR name) {
    const auto wanted_type = ResourceName::FromApi(type);
    const auto wanted_name = ResourceName::FromApi(name);
    Program& program = TheProgram();
    const std::scoped_lock lock(program.mutex);
    bool type_exists = false;
    for (const Entry& entry : program.entries) {
        if (entry.hidden || entry.resource.type != wanted_type)
            continue;
        if (entry.resource.name == wanted_name)
            return &entry.resource;
        type_exists = true;
    }
    SetLastError(type_exists ? ERROR_RESOURCE_NAME_NOT_FOUND : ERROR_RESOURCE_TYPE_NOT_FOUND);
    return nullptr;
}

const Resource* EntryOf(HRSRC handle) {
    Program& program = TheProgram();
    const std::scoped_lock lock(program.mutex);
    for (const Entry& entry : program.entries)
        if (static_cast<const void*>(&entry.resource) == handle)
            return &entry.resource;
    SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
}

}  // namespace platform::resource
