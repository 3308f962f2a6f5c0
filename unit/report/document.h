#pragma once

#include <chrono>
#include <string>

namespace unit {

// What the pages of a report have in common.

// A whole document without scripts and without anything from outside, with the reports' style. The
// title is a text, the body markup.
std::string Document(const std::string& title, const std::string& body);

// "passed" or "failed", and the same as a label.
std::string VerdictWord(bool passed);
std::string Badge(bool passed);

// "41.2 s".
std::string SecondsText(std::chrono::duration<double> time);

// The host's date and time now: "2026-03-01 14:05:59 +0900".
std::string DateText();

}  // namespace unit
