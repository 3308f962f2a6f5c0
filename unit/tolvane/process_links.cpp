#include "unit/tolvane/process_links.h"

#include <utility>

#include "unit/state/unit_state.h"

namespace unit {

ProcessLinks::ProcessLinks(Operator& op, const std::string& name, RunOptions sent)
    : scenarios_(op, std::move(sent)),
      control_(op, name,
               {.state = [&unit = op.unit()] { return StateJson(unit); },
                .run = [this](const SentScenario& scenario) { scenarios_.Run(scenario); },
                .raise =
                    [this] {
                        if (raise_)
                            raise_();
                    }},
               [&unit = op.unit()](const std::string& line) { unit.Say(line); }),
      first_(std::make_shared<FirstUnit>(
          name, [this] { return !control_.taken(); },
          [&unit = op.unit()] { unit.Say("the unit that runs already has come forward"); })) {
    op.unit().SetNeighbours(first_);
}

}  // namespace unit
