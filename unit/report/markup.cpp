#include "unit/report/markup.h"

#include <glib.h>

#include <memory>
#include <utility>

#include "control/protocol.h"

namespace unit {
namespace {

// Takes the text over from GLib.
std::string Taken(char* text) {
    return std::unique_ptr<char, decltype(&g_free)>(text, g_free).get();
}

}  // namespace

std::string Escaped(std::string_view text) {
    std::string escaped;
    bool first = true;
    control::ForEachLine(text, [&](std::string_view line) {
        if (!std::exchange(first, false))
            escaped += "&#10;";
        // XML has no control characters, not even as references.
        const std::string plain = control::PlainText(line);
        escaped += Taken(g_markup_escape_text(plain.data(), static_cast<gssize>(plain.size())));
    });
    return escaped;
}

std::string Element(std::string_view opening, std::string_view content) {
    std::string element = "<";
    element.append(opening).append(">").append(content).append("</");
    element.append(opening.substr(0, opening.find(' '))).append(">");
    return element;
}

std::string LinkPath(std::string_view path) {
    return Taken(g_uri_escape_string(std::string(path).c_str(), nullptr, FALSE));
}

}  // namespace unit
