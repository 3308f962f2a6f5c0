#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "unit/scenario/scenario.h"

namespace unit {

// Reads the lines of a scenario. The rows of the language call Add, Set, Include ... for each line;
// nothing runs yet.
class ScenarioReader {
  public:
    explicit ScenarioReader(std::string name) { scenario_.name = std::move(name); }

    void ReadFile(const std::string& file);
    void ReadText(std::string_view text, const std::string& file);
    // Reports repeats that are still open at the end.
    void Finish();

    Scenario& scenario() { return scenario_; }
    const std::vector<std::string>& problems() const { return problems_; }

    // For the rows of the language.
    control::Outcome Add(decltype(Step::action) action);
    // Settings come before everything else.
    control::Outcome Set(const std::function<void(StartSettings&)>& set);
    control::Outcome Include(const std::string& file);
    control::Outcome BeginRepeat(std::size_t count);
    control::Outcome EndRepeat();

  private:
    struct Place {
        std::string file;
        int line = 0;
    };
    struct Repeat {
        std::size_t begin;
        std::size_t count;
        std::string place;
    };

    void ReadLine(std::string_view line);
    void Complain(const std::string& problem);
    std::string Here() const;

    Scenario scenario_;
    std::vector<std::string> problems_;
    // The files that are being read; each includes the next.
    std::vector<Place> places_;
    std::vector<Repeat> repeats_;
    std::size_t bytes_ = 0;  // read so far
    std::string text_;       // of the line that is being read
};

}  // namespace unit
