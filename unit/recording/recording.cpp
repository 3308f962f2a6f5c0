#include "unit/recording/recording.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <limits>
#include <set>

#include "control/protocol.h"
#include "control/words.h"
#include "unit/events/event_text.h"

namespace unit {
namespace {

// The version of the files that are written and read.
constexpr int kRecordingVersion = 1;
constexpr std::string_view kFirstWords = "tolvane recording ";

// Without the line end.
constexpr std::size_t kMaxLineBytes = 16 * 1024;
// Days of a busy line; nobody could replay more.
constexpr std::size_t kMaxEvents = 2'000'000;

constexpr std::string_view kWaitingRepaints = "waiting-repaints";

void ReadMode(WordReader& words, RecordingHeader& header) {
    using platform::kernel::Mode;
    constexpr std::string_view kModes[] = {"simulated", "free"};
    if (words.OneOf(kModes) == 0) {
        header.kernel.mode = Mode::kSimulated;
        header.kernel.preempt = words.Has("preempt");
        header.kernel.waiting_repaints = words.Has(kWaitingRepaints);
        return;
    }
    header.kernel.mode = Mode::kFreeRunning;
    words.Expect("speed");
    constexpr std::string_view kAllowed = "a number from 0.1 to 1000";
    constexpr double kSlowest = 0.1;
    constexpr double kFastest = 1000;
    const WordReader before = words;
    const std::string& speed = words.Text(kAllowed);
    const char* const end = speed.data() + speed.size();
    const auto [rest, error] = std::from_chars(speed.data(), end, header.kernel.speed);
    if (error != std::errc() || rest != end || !(header.kernel.speed >= kSlowest) ||
        header.kernel.speed > kFastest)
        before.Refuse(kAllowed);
    header.kernel.waiting_repaints = words.Has(kWaitingRepaints);
}

constexpr std::string_view kBegin = "begin";
constexpr std::string_view kMissingBitmap = "missing-bitmap";

struct HeaderLine {
    std::string_view word;
    void (*read)(WordReader&, RecordingHeader&);
};
constexpr HeaderLine kHeaderLines[] = {
    {"program",
     [](WordReader& words, RecordingHeader& header) {
         header.program = words.Text("the version of the program");
     }},
    {"mode", ReadMode},
    {"seed",
     [](WordReader& words, RecordingHeader& header) {
         constexpr auto kMaxSeed = std::numeric_limits<std::int64_t>::max();
         header.kernel.seed = static_cast<std::uint64_t>(words.Number(0, kMaxSeed));
     }},
    {"start", [](WordReader& words, RecordingHeader& header) { header.start = ReadTime(words); }},
    {"supply",
     [](WordReader& words, RecordingHeader& header) { header.supply = ReadSupply(words); }},
    {kMissingBitmap,
     [](WordReader& words, RecordingHeader& header) {
         header.missing_bitmaps.push_back(static_cast<WORD>(words.Number(1, 0xFFFF)));
     }},
    {kBegin, [](WordReader&, RecordingHeader&) {}},
};
constexpr auto kHeaderWords = [] {
    std::array<std::string_view, std::size(kHeaderLines)> words;
    std::ranges::transform(kHeaderLines, words.begin(), &HeaderLine::word);
    return words;
}();

class Reader {
  public:
    explicit Reader(Recording& recording) : recording_(recording) {}

    // Throws WrongWord.
    void Read(std::istream& file) {
        while (TakeLine(file)) {
            if (line_ == 1)
                ReadFirstLine();
            else
                ReadLine();
        }
        if (line_ == 0 || !begun_) {
            ++line_;
            throw WrongWord("the recording ends before its first event; it cannot be replayed");
        }
    }

    int line() const { return line_; }

  private:
    // False at the end of the file, and for a line without a line end.
    bool TakeLine(std::istream& file) {
        text_.clear();
        for (;;) {
            if (rest_.empty()) {
                file.read(block_.data(), static_cast<std::streamsize>(block_.size()));
                rest_ = {block_.data(), static_cast<std::size_t>(file.gcount())};
            }
            if (rest_.empty())
                return false;
            const std::size_t end = rest_.find('\n');
            const bool ends = end != std::string_view::npos;
            const std::string_view part = rest_.substr(0, end);
            text_ += part;
            rest_.remove_prefix(part.size() + (ends ? 1 : 0));
            bytes_ += part.size() + (ends ? 1 : 0);
            line_ += ends ? 1 : 0;
            CheckSize(ends ? line_ : line_ + 1);
            if (ends)
                return true;
        }
    }

    void CheckSize(int line) {
        if (text_.size() <= kMaxLineBytes && bytes_ <= kMaxRecordingBytes)
            return;
        line_ = line;
        if (text_.size() > kMaxLineBytes)
            throw WrongWord("the line is longer than " + std::to_string(kMaxLineBytes) +
                            " bytes, the limit for a line of a recording");
        throw WrongWord("the recording is longer than " + std::to_string(kMaxRecordingBytes) +
                        " bytes, the limit for a recording");
    }

    void ReadFirstLine() const {
        const auto version = text_.starts_with(kFirstWords)
                                 ? control::ReadNumber(text_.substr(kFirstWords.size()))
                                 : std::nullopt;
        const std::string readable = std::to_string(kRecordingVersion);
        if (!version || *version < 1)
            throw WrongWord("this is not a recording; a recording begins with '" +
                            std::string(kFirstWords) + readable + "'");
        if (*version > kRecordingVersion)
            throw WrongWord("the recording has version " + std::to_string(*version) +
                            "; this tolvane reads version " + readable);
    }

    void ReadLine() {
        std::string problem;
        const auto words = control::SplitWords(text_, problem);
        if (!words)
            throw WrongWord(problem);
        if (words->empty())
            return;
        if (recording_.complete)
            throw WrongWord("nothing is allowed after 'end'");
        if (begun_)
            ReadTimedEvent(*words);
        else
            ReadHeaderLine(WordReader(*words));
    }

    void ReadHeaderLine(WordReader words) {
        const HeaderLine& line = kHeaderLines[words.OneOf(kHeaderWords)];
        line.read(words, recording_.header);
        words.Finish();
        begun_ = line.word == kBegin;
        if (!seen_.insert(line.word).second && line.word != kMissingBitmap)
            throw WrongWord("the header has a second line '" + std::string(line.word) + "'");
        for (const std::string_view needed : kHeaderWords)
            if (begun_ && needed != kMissingBitmap && !seen_.contains(needed))
                throw WrongWord("the header lacks the line '" + std::string(needed) + "'");
        last_ = recording_.header.start;
    }

    void ReadTimedEvent(const std::vector<std::string>& words) {
        if (recording_.events.size() == kMaxEvents)
            throw WrongWord("the recording has more than " + std::to_string(kMaxEvents) +
                            " events");
        WordReader reader(words);
        const std::chrono::microseconds time = ReadTime(reader);
        if (time < last_)
            throw WrongWord("the time " + words.front() +
                            " is earlier than that of the line before");
        last_ = time;
        recording_.events.push_back({time, line_, ReadEvent(reader.Rest())});
        recording_.complete =
            std::holds_alternative<RecordingEnded>(recording_.events.back().event);
    }

    Recording& recording_;
    std::vector<char> block_ = std::vector<char>(64 * 1024);
    std::string_view rest_;  // of the block
    std::string text_;       // of the line
    std::size_t bytes_ = 0;
    int line_ = 0;
    bool begun_ = false;
    std::set<std::string_view> seen_;
    std::chrono::microseconds last_{};
};

}  // namespace

std::optional<Recording> ReadRecording(const std::string& file, std::string& problem) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        problem = file + ": " + std::strerror(errno);
        return std::nullopt;
    }
    Recording recording;
    recording.file = file;
    Reader reader(recording);
    try {
        reader.Read(stream);
    } catch (const WrongWord& wrong) {
        problem =
            file + ":" + std::to_string(reader.line()) + ": " + control::PlainText(wrong.what());
        return std::nullopt;
    }
    return recording;
}

std::string HeaderText(const RecordingHeader& header) {
    std::string text = std::string(kFirstWords) + std::to_string(kRecordingVersion) + "\n";
    text += "program " + control::QuoteWord(header.program) + "\n";
    if (header.Simulated()) {
        text += std::string("mode simulated") + (header.kernel.preempt ? " preempt" : "");
    } else {
        char mode[48];
        std::snprintf(mode, sizeof mode, "mode free speed %g", header.kernel.speed);
        text += mode;
    }
    if (header.kernel.waiting_repaints)
        text += " " + std::string(kWaitingRepaints);
    text += "\n";
    text += "seed " + std::to_string(header.kernel.seed) + "\n";
    text += "start " + TimeText(header.start) + "\n";
    text += "supply " + SupplyText(header.supply) + "\n";
    for (const WORD bitmap : header.missing_bitmaps)
        text += std::string(kMissingBitmap) + " " + std::to_string(bitmap) + "\n";
    return text + std::string(kBegin) + "\n";
}

std::string ProgramVersion() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::vector<std::byte> block(GetFileVersionInfoSizeW(path, nullptr));
    void* found = nullptr;
    UINT length = 0;
    if (block.empty() ||
        !GetFileVersionInfoW(path, 0, static_cast<DWORD>(block.size()), block.data()) ||
        !VerQueryValueW(block.data(), L"\\", &found, &length))
        return "unknown";
    const auto& info = *static_cast<const VS_FIXEDFILEINFO*>(found);
    std::string text;
    for (const unsigned part : {HIWORD(info.dwFileVersionMS), LOWORD(info.dwFileVersionMS),
                                HIWORD(info.dwFileVersionLS), LOWORD(info.dwFileVersionLS)})
        text += (text.empty() ? "" : ".") + std::to_string(part);
    return text;
}

}  // namespace unit
