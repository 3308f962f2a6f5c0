#pragma once

#include <cstdarg>
#include <string>

namespace platform::kernel {

// The wide formatters' language as the API has it: in a wide format %s and %c are wide, %S and %C
// narrow, %ls and %hs always wide and narrow; l is 32 bits and I64 is 64. Flags - + # 0 blank,
// width and precision (numbers or *), d i u x X o c C s S p %. Anything else is copied as it
// stands. A null text prints as "(null)". Takes the values off `arguments`.
std::wstring FormatWide(const wchar_t* format, va_list& arguments);

}  // namespace platform::kernel
