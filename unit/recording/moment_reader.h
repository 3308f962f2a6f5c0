#pragma once

#include "unit/recording/recording.h"
#include "unit/recording/word_reader.h"

namespace unit {

// Reads what MomentText wrote; throws WrongWord for anything else.
Moment ReadMoment(WordReader words);

// Reads a line of the header behind the first one into `header`, and returns the index of its word
// in HeaderWords(). Throws WrongWord.
std::size_t ReadHeaderLine(WordReader words, RecordingHeader& header);
std::span<const std::string_view> HeaderWords();

// "21.704512"; throws WrongWord.
std::chrono::microseconds ReadTime(WordReader& words);

}  // namespace unit
