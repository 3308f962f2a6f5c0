#include "platform/resource/version_block.h"

#include <cstring>
#include <string>

#include "platform/kernel/text.h"
#include "platform/resource/byte_reader.h"
#include "platform/resource/resource_name.h"

namespace platform::resource {

namespace {

constexpr wchar_t kRootKey[] = L"VS_VERSION_INFO";
// Root, StringFileInfo, language, text.
constexpr int kMaxDepth = 4;
constexpr WORD kTextType = 1;

struct NodeHead {
    DWORD length;
    DWORD value_length;
    DWORD is_text;
};

void Append(std::vector<std::byte>& out, const void* data, std::size_t size) {
    const auto* bytes = static_cast<const std::byte*>(data);
    out.insert(out.end(), bytes, bytes + size);
    out.resize((out.size() + 3) & ~std::size_t{3});
}

void AppendText(std::vector<std::byte>& out, const std::wstring& text) {
    Append(out, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
}

// A node of the resource without its head's length, which is the extent of `reader`.
struct RawNode {
    WORD value_length = 0;
    WORD type = 0;
    std::wstring key;
    std::span<const std::byte> value;
};

std::wstring ValueText(const RawNode& node) {
    ByteReader reader(node.value);
    // The terminator may be missing.
    std::u16string text;
    while (reader.left() >= 2) {
        const char16_t unit = reader.Word();
        if (unit == 0)
            break;
        text += unit;
    }
    return kernel::FromUtf16(text);
}

bool ReadNode(ByteReader& reader, RawNode& node) {
    node.value_length = reader.Word();
    node.type = reader.Word();
    node.key = kernel::FromUtf16(reader.Text());
    reader.Align();
    node.value = reader.Bytes(node.type == kTextType ? std::size_t{node.value_length} * 2
                                                     : node.value_length);
    const bool whole{reader};
    reader.Align();
    return whole;
}

bool IsRoot(const RawNode& node) {
    DWORD signature = 0;
    if (node.key != kRootKey || node.type == kTextType ||
        node.value.size() != sizeof(VS_FIXEDFILEINFO))
        return false;
    std::memcpy(&signature, node.value.data(), sizeof signature);
    return signature == VS_FFI_SIGNATURE;
}

// Takes one node with all below it off `parent`.
bool ConvertNode(ByteReader& parent, std::vector<std::byte>& out, int depth) {
    const std::size_t length = parent.Word();
    if (length < sizeof(WORD) || depth == kMaxDepth)
        return false;
    // Positions count from the start of the node: its length's word stands in for itself.
    const auto rest = parent.Bytes(length - sizeof(WORD));
    if (!parent)
        return false;
    ByteReader reader(std::span(rest.data() - sizeof(WORD), length));
    reader.Word();
    RawNode node;
    if (!ReadNode(reader, node) || (depth == 0 && !IsRoot(node)))
        return false;

    const std::size_t start = out.size();
    NodeHead head{0, node.value_length, node.type == kTextType ? 1U : 0U};
    Append(out, &head, sizeof head);
    AppendText(out, node.key);
    if (head.is_text != 0 && head.value_length != 0) {
        const std::wstring text = ValueText(node);
        head.value_length = static_cast<DWORD>(text.size() + 1);
        AppendText(out, text);
    } else {
        Append(out, node.value.data(), node.value.size());
    }
    while (reader.left() > 0) {
        if (!ConvertNode(reader, out, depth + 1))
            return false;
        reader.Align();
    }
    head.length = static_cast<DWORD>(out.size() - start);
    std::memcpy(&out[start], &head, sizeof head);
    return true;
}

// A node of a converted block.
struct Node {
    explicit Node(const std::byte* at) : address(at) {
        std::memcpy(&head, at, sizeof head);
        key = reinterpret_cast<const wchar_t*>(at + sizeof head);
        value = at + sizeof head + (key.size() + 1) * sizeof(wchar_t);
        const std::size_t size =
            head.is_text != 0 ? head.value_length * sizeof(wchar_t) : head.value_length;
        below = value + ((size + 3) & ~std::size_t{3});
        end = address + head.length;
    }

    const std::byte* address;
    NodeHead head{};
    std::wstring_view key;
    const std::byte* value;
    const std::byte* below;
    const std::byte* end;
};

std::optional<Node> Below(const Node& node, std::wstring_view key) {
    for (const std::byte* at = node.below; at < node.end;) {
        const Node candidate(at);
        if (SameText(candidate.key, key))
            return candidate;
        at = candidate.end;
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::vector<std::byte>> ConvertVersionBlock(std::span<const std::byte> resource) {
    std::vector<std::byte> block;
    ByteReader reader(resource);
    if (!ConvertNode(reader, block, 0))
        return std::nullopt;
    return block;
}

std::optional<VersionValue> QueryVersionBlock(const std::byte* block, std::wstring_view path) {
    std::optional<Node> node(block);
    while (node && !path.empty()) {
        const std::size_t end = std::min(path.find(L'\\'), path.size());
        if (end > 0)
            node = Below(*node, path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    if (!node)
        return std::nullopt;
    return VersionValue{node->value, node->head.value_length};
}

}  // namespace platform::resource
