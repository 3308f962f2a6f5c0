#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <string>

#include "windows/ce/emulator/processor.h"

namespace ce {

// The program's texts are UTF-16.
std::wstring TextAt(Address text);

// Writes the text with its terminator, cut to `capacity` characters. Returns the number of
// characters without the terminator.
std::uint32_t StoreText(Address buffer, std::uint32_t capacity, const std::wstring& text);

// The arguments of a format, each in a register of the host, and the texts that they point to.
struct FormatArguments {
    std::array<std::uintptr_t, 10> values{};
    std::deque<std::wstring> texts;
};

// The arguments of a call from `first` on, for a format in which %s takes wide text.
FormatArguments WideFormatArguments(const SystemCall& call, unsigned first,
                                    const std::wstring& format);
// For a format in which all text is narrow.
FormatArguments NarrowFormatArguments(const SystemCall& call, unsigned first,
                                      const std::string& format);

}  // namespace ce
