#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace platform::kernel {

// Values for the objects of one kind of handle. A value is never reused at once: it carries the
// generation of its slot, so a stale value, a value closed twice and a value of another kind's
// table are not found. Not locked: the owner guards the table.
template <class T>
class HandleTable {
  public:
    // `kind`, 1 to 15, keeps the values of different tables apart.
    explicit HandleTable(unsigned kind) : kind_(kind) {}

    // 0 when the table is full.
    std::uintptr_t Insert(std::shared_ptr<T> object) {
        if (free_.empty()) {
            if (slots_.size() == kIndexMask)
                return 0;
            free_.push_back(static_cast<std::uint32_t>(slots_.size()));
            slots_.emplace_back();
        }
        const std::uint32_t index = free_.back();
        free_.pop_back();
        slots_[index].object = std::move(object);
        ++size_;
        return Value(index);
    }

    std::shared_ptr<T> Find(std::uintptr_t value) const {
        const Slot* slot = Locate(value);
        return slot ? slot->object : nullptr;
    }

    // Takes the object out; its value is stale from now on.
    std::shared_ptr<T> Remove(std::uintptr_t value) {
        Slot* slot = const_cast<Slot*>(Locate(value));
        if (!slot)
            return nullptr;
        std::shared_ptr<T> object = std::move(slot->object);
        slot->object = nullptr;
        slot->generation = (slot->generation + 1) & kGenerationMask;
        free_.insert(free_.begin(), static_cast<std::uint32_t>(slot - slots_.data()));
        --size_;
        return object;
    }

    std::size_t size() const { return size_; }

    // Calls visit(value, object) for every object in the table.
    template <class Visit>
    void ForEach(Visit visit) const {
        for (std::uint32_t index = 0; index < slots_.size(); ++index)
            if (slots_[index].object)
                visit(Value(index), slots_[index].object);
    }

  private:
    struct Slot {
        std::shared_ptr<T> object;
        std::uint32_t generation = 0;
    };

    // Bits 0-1 are zero, as the values of real handles are; then kind, index, generation. A value
    // fits 31 bits: the API broadcasts and truncates handles as 32-bit numbers in places.
    static constexpr unsigned kKindShift = 2;
    static constexpr unsigned kIndexShift = 6;
    static constexpr unsigned kGenerationShift = 20;
    static constexpr std::uint32_t kIndexMask = (1U << (kGenerationShift - kIndexShift)) - 1;
    static constexpr std::uint32_t kGenerationMask = (1U << (31 - kGenerationShift)) - 1;

    std::uintptr_t Value(std::uint32_t index) const {
        return (std::uintptr_t{slots_[index].generation} << kGenerationShift) |
               (std::uintptr_t{index + 1} << kIndexShift) | (kind_ << kKindShift);
    }

    const Slot* Locate(std::uintptr_t value) const {
        if ((value & 3) != 0 || ((value >> kKindShift) & 15) != kind_)
            return nullptr;
        const std::uintptr_t index = ((value >> kIndexShift) & kIndexMask) - 1;
        if (index >= slots_.size() || !slots_[index].object ||
            Value(static_cast<std::uint32_t>(index)) != value)
            return nullptr;
        return &slots_[index];
    }

    unsigned kind_;
    std::vector<Slot> slots_;
    std::vector<std::uint32_t> free_;
    std::size_t size_ = 0;
};

// One kind a table, so that a handle of the wrong kind is never taken for another.
enum HandleKind : unsigned {
    kKernelObjects = 1,
    kWindows = 2,
    kDeviceContexts = 3,
    kGdiObjects = 4,
    kIcons = 5,
    kOtherProcessWindows = 6,
};

}  // namespace platform::kernel
