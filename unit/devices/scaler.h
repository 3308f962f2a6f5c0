#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>

#include "platform/device/stream_driver.h"

namespace unit {

// The record of the window request.
struct ScalerWindow {
    std::uint32_t word;
    std::uint16_t source_x, source_y, source_width, source_height;
    std::uint16_t frame_width, frame_height;
    std::uint16_t x, y, width, height;
    std::uint8_t flags[2];
    std::uint8_t padding[2];
};
static_assert(sizeof(ScalerWindow) == 28);

// The alpha at which the graphics plane is opaque.
inline constexpr std::uint32_t kOpaqueAlpha = 63;

// What the scaler shows: the graphics plane, and the video where the graphics has the key colour.
struct ScalerState {
    int open_handles = 0;
    bool scaler_path = false;
    std::uint32_t alpha = kOpaqueAlpha;
    bool key_enabled = false;
    COLORREF key_color = 0;
    // 0 shows the composite video under the key, 1 the graphics alone.
    std::uint32_t selector = 1;
    ScalerWindow window{};

    bool VideoShows() const { return scaler_path && key_enabled && selector == 0; }
};

// The display scaler behind "SCA0:". Its state outlives the handles. Any thread.
class Scaler final : public platform::device::StreamDriver,
                     public std::enable_shared_from_this<Scaler> {
  public:
    // Calls `changed` after each successful request.
    explicit Scaler(std::function<void()> changed) : changed_(std::move(changed)) {}

    DWORD Open(DWORD access, DWORD share_mode,
               std::shared_ptr<platform::device::Stream>& stream) override;

    ScalerState state() const;

    // Executes one request; ERROR_NOT_SUPPORTED for an unknown code, ERROR_INVALID_PARAMETER for a
    // record of another size. A refused request changes nothing.
    DWORD Request(DWORD code, std::span<const std::byte> input, std::span<std::byte> output,
                  DWORD& returned);
    void CountHandle(int change);

  private:
    DWORD Apply(DWORD code, std::span<const std::byte> input);

    const std::function<void()> changed_;
    mutable std::mutex mutex_;
    ScalerState state_;
};

}  // namespace unit
