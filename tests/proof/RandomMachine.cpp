#include "tests/proof/RandomMachine.h"

#include "smc/FourCharCode.h"
#include "smc/SMCValueEncoding.h"
#include "thermal/Orv_SMCProfileKeys.h"
#include "json/JSONWriter.h"

#include <array>
#include <cstring>
#include <initializer_list>
#include <random>
#include <set>
#include <string>
#include <utility>

namespace orv {

namespace {

using namespace Orv_SMCProfileKeys;

struct Kind {
    const char* model;
    const char* processor;
    std::array<const SensorTable*, 2> tables;
};

const std::array<Kind, 7> kinds{{
    {"iMac18,3", "Intel(R) Core(TM) i5-7500 CPU @ 3.40GHz", {&intelSensorKeys, &intelSensorKeys}},
    {"MacBookPro17,1", "Apple M1", {&commonSensorKeys, &hidSensorNames}},
    {"MacBookPro18,3", "Apple M1 Pro", {&commonSensorKeys, &socSensorKeys}},
    {"Mac14,2", "Apple M2", {&commonSensorKeys, &socSensorKeys}},
    {"Mac15,6", "Apple M3 Pro", {&commonSensorKeys, &socSensorKeys}},
    {"Mac16,8", "Apple M4 Pro", {&commonSensorKeys, &socSensorKeys}},
    {"Mac99,1", "Apple M4 beside an M2", {&commonSensorKeys, &socSensorKeys}},
}};

class Maker {
public:
    explicit Maker(std::uint64_t seed)
        : random(seed)
        , kind(kinds[below(kinds.size())])
    {
    }

    MachineFile make()
    {
        MachineFile machine;
        machine.systemValues["hw.model"] = std::string(kind.model) + '\0';
        machine.systemValues["machdep.cpu.brand_string"] = std::string(kind.processor) + '\0';
        for (const auto* level : {"hw.perflevel0.logicalcpu", "hw.perflevel1.logicalcpu"}) {
            if (happens(80))
                machine.systemValues[level] = nativeBytes(static_cast<std::uint32_t>(below(9)));
        }
        if (happens(97))
            addKeys(machine.smc.emplace());
        for (auto count = below(12); count > 0; --count)
            machine.hid.push_back(service());
        machine.profilerOutput = report();
        addWatch(machine);
        return machine;
    }

private:
    std::size_t below(std::size_t limit) { return static_cast<std::size_t>(random() % limit); }
    bool happens(std::size_t percent) { return below(100) < percent; }
    template <typename T> T one(std::initializer_list<T> of) { return *(of.begin() + below(of.size())); }

    static std::string nativeBytes(std::uint32_t number)
    {
        std::string bytes(sizeof(number), '\0');
        std::memcpy(bytes.data(), &number, sizeof(number));
        return bytes;
    }

    std::string keyOfTable(const SensorTable& table)
    {
        return std::string(keyOf(table.rows[below(table.rows.size())]));
    }

    std::string key()
    {
        const auto choice = below(100);
        if (choice < 65)
            return keyOfTable(*kind.tables[below(2)]);
        if (choice < 75)
            return keyOfTable(*one({&intelSensorKeys, &commonSensorKeys, &socSensorKeys, &hidSensorNames}));
        if (choice < 92)
            return std::string{'F', "0123456789ABCDEFG"[below(17)]} + one({"Ac", "Mn", "Mx", "Tg"});
        std::string other = one({"T", "F", "B"});
        while (other.size() < 4)
            other += static_cast<char>(0x20 + below(0x5F));
        return other;
    }

    SMCRow row(const std::string& name)
    {
        constexpr std::array<const char*, 8> others{"ioft", "si32", "sp2d", "hex_", "Flag", "ui8", "SP78", "si16"};
        SMCRow result;
        result.key = fourCharCode(name);
        const auto choice = below(100);
        const auto& format = smcValueFormats[below(smcValueFormats.size())];
        const std::string type(choice < 40 ? "sp78"
                : choice < 60              ? "flt "
                : choice < 90              ? format.code
                                           : others[below(8)]);
        result.type = fourCharCode(type.size() == 4 ? type : type + '\0');
        result.readings.clear();
        for (auto count = happens(15) ? 1 + below(3) : 1; count > 0; --count)
            result.readings.push_back({bytes(type)});
        if (happens(6))
            result.size = one<std::uint32_t>({0, 0, 1, 2, 3, 4, 8, 32, 40, 4294967295});
        result.fails = happens(4);
        return result;
    }

    std::string bytes(const std::string& type)
    {
        const auto* format = smcValueFormat(type);
        const auto number = one({0.0, 9.9, 10.0, 10.1, 35.0, 35.0, 47.5, 60.0, 127.0, -5.0});
        if (auto encoded = format && happens(90) ? encodeValue(*format, number) : std::nullopt)
            return *encoded;
        std::string any(type == "flt " ? 0 : 1 + below(8), '\0'); // no fan may turn faster than a number holds
        for (auto& byte : any)
            byte = static_cast<char>(random());
        return any;
    }

    void addKeys(std::vector<SMCRow>& rows)
    {
        std::set<std::string> known;
        for (auto count = 4 + below(36); count > 0; --count) {
            const auto name = key();
            if (name.size() == 4 && known.insert(name).second)
                rows.push_back(row(name));
        }
        if (!happens(12))
            return;
        SMCRow count;
        count.key = fourCharCode("#KEY");
        count.type = fourCharCode(one({"ui32", "ui32", "ui16", "hex_"}));
        const auto number = static_cast<double>(below(rows.size() * 2));
        count.readings = {{*encodeValue(*smcValueFormat(one({"ui32", "ui16"})), number)}};
        count.fails = happens(10);
        if (count.type == fourCharCode("ui32"))
            count.readings = {{*encodeValue(*smcValueFormat("ui32"), number)}};
        rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(below(rows.size() + 1)), count);
    }

    HIDRow service()
    {
        HIDRow result;
        const auto code = happens(85) ? keyOfTable(hidSensorNames).substr(0, 2 + below(3)) : std::string("TP0Z");
        const auto location = std::int64_t{fourCharCode(code.size() == 4 ? code : keyOfTable(hidSensorNames))};
        const auto choice = below(100);
        if (choice < 70)
            result.locationID = location;
        else if (choice < 85)
            result.locationID = std::int64_t{fourCharCode(one({"Tp0i", "Tp1i", "TP0Z"}))}; // so that some are equal
        else if (choice < 88)
            result.locationID = static_cast<double>(location);
        else if (choice < 91)
            result.locationID = static_cast<double>(location) + 0.5;
        else if (choice < 94)
            result.locationID = std::string("Tp0i");
        else if (choice < 97)
            result.locationID = one<std::int64_t>({0, -5, INT64_MIN});
        if (happens(85))
            result.temperature = one({41.5, 30.0, 5.0, 5.01, 0.0, -9202.9, 4.9});
        return result;
    }

    std::string address()
    {
        return one({"AA:BB:CC:DD:EE:01", "aa-bb-cc-dd-ee-01", "AA:BB:CC:DD:EE:02", "10:20:30:40:50:60"});
    }

    Value element()
    {
        if (happens(3))
            return std::string("no object");
        Dictionary device;
        if (happens(97))
            device.set("Device", happens(96) ? Value(properties()) : Value(Array()));
        return device;
    }

    Dictionary properties()
    {
        Dictionary result;
        if (happens(90))
            result.set("device_address", happens(97) ? Value(address()) : Value(std::int64_t{7}));
        if (happens(80))
            result.set(one({"device_batteryLevelMain", "device_batteryLevel", "device_batteryLevelCase"}),
                std::string(one({"85%", "100 %", "none", "-1"})));
        if (happens(8))
            result.set("device_rssi", std::int64_t{-40});
        if (happens(8))
            result.set("device_services", Array());
        return result;
    }

    Array elements()
    {
        Array result;
        for (auto count = below(5); count > 0; --count)
            result.push_back(element());
        return result;
    }

    std::string report()
    {
        if (happens(5))
            return one({"", "{", "[]", "{}", R"({"SPBluetoothDataType": []})", R"({"SPBluetoothDataType": [7]})"});
        Dictionary part;
        if (happens(85))
            part.set("device_connected", elements());
        if (happens(60))
            part.set("device_not_connected", elements());
        Array parts{part};
        if (happens(10)) {
            Dictionary second;
            second.set("device_connected", elements());
            parts.push_back(second);
        }
        Dictionary whole;
        whole.set("SPBluetoothDataType", parts);
        return writeJSON(whole, KeyOrder::asListed);
    }

    void addWatch(MachineFile& machine)
    {
        const auto choice = below(100);
        if (choice < 60)
            return;
        machine.watchFile = choice < 65 ? "{\n bad"
            : choice < 70               ? "[]"
                                        : R"({"w": {"batteryLevel": 5},
            "aa-bb-cc-dd-ee-01": {"batteryLevel": 7, "left": null, "all": [1, null, {"x": null}]}})";
        if (choice >= 95)
            machine.watchFile = R"({"w": {"batteryLevel": 5}, "number": 7, "list": []})";
    }

    std::mt19937_64 random;
    const Kind& kind;
};

} // namespace

MachineFile randomMachine(std::uint64_t seed)
{
    return Maker(seed).make();
}

} // namespace orv
