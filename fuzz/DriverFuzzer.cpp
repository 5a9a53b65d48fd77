// A kernel driver whose attribute texts come from the input, and a whole collection through it.

#include "fuzz/support/Answers.h"
#include "fuzz/support/Fuzzer.h"
#include "fuzz/support/RepliesOfBothKinds.h"
#include "linux/drivers/HostHardware.h"
#include "service/Replies.h"
#include "smc/SMC.h"
#include "thermal/Collection.h"

#include <fcntl.h>

#include <cerrno>
#include <map>

using namespace orv;

namespace {

class AnsweringAttributes final : public SMCAttributes {
public:
    explicit AnsweringAttributes(Answers& given)
        : answers(given)
    {
    }

    FileDescriptor open(const std::string& path, Access) override
    {
        const bool isThere = !answers.isAtEnd() && answers.byte() % 8 != 0;
        FileDescriptor file(isThere ? ::open("/dev/null", O_RDWR | O_CLOEXEC) : -1);
        if (isThere)
            paths[file.get()] = path;
        else
            errno = ENOENT;
        return file;
    }

    bool exists(const std::string&) override { return !answers.isAtEnd() && answers.byte() % 2 == 0; }

    ssize_t read(int descriptor, std::span<char> bytes) override
    {
        const auto kind = answers.byte();
        if (kind == 255 || kind == 254)
            return errno = kind == 255 ? ENODEV : EIO, -1;
        // Two digits of a count, so that a walk ends.
        const bool isCount = paths[descriptor].ends_with("/key_count");
        auto text = kind == 0 ? std::to_string(written) + '\n' : answers.text(isCount ? 2 : bytes.size());
        text.resize(std::min(text.size(), bytes.size()));
        text.copy(bytes.data(), text.size());
        return static_cast<ssize_t>(text.size());
    }

    ssize_t write(int, std::string_view text) override
    {
        written = std::strtoul(std::string(text).c_str(), nullptr, 10);
        return static_cast<ssize_t>(text.size());
    }

    bool lock(int) override { return errno = EWOULDBLOCK, answers.byte() % 4 != 0; }
    void unlock(int) override { }
    void pause() override { }

private:
    Answers& answers;
    std::map<int, std::string> paths;
    std::size_t written = 0;
};

/// The host, except that its fans turn at speeds that are numbers.
class HostWithSoundFans final : public Hardware {
public:
    explicit HostWithSoundFans(SMCAttributes& attributes)
        : host("/nowhere", attributes)
    {
    }

    bool hasSMC() override { return host.hasSMC(); }
    SMCOutcome keyInfo(std::uint32_t key, KeyInfo& info) override { return host.keyInfo(key, info); }
    SMCOutcome readBytes(std::uint32_t key, Bytes& bytes) override
    {
        const auto outcome = host.readBytes(key, bytes);
        keepFanSpeedInRange(key, bytes);
        return outcome;
    }
    SMCOutcome keyAtIndex(std::uint32_t index, std::uint32_t& key) override { return host.keyAtIndex(index, key); }
    void closeSMC() override { host.closeSMC(); }
    std::optional<std::string> systemValue(const std::string& name) override { return host.systemValue(name); }

private:
    HostHardware host;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Answers answers(textOf(data, size));
    AnsweringAttributes attributes(answers);
    HostWithSoundFans hardware(attributes);
    setHardware(hardware);
    SMC smc;
    for (int refresh = 0; refresh < 2; ++refresh) {
        const auto readings = Orv_SMCHelper::collectIntel(smc);
        requireSameReply([&](ReplySink& sink) { writeThermalReply(readings, sink); });
    }
    return 0;
}
