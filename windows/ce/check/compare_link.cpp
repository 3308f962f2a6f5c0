// Calls the functions of the serial link one by one, in the unit's own image and in the program
// built for this host, with the same arguments: results, built frames and debug output must be the
// same.
//
// Usage: compare-link FOLDER, with the folder of tools/build-unit.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "dvrlink/LinkState.h"
#include "dvrlink/UART.h"
#include "platform/board.h"
#include "platform/device/stream_driver.h"
#include "platform/kernel/kernel.h"
#include "platform/kernel/kernel_lock.h"
#include "platform/kernel/scheduler.h"
#include "platform/kernel/thread.h"
#include "windows/ce/emulator/program.h"

namespace {

namespace kernel = platform::kernel;
using ByteText = std::vector<BYTE>;

// What a run did, a line for each result and each debug output.
using Transcript = std::vector<std::string>;

std::string Hex(const BYTE* bytes, DWORD count) {
    std::string text;
    for (DWORD index = 0; index < count; ++index) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02X ", bytes[index]);
        text += digits;
    }
    return text;
}

// A board with nothing on it but the debug output.
class EmptyBoard final : public platform::Board {
  public:
    explicit EmptyBoard(Transcript& transcript) : transcript_(transcript) {}

    std::shared_ptr<platform::device::StreamDriver> FindDriver(std::wstring_view) override {
        return nullptr;
    }
    bool ReadPowerSupply(platform::PowerSupply&) override { return false; }
    DWORD HalRequest(DWORD, std::span<const std::byte>, std::span<std::byte>, DWORD&) override {
        return ERROR_NOT_SUPPORTED;
    }
    DWORD ChangeSystemPower(DWORD, DWORD) override { return ERROR_NOT_SUPPORTED; }
    // The link writes ASCII.
    void DebugOutput(std::wstring_view text) override {
        transcript_.emplace_back(text.begin(), text.end());
    }
    void ScreenChanged() override {}

  private:
    Transcript& transcript_;
};

// The link of the program built for this host.
class HostLink {
  public:
    static void Init() { Memory_Init(); }
    static void End() { UART_DeInit(); }
    static void Build(WORD command, const ByteText* payload, WORD length) {
        UART_BuildFrame(command, payload ? payload->data() : nullptr, length);
    }
    static void Send(WORD command, const ByteText* payload, WORD length) {
        UART_SendCommand(command, payload ? payload->data() : nullptr, length);
    }
    static std::string Built() { return Hex(g_bySendBuffer, g_dwSendLength); }
    static BOOL CheckSum(const DvrFrame* frame, DWORD capacity, DWORD* sum) {
        return UART_CheckSum(frame, capacity, sum);
    }
    static void Parse(const ByteText* bytes, DWORD count) {
        UART_ParseData(bytes ? bytes->data() : nullptr, count);
    }
};

// The link of the unit's image.
class UnitLink {
  public:
    explicit UnitLink(ce::Program& program)
        : program_(program), processor_(program.MakeProcessor()) {}

    void Init() { Call("Memory_Init()", {}); }
    void End() { Call("UART_DeInit()", {}); }
    void Build(WORD command, const ByteText* payload, WORD length) {
        const Copy copy(*processor_, payload ? payload->data() : nullptr, SizeOf(payload));
        Call("UART_BuildFrame(unsigned short, unsigned char const*, unsigned short)",
             {command, copy.address(), length});
    }
    void Send(WORD command, const ByteText* payload, WORD length) {
        const Copy copy(*processor_, payload ? payload->data() : nullptr, SizeOf(payload));
        Call("UART_SendCommand(unsigned short, unsigned char const*, unsigned short)",
             {command, copy.address(), length});
    }
    std::string Built() const {
        return Hex(ce::At<const BYTE>(program_.Symbol("g_bySendBuffer")),
                   *ce::At<const DWORD>(program_.Symbol("g_dwSendLength")));
    }
    BOOL CheckSum(const DvrFrame* frame, DWORD capacity, DWORD* sum) {
        const Copy record(*processor_, frame, sizeof *frame);
        const Copy result(*processor_, sum, sizeof *sum);
        const std::uint32_t done =
            Call("UART_CheckSum(DvrFrame const*, unsigned long, unsigned long*)",
                 {record.address(), capacity, result.address()});
        if (sum != nullptr)
            *sum = *ce::At<const DWORD>(result.address());
        return static_cast<BOOL>(done);
    }
    void Parse(const ByteText* bytes, DWORD count) {
        const Copy copy(*processor_, bytes ? bytes->data() : nullptr, SizeOf(bytes));
        Call("UART_ParseData(unsigned char const*, unsigned long)", {copy.address(), count});
    }

  private:
    // Bytes in the program's memory; address 0 for a null pointer.
    class Copy {
      public:
        Copy(ce::Processor& processor, const void* bytes, std::size_t count)
            : memory_(processor.memory()) {
            if (bytes == nullptr)
                return;
            address_ = memory_.Allocate(static_cast<std::uint32_t>(count));
            std::memcpy(ce::At(address_), bytes, count);
        }
        Copy(const Copy&) = delete;
        Copy& operator=(const Copy&) = delete;
        ~Copy() { memory_.Free(address_); }

        ce::Address address() const { return address_; }

      private:
        ce::Memory& memory_;
        ce::Address address_ = 0;
    };

    static std::size_t SizeOf(const ByteText* bytes) { return bytes ? bytes->size() : 0; }

    std::uint32_t Call(const char* function, std::initializer_list<std::uint32_t> arguments) {
        constexpr ce::Address kThumb = 1;
        return processor_->Call(program_.Symbol(function) | kThumb, arguments);
    }

    ce::Program& program_;
    std::unique_ptr<ce::Processor> processor_;
};

// Runs the cases, with the same random bytes for each link.
template <typename Link>
void RunCases(Link link, Transcript& transcript) {
    std::mt19937 numbers(1);
    const auto random = [&numbers](std::size_t count) {
        ByteText bytes(count);
        std::ranges::generate(bytes, [&] { return static_cast<BYTE>(numbers()); });
        return bytes;
    };
    // Refused without locks.
    link.Build(0x8010, nullptr, 0);
    link.Send(0x8010, nullptr, 0);
    link.Init();
    for (WORD length = 0; length <= kMaxPayloadBytes + 1; ++length) {
        const ByteText payload = random(length);
        const auto command = static_cast<WORD>(numbers());
        link.Build(command, &payload, length);
        transcript.push_back(link.Built());
        // Without a port the write fails.
        link.Send(command, nullptr, length);
        transcript.push_back(link.Built());

        DvrFrame frame{};
        const ByteText record = random(sizeof frame);
        std::memcpy(&frame, record.data(), sizeof frame);
        frame.length = length;
        for (const DWORD capacity : {DWORD{sizeof frame} - 1, DWORD{sizeof frame}}) {
            DWORD sum = 0x5A5A5A5A;
            const BOOL done = link.CheckSum(&frame, capacity, &sum);
            transcript.push_back(std::to_string(done) + " " + std::to_string(sum));
            transcript.push_back(std::to_string(link.CheckSum(&frame, capacity, nullptr)));
        }
    }
    transcript.push_back(std::to_string(link.CheckSum(nullptr, sizeof(DvrFrame), nullptr)));
    link.Parse(nullptr, 1);
    const ByteText none;
    link.Parse(&none, 0);
    // Every length of a chunk, with frames and parts of frames in it.
    for (DWORD length = 1; length <= 2 * kMaxFrameBytes; ++length) {
        ByteText chunk;
        while (chunk.size() < length) {
            // A DVR_Mode indication.
            constexpr BYTE kFrame[] = {0xA5, 0x5A, 0x80, 0x00, 0x11, 0x00, 0x01, 0x02, 0x01, 0x93};
            chunk.insert(chunk.end(), std::begin(kFrame), std::end(kFrame));
            const ByteText noise = random(numbers() % 4);
            chunk.insert(chunk.end(), noise.begin(), noise.end());
        }
        link.Parse(&chunk, length);
    }
    link.End();
}

// The transcript of a run on a platform of its own.
template <typename MakeLink>
Transcript Run(MakeLink make_link) {
    Transcript transcript;
    EmptyBoard board(transcript);
    kernel::Options options;
    options.mode = kernel::Mode::kSimulated;
    kernel::Boot(options, board);
    const auto thread = kernel::StartThread(
        [&] {
            RunCases(make_link(), transcript);
            return DWORD{0};
        },
        THREAD_PRIORITY_NORMAL, kernel::kProgramProcess);
    kernel::RunHostThread([&] {
        const kernel::KernelLock lock = kernel::LockKernel();
        return thread->ended;
    });
    kernel::Shutdown();
    return transcript;
}

}  // namespace

int main(int count, char** arguments) {
    std::string problem = "the argument must be the folder of tools/build-unit";
    const std::unique_ptr<ce::Program> program =
        count == 2 ? ce::Program::Open(arguments[1], problem) : nullptr;
    if (program == nullptr) {
        std::fprintf(stderr, "compare-link: %s\n", problem.c_str());
        return EXIT_FAILURE;
    }
    const Transcript host = Run([] { return HostLink(); });
    const Transcript unit = Run([&] {
        program->Load();
        return UnitLink(*program);
    });
    const auto [host_line, unit_line] = std::ranges::mismatch(host, unit);
    if (host_line == host.end() && unit_line == unit.end()) {
        std::printf("check-unit: functions of the link: %zu results are the same\n", host.size());
        return EXIT_SUCCESS;
    }
    std::fprintf(stderr,
                 "check-unit: functions of the link: line %td differs: '%s' on the host, '%s' in "
                 "the image\n",
                 host_line - host.begin(), host_line == host.end() ? "" : host_line->c_str(),
                 unit_line == unit.end() ? "" : unit_line->c_str());
    return EXIT_FAILURE;
}
