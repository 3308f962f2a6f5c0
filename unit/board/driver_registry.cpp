#include "unit/board/driver_registry.h"

namespace unit {

using platform::device::Stream;
using platform::device::StreamDriver;

namespace {

class WatchedStream final : public Stream {
  public:
    WatchedStream(EventHub& events, Faults& faults, std::wstring name,
                  std::shared_ptr<Stream> stream)
        : events_(events), faults_(faults), name_(std::move(name)), stream_(std::move(stream)) {}

    DWORD Read(std::span<std::byte> buffer, DWORD& done) override {
        return stream_->Read(buffer, done);
    }
    DWORD Write(std::span<const std::byte> bytes, DWORD& done) override {
        return stream_->Write(bytes, done);
    }

    DWORD IoControl(DWORD code, std::span<const std::byte> input, std::span<std::byte> output,
                    DWORD& returned) override {
        DWORD error = faults_.TakeRefusal(name_, code);
        if (error == ERROR_SUCCESS)
            error = stream_->IoControl(code, input, output, returned);
        events_.Publish(DriverCalled{
            name_, DriverCalled::Call::kControl, code, {input.begin(), input.end()}, error});
        return error;
    }

    void HandleClosed() override {
        stream_->HandleClosed();
        events_.Publish(DriverCalled{name_, DriverCalled::Call::kClose, 0, {}, ERROR_SUCCESS});
    }

  private:
    EventHub& events_;
    Faults& faults_;
    const std::wstring name_;
    const std::shared_ptr<Stream> stream_;
};

class WatchedDriver final : public StreamDriver {
  public:
    // Without `faults` the requests are neither published nor refused.
    WatchedDriver(EventHub& events, Faults* faults, std::wstring name,
                  std::shared_ptr<StreamDriver> driver)
        : events_(events), faults_(faults), name_(std::move(name)), driver_(std::move(driver)) {}

    DWORD Open(DWORD access, DWORD share_mode, std::shared_ptr<Stream>& stream) override {
        const DWORD error = driver_->Open(access, share_mode, stream);
        if (error == ERROR_SUCCESS && faults_)
            stream = std::make_shared<WatchedStream>(events_, *faults_, name_, std::move(stream));
        events_.Publish(DriverCalled{name_, DriverCalled::Call::kOpen, 0, {}, error});
        return error;
    }

  private:
    EventHub& events_;
    Faults* const faults_;
    const std::wstring name_;
    const std::shared_ptr<StreamDriver> driver_;
};

}  // namespace

void DriverRegistry::Load(const std::wstring& name, std::shared_ptr<StreamDriver> driver) {
    const std::scoped_lock lock(mutex_);
    drivers_[name] = std::make_shared<WatchedDriver>(events_, &faults_, name, std::move(driver));
}

void DriverRegistry::LoadSerial(const std::wstring& name, std::shared_ptr<StreamDriver> driver) {
    const std::scoped_lock lock(mutex_);
    drivers_[name] = std::make_shared<WatchedDriver>(events_, nullptr, name, std::move(driver));
}

std::shared_ptr<StreamDriver> DriverRegistry::Find(std::wstring_view name) {
    if (!faults_.IsHidden(name)) {
        const std::scoped_lock lock(mutex_);
        if (const auto driver = drivers_.find(name); driver != drivers_.end())
            return driver->second;
    }
    events_.Publish(
        DriverCalled{std::wstring(name), DriverCalled::Call::kOpen, 0, {}, ERROR_DEV_NOT_EXIST});
    return nullptr;
}

std::vector<std::wstring> DriverRegistry::Names() const {
    const std::scoped_lock lock(mutex_);
    std::vector<std::wstring> names;
    names.reserve(drivers_.size());
    for (const auto& [name, driver] : drivers_)
        names.push_back(name);
    return names;
}

}  // namespace unit
