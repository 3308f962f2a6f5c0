#include "unit/board/watched_driver.h"

#include "unit/board/driver_registry.h"

namespace unit {
namespace {

using platform::device::Stream;
using platform::device::StreamDriver;

class WatchedStream final : public Stream {
  public:
    WatchedStream(DriverRegistry& registry, std::wstring name, std::shared_ptr<Stream> stream)
        : registry_(registry), name_(std::move(name)), stream_(std::move(stream)) {}

    DWORD Read(std::span<std::byte> buffer, DWORD& done) override {
        return stream_->Read(buffer, done);
    }
    DWORD Write(std::span<const std::byte> bytes, DWORD& done) override {
        return stream_->Write(bytes, done);
    }

    DWORD IoControl(DWORD code, std::span<const std::byte> input, std::span<std::byte> output,
                    DWORD& returned) override {
        DWORD error = registry_.Refusal(name_, code);
        if (error == ERROR_SUCCESS)
            error = stream_->IoControl(code, input, output, returned);
        registry_.Tell(
            {name_, DriverCalled::Call::kControl, code, {input.begin(), input.end()}, error});
        return error;
    }

    void HandleClosed() override {
        stream_->HandleClosed();
        registry_.Tell({name_, DriverCalled::Call::kClose, 0, {}, ERROR_SUCCESS});
    }

  private:
    DriverRegistry& registry_;
    const std::wstring name_;
    const std::shared_ptr<Stream> stream_;
};

class WatchedDriver final : public StreamDriver {
  public:
    WatchedDriver(DriverRegistry& registry, std::wstring name, std::shared_ptr<StreamDriver> driver,
                  bool requests)
        : registry_(registry),
          name_(std::move(name)),
          driver_(std::move(driver)),
          requests_(requests) {}

    DWORD Open(DWORD access, DWORD share_mode, std::shared_ptr<Stream>& stream) override {
        const DWORD error = driver_->Open(access, share_mode, stream);
        if (error == ERROR_SUCCESS && requests_)
            stream = std::make_shared<WatchedStream>(registry_, name_, std::move(stream));
        registry_.Tell({name_, DriverCalled::Call::kOpen, 0, {}, error});
        return error;
    }

  private:
    DriverRegistry& registry_;
    const std::wstring name_;
    const std::shared_ptr<StreamDriver> driver_;
    const bool requests_;
};

}  // namespace

std::shared_ptr<StreamDriver> WatchDriver(DriverRegistry& registry, std::wstring name,
                                          std::shared_ptr<StreamDriver> driver, bool requests) {
    return std::make_shared<WatchedDriver>(registry, std::move(name), std::move(driver), requests);
}

}  // namespace unit
