// Whole collections of a machine whose every answer comes from the input. The first byte chooses the way of collecting.

#include "fuzz/support/Answers.h"
#include "fuzz/support/Fuzzer.h"
#include "fuzz/support/RepliesOfBothKinds.h"
#include "hardware/Hardware.h"
#include "platform/HIDEventSystem.h"
#include "service/Replies.h"
#include "smc/FourCharCode.h"
#include "smc/SMC.h"
#include "smc/SMCValueDecoding.h"
#include "thermal/Collection.h"
#include "thermal/Orv_SMCProfileKeys.h"

#include <algorithm>
#include <array>

using namespace orv;

namespace {

constexpr std::uint32_t keyCountKey = fourCharCode("#KEY");

class AnsweringHardware final : public Hardware, public HIDEventSystem {
public:
    explicit AnsweringHardware(std::string_view input)
        : answers(input)
    {
        setHardware(*this);
        const auto [model, processor] = machines[answers.byte() % machines.size()];
        values = {{"hw.model", model}, {"machdep.cpu.brand_string", processor},
            {"hw.perflevel0.logicalcpu", std::string(answers.byte() % 5, '\1')},
            {"hw.perflevel1.logicalcpu", std::string(1, static_cast<char>(answers.byte()))}};
        count = answers.byte();
    }

    bool hasSMC() override { return count != 255; }

    SMCOutcome keyInfo(std::uint32_t key, KeyInfo& info) override
    {
        if (key == keyCountKey) {
            info = {.dataSize = 4, .dataType = fourCharCode("ui32")};
            return {};
        }
        const auto kind = answers.byte();
        if (kind == 0)
            return SMCOutcome::unknownKey();
        if (kind == 255)
            return SMCOutcome::failed();
        const bool isKnown = kind - 1u < smcValueFormats.size();
        const auto& format = smcValueFormats[isKnown ? kind - 1u : 0];
        info.dataType = isKnown ? fourCharCode(format.code) : answers.number<std::uint32_t>();
        info.dataSize = isKnown && format.requiredSize != 0 ? format.requiredSize : answers.number<std::uint32_t>();
        return {};
    }

    SMCOutcome readBytes(std::uint32_t key, Bytes& bytes) override
    {
        if (key == keyCountKey) {
            bytes[3] = count;
            return {};
        }
        const auto given = answers.byte();
        if (given == 255)
            return SMCOutcome::failed();
        std::generate_n(bytes.begin(), given % (bytes.size() + 1), [&] { return answers.byte(); });
        keepFanSpeedInRange(key, bytes);
        return {};
    }

    SMCOutcome keyAtIndex(std::uint32_t, std::uint32_t& key) override
    {
        const auto place = answers.byte();
        const auto table = answers.byte() % 5;
        if (table == 4 && place == 255)
            return SMCOutcome::failed();
        key = table == 4 ? answers.number<std::uint32_t>() : keyOfTable(table, place);
        return {};
    }

    std::optional<std::string> systemValue(const std::string& name) override
    {
        const auto found = values.find(name);
        return found == values.end() ? std::nullopt : std::optional(found->second + '\0');
    }

    bool forEachService(std::int32_t, std::int32_t, const std::function<void(HIDService&)>& visit) override;

private:
    static constexpr std::array<std::pair<const char*, const char*>, 4> machines{{{"iMac18,3", "Intel(R) Core(TM)"},
        {"MacBookPro17,1", "Apple M1"}, {"Mac14,2", "Apple M2"}, {"Mac16,1", "Apple M4 Pro"}}};

    static std::uint32_t keyOfTable(int number, std::uint8_t place)
    {
        using namespace Orv_SMCProfileKeys;
        if (number == 3)
            return fourCharCode(std::string{'F', "0123456789ABCDEFG"[place % 17]} + "Ac");
        const auto rows = (number == 0 ? intelSensorKeys : number == 1 ? commonSensorKeys : socSensorKeys).rows;
        return fourCharCode(keyOf(rows[place % rows.size()]));
    }

    Answers answers;
    std::map<std::string, std::string> values;
    std::uint8_t count = 0;
};

/// A service whose property and event come from the input, too.
class AnsweringService final : public HIDService {
public:
    explicit AnsweringService(Answers& given)
        : answers(given)
    {
    }

    Value locationID() override
    {
        const auto kind = answers.byte();
        if (kind == 0)
            return answers.number<double>();
        if (kind == 1)
            return answers.number<std::int64_t>();
        const auto rows = Orv_SMCProfileKeys::hidSensorNames.rows;
        return std::int64_t{fourCharCode(keyOf(rows[kind % rows.size()]))};
    }

    std::optional<double> eventValue(std::int32_t, std::int32_t) override
    {
        return answers.byte() == 0 ? std::nullopt : std::optional(answers.number<double>());
    }

private:
    Answers& answers;
};

bool AnsweringHardware::forEachService(std::int32_t, std::int32_t, const std::function<void(HIDService&)>& visit)
{
    for (auto services = answers.byte() % 16; services > 0; --services) {
        AnsweringService service(answers);
        visit(service);
    }
    return true;
}

void requireSound(const ThermalDictionary& readings)
{
    for (const auto& [code, reading] : readings) {
        if (const auto* temperature = std::get_if<TemperatureEntry>(&reading))
            require(temperature->value > 0 && !temperature->title.empty(), "a temperature has a title and a value");
        else
            require(code.starts_with('F') && code.ends_with("Ac"), "a fan is known by its actual speed");
    }
    requireSameReply([&](ReplySink& sink) { writeThermalReply(readings, sink); });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    AnsweringHardware hardware(textOf(data, size));
    const OrvTemperatureFans profile;
    SMC smc;
    for (int refresh = 0; refresh < 2; ++refresh)
        requireSound(Orv_SMCHelper::collectThermalReadings(profile, smc, hardware));
    const auto usage = ioKitUsage();
    require(usage.liveObjects == 0 && usage.openConnections == 0, "a collection gives back what it took");
    return 0;
}
