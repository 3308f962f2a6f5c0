#include "unit/board/watched_driver.h"

#include "unit/board/driver_shelf.h"

namespace unit {
namespace {

using platform::device::Stream;
using platform::device::StreamDriver;

class WatchedStream final : public Stream {
  public:
    WatchedStream(DriverShelf& shelf, std::wstring name, std::shared_ptr<Stream> stream)
        : shelf_(shelf), name_(std::move(name)), stream_(std::move(stream)) {}

    DWORD Read(std::span<std::byte> buffer, DWORD& done) override {
        return stream_->Read(buffer, done);
    }
    DWORD Write(std::span<const std::byte> bytes, DWORD& done) override {
        return stream_->Write(bytes, done);
    }

    DWORD IoControl(DWORD code, std::span<const std::byte> input, std::span<std::byte> output,
                    DWORD& returned) override {
        DWORD error = shelf_.Refusal(name_, code);
        if (error == ERROR_SUCCESS)
            error = stream_->IoControl(code, input, output, returned);
        shelf_.Tell(
            {name_, DriverCalled::Call::kControl, code, {input.begin(), input.end()}, error});
        return error;
    }

    void HandleClosed() override {
        stream_->HandleClosed();
        shelf_.Tell({name_, DriverCalled::Call::kClose, 0, {}, ERROR_SUCCESS});
    }

  private:
    DriverShelf& shelf_;
    const std::wstring name_;
    const std::shared_ptr<Stream> stream_;
};

class WatchedDriver final : public StreamDriver {
  public:
    WatchedDriver(DriverShelf& shelf, std::wstring name, std::shared_ptr<StreamDriver> driver,
                  bool requests)
        : shelf_(shelf), name_(std::move(name)), driver_(std::move(driver)), requests_(requests) {}

    DWORD Open(DWORD access, DWORD share_mode, std::shared_ptr<Stream>& stream) override {
        const DWORD error = driver_->Open(access, share_mode, stream);
        if (error == ERROR_SUCCESS && requests_)
            stream = std::make_shared<WatchedStream>(shelf_, name_, std::move(stream));
        shelf_.Tell({name_, DriverCalled::Call::kOpen, 0, {}, error});
        return error;
    }

  private:
    DriverShelf& shelf_;
    const std::wstring name_;
    const std::shared_ptr<StreamDriver> driver_;
    const bool requests_;
};

}  // namespace

std::shared_ptr<StreamDriver> WatchDriver(DriverShelf& shelf, std::wstring name,
                                          std::shared_ptr<StreamDriver> driver, bool requests) {
    return std::make_shared<WatchedDriver>(shelf, std::move(name), std::move(driver), requests);
}

}  // namespace unit
