#include "unit/recording/recording_reader.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <set>

#include "control/protocol.h"
#include "control/words.h"
#include "unit/recording/moment_reader.h"

namespace unit {
namespace {

// Days of a busy line; more is no recording that anyone could replay.
constexpr std::size_t kMostMoments = 2'000'000;

constexpr char kFirstWords[] = "tolvane recording ";

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
    // False at the end of the file, and for a line that has no end.
    bool TakeLine(std::istream& file) {
        text_.clear();
        for (int character = file.get(); character != EOF; character = file.get()) {
            if (++bytes_ > kLongestRecording) {
                ++line_;
                throw WrongWord("the recording is longer than " +
                                std::to_string(kLongestRecording) + " bytes; none is");
            }
            if (character == '\n') {
                ++line_;
                return true;
            }
            if (text_.size() == kLongestLine) {
                ++line_;
                throw WrongWord("the line is longer than " + std::to_string(kLongestLine) +
                                " bytes; no line of a recording is");
            }
            text_ += static_cast<char>(character);
        }
        return false;
    }

    void ReadFirstLine() const {
        const auto version = text_.starts_with(kFirstWords)
                                 ? control::ReadNumber(text_.substr(std::strlen(kFirstWords)))
                                 : std::nullopt;
        const std::string readable = std::to_string(kRecordingVersion);
        if (!version || *version < 1)
            throw WrongWord("this is no recording; one begins with '" + std::string(kFirstWords) +
                            readable + "'");
        if (*version > kRecordingVersion)
            throw WrongWord("a recording of version " + std::to_string(*version) +
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
            throw WrongWord("something follows after 'end'; allowed is nothing more");
        if (begun_)
            ReadEvent(*words);
        else
            ReadHeader(*words);
    }

    void ReadHeader(const std::vector<std::string>& words) {
        const std::size_t index = ReadHeaderLine(WordReader(words), recording_.header);
        const std::string_view word = HeaderWords()[index];
        begun_ = word == "begin";
        if (!seen_.insert(word).second && word != "missing-bitmap")
            throw WrongWord("'" + std::string(word) + "' stands here a second time");
        for (const std::string_view needed : HeaderWords())
            if (begun_ && needed != "missing-bitmap" && !seen_.contains(needed))
                throw WrongWord("the header lacks the line '" + std::string(needed) + "'");
        last_ = recording_.header.start;
    }

    void ReadEvent(const std::vector<std::string>& words) {
        if (recording_.moments.size() == kMostMoments)
            throw WrongWord("there are more than " + std::to_string(kMostMoments) + " events");
        WordReader reader(words);
        const std::chrono::microseconds time = ReadTime(reader);
        if (time < last_)
            throw WrongWord("the time " + words.front() +
                            " is earlier than that of the line before");
        last_ = time;
        Moment moment = ReadMoment(WordReader(reader.Rest()));
        recording_.complete = std::holds_alternative<RecordingEnded>(moment);
        recording_.moments.push_back({time, line_, std::move(moment)});
    }

    Recording& recording_;
    std::string text_;
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

}  // namespace unit
