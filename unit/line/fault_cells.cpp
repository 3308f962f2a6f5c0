#include "unit/line/fault_cells.h"

#include <algorithm>
#include <utility>

#include "unit/line/frame_cutter.h"

namespace unit {
namespace {

struct Range {
    std::size_t first;
    std::size_t end;

    bool Holds(const Cell& cell) const {
        return cell.place && *cell.place >= first && *cell.place < end;
    }
};

Range PartOf(const FaultRule& rule, std::size_t frame_size) {
    const std::size_t checksum = frame_size - kFrameChecksumBytes;
    const Range parts[] = {{0, frame_size},
                           {0, 2},
                           {2, 3},
                           {3, 5},
                           {5, kFrameHeaderBytes},
                           {kFrameHeaderBytes, checksum},
                           {checksum, frame_size}};
    const Range part = parts[static_cast<std::size_t>(rule.part)];
    if (!rule.index)
        return part;
    const std::size_t first = std::min(part.first + *rule.index, part.end);
    return {first, std::min(first + 1, part.end)};
}

// What comes in the place of the cells, of which there is at least one.
Cells Fault(const FaultRule& rule, Cells cells) {
    switch (rule.action) {
        case FaultRule::Action::kDrop:
            return {};
        case FaultRule::Action::kCorrupt:
            for (std::size_t at = 0; at < cells.size(); ++at) {
                const std::uint8_t byte = rule.bytes[at % rule.bytes.size()];
                cells[at].value =
                    rule.replaces ? byte : static_cast<std::uint8_t>(cells[at].value ^ byte);
            }
            return cells;
        case FaultRule::Action::kDuplicate: {
            Cells twice = cells;
            // It waits once only.
            cells.front().pause = {};
            twice.insert(twice.end(), cells.begin(), cells.end());
            return twice;
        }
        case FaultRule::Action::kDelay:
            cells.front().delay = std::max(cells.front().delay, rule.duration);
            return cells;
        case FaultRule::Action::kSplit: {
            const bool in_the_middle = rule.frames && rule.part == FramePart::kWhole && !rule.index;
            cells[in_the_middle ? cells.size() / 2 : 0].pause += rule.duration;
            return cells;
        }
        case FaultRule::Action::kInject: {
            const Cells injected = CellsOf(rule.bytes, false);
            cells.insert(rule.after ? cells.end() : cells.begin(), injected.begin(),
                         injected.end());
            return cells;
        }
    }
    return cells;
}

}  // namespace

bool FrameFilter::Matches(std::span<const std::uint8_t> frame) const {
    constexpr std::uint16_t kQueryBit = 0x8000;
    const std::uint16_t code = BigEndianAt(frame, 3);
    return (!command || *command == (code & ~kQueryBit)) &&
           (!type || static_cast<std::uint8_t>(*type) == frame[2]) &&
           (!query || *query == ((code & kQueryBit) != 0));
}

Cells CellsOf(std::span<const std::uint8_t> bytes, bool frame) {
    Cells cells;
    cells.reserve(bytes.size());
    for (const std::uint8_t byte : bytes)
        cells.push_back({byte, frame ? std::optional(cells.size()) : std::nullopt});
    return cells;
}

bool HasPart(const FaultRule& rule, const Cells& cells, std::size_t frame_size) {
    const Range part = PartOf(rule, frame_size);
    return std::ranges::any_of(cells, [&](const Cell& cell) { return part.Holds(cell); });
}

void FaultFrame(const FaultRule& rule, Cells& cells, std::size_t frame_size) {
    const Range part = PartOf(rule, frame_size);
    Cells result;
    Cells run;
    const auto finish_run = [&] {
        if (run.empty())
            return;
        const Cells faulted = Fault(rule, std::exchange(run, {}));
        result.insert(result.end(), faulted.begin(), faulted.end());
    };
    for (const Cell& cell : cells) {
        if (part.Holds(cell)) {
            run.push_back(cell);
            continue;
        }
        finish_run();
        result.push_back(cell);
    }
    finish_run();
    result.resize(std::min(result.size(), kMostCells), Cell{});
    cells = std::move(result);
}

Cells FaultByte(const FaultRule& rule, const Cell& cell) {
    return Fault(rule, {cell});
}

}  // namespace unit
