#pragma once

#include <optional>
#include <string_view>

#include "platform/board.h"

namespace unit {

// What the other processes of the unit answer; see platform::Board for what each question promises.
// Any thread.
class Neighbours {
  public:
    virtual ~Neighbours() = default;

    virtual platform::NamedKind FindObject(std::wstring_view name) = 0;
    virtual platform::NeighbourWindow FindWindow(std::optional<std::wstring_view> class_name,
                                                 std::optional<std::wstring_view> title) = 0;
    virtual bool WindowExists(platform::NeighbourWindow window) = 0;
    virtual bool BringForward(platform::NeighbourWindow window, bool with_owned) = 0;
};

}  // namespace unit
