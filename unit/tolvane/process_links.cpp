#include "unit/tolvane/process_links.h"

#include <utility>

#include "unit/state/unit_state.h"

namespace unit {

ProcessLinks::ProcessLinks(Operator& hands, const std::string& name, RunOptions sent)
    : scenarios_(hands, std::move(sent)),
      control_(hands, name,
               {.state = [&unit = hands.unit()] { return StateJson(unit); },
                .run = [this](const SentScenario& scenario) { scenarios_.Run(scenario); },
                .raise =
                    [this] {
                        if (raise_)
                            raise_();
                    }},
               [&unit = hands.unit()](const std::string& line) { unit.Say(line); }),
      first_(std::make_shared<FirstUnit>(
          name, [this] { return !control_.taken(); },
          [&unit = hands.unit()] { unit.Say("the unit that runs already has come forward"); })) {
    hands.unit().SetNeighbours(first_);
}

}  // namespace unit
