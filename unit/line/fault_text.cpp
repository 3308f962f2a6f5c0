#include "unit/line/fault_text.h"

#include <cstdio>

#include "unit/events/hex_text.h"
#include "unit/line/fault_words.h"
#include "unit/line/frame_text.h"

namespace unit {
namespace {

using Action = FaultRule::Action;

std::string TimeWord(std::chrono::microseconds time) {
    char text[32];
    std::snprintf(text, sizeof text, "%.10gms", static_cast<double>(time.count()) / 1000);
    return text;
}

std::string BytesWord(const std::vector<std::uint8_t>& bytes) {
    std::string word = HexText(bytes);
    std::erase(word, ' ');
    return word;
}

std::string ActionText(const FaultRule& rule) {
    std::string word = WordFor(kActions, rule.action);
    if (rule.action == Action::kDelay || rule.action == Action::kSplit)
        return word + " " + TimeWord(rule.duration);
    if (rule.action == Action::kInject)
        return word + " " + BytesWord(rule.bytes) + (rule.after ? " after" : " before");
    return word;
}

std::string TargetText(const FaultRule& rule) {
    if (!rule.frames)
        return " bytes";
    std::string text;
    if (rule.part != FramePart::kWhole)
        text += " " + WordFor(kParts, rule.part) +
                (rule.index ? " " + std::to_string(*rule.index) : "") + " of";
    const FrameFilter& frames = *rule.frames;
    if (frames.query)
        text += *frames.query ? " query" : " plain";
    if (frames.command)
        text += " " + CodeName(*frames.command);
    return text + " " + (frames.type ? WordFor(kTypes, *frames.type) : "frames");
}

std::string RateText(const FaultRule& rule) {
    std::string text;
    if (rule.skip > 0)
        text += " after " + std::to_string(rule.skip);
    if (rule.every > 1)
        text += " every " + std::to_string(rule.every);
    if (rule.chance_percent < 100) {
        char chance[64];
        std::snprintf(chance, sizeof chance, " chance %.10g seed %u", rule.chance_percent,
                      rule.seed);
        text += chance;
    }
    if (rule.times)
        text += " times " + std::to_string(*rule.times);
    return text;
}

}  // namespace

std::string ToText(const FaultRule& rule) {
    std::string text = ActionText(rule) + TargetText(rule);
    if (!rule.to_dvr)
        text += " to-unit";
    if (!rule.to_unit)
        text += " to-dvr";
    if (rule.action == Action::kCorrupt &&
        (rule.replaces || rule.bytes != std::vector<std::uint8_t>{0xFF}))
        text += (rule.replaces ? " value " : " xor ") + BytesWord(rule.bytes);
    return text + RateText(rule);
}

}  // namespace unit
