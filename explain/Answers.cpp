#include "explain/Answers.h"

#include "explain/QuestionWords.h"
#include "thermal/Orv_SMCProfileKeys.h"

#include <algorithm>
#include <array>
#include <functional>
#include <set>
#include <string_view>

namespace orv {

namespace {

using namespace Orv_SMCProfileKeys;

struct KnownTable {
    const SensorTable* table;
    std::string_view machines;
};

const std::array<KnownTable, 4> knownTables{{
    {&intelSensorKeys, "Intel Macs"},
    {&commonSensorKeys, "Macs with Apple silicon"},
    {&socSensorKeys, "Macs with Apple silicon later than the first M1 models"},
    {&hidSensorNames, "the five first M1 models, as HID services"},
}};

// What people call sensors whose titles say something else.
struct Synonym {
    std::string_view word;
    std::string_view title;
};

constexpr std::array<Synonym, 11> synonyms{{
    {"cpu", "core"},
    {"processor", "core"},
    {"processor", "cpu"},
    {"wifi", "wireless"},
    {"wifi", "airport"},
    {"wi-fi", "wireless"},
    {"wi-fi", "airport"},
    {"disk", "ssd"},
    {"disk", "hdd"},
    {"ssd", "nand"},
    {"ram", "memory"},
}};

std::string lowerCase(std::string_view text)
{
    std::string result(text);
    for (auto& character : result) {
        if (character >= 'A' && character <= 'Z')
            character = static_cast<char>(character - 'A' + 'a');
    }
    return result;
}

bool holds(std::string_view text, const std::string& lowerPart)
{
    return lowerCase(text).find(lowerPart) != std::string::npos;
}

// "GPU 3" asks for a sensor that is titled by counting, also where nobody counts it.
bool isNumberOf(const std::string& lowerWhat, std::string_view title)
{
    const auto family = lowerCase(title) + ' ';
    return !title.empty() && lowerWhat.starts_with(family)
        && lowerWhat.find_first_not_of("0123456789", family.size()) == std::string::npos;
}

bool isTemperature(const SensorRow& row)
{
    return row.source != SensorSource::smc || row.key.starts_with('T');
}

bool isOfHID(const SensorRow& row)
{
    return row.source == SensorSource::hid || row.table == &hidSensorNames;
}

class Search {
public:
    Search(const std::string& asked, const Explanation& explained, const Inspection& inspected)
        : lower(lowerCase(asked))
        , explanation(explained)
        , inspection(inspected)
        , answer{.what = asked}
    {
    }

    Answer run()
    {
        const bool isFound = !answer.what.empty()
            && (takeKey() || takeOtherMachinesKey() || takeUnlistedKey() || takeWord() || takeTitleOrName()
                || takeKeyInAnyCase() || takeOtherMachinesTitle());
        answer.isFound = isFound;
        if (!isFound)
            sayNothingIsThere();
        return std::move(answer);
    }

private:
    template <typename Row>
    static void take(
        const std::vector<Row>& rows, std::vector<std::size_t>& places, const std::function<bool(const Row&)>& isWanted)
    {
        for (std::size_t place = 0; place < rows.size(); ++place) {
            if (isWanted(rows[place]))
                places.push_back(place);
        }
    }

    bool hasAny() const { return !answer.sensors.empty() || !answer.devices.empty() || !answer.watch.empty(); }

    bool takeKey()
    {
        const auto& what = answer.what;
        take<SensorRow>(explanation.sensors, answer.sensors, [&](const SensorRow& row) { return row.key == what; });
        take<DeviceRow>(explanation.bluetooth, answer.devices, [&](const DeviceRow& row) {
            return !row.address.empty() && (row.key == lower || lowerCase(row.address) == lower);
        });
        take<WatchRow>(explanation.watch, answer.watch, [&](const WatchRow& row) { return row.key == what; });
        return hasAny();
    }

    bool takeOtherMachinesKey()
    {
        bool isKnown = false;
        for (const auto& [table, machines] : knownTables) {
            const auto* entry = table->find(answer.what);
            if (!entry)
                continue;
            isKnown = true;
            answer.lines.push_back(answer.what + ": \"" + std::string(entry->name) + "\" on " + std::string(machines)
                + "; this Mac is none of them, and does not list it");
        }
        return isKnown;
    }

    // The SMC answers for more keys than those that begin with "T" or "F".
    bool takeUnlistedKey()
    {
        auto reads = inspection.laterReads.find(answer.what);
        if (reads == inspection.laterReads.end())
            reads = inspection.reads.find(answer.what);
        if (reads == inspection.reads.end())
            return false;
        const auto& val = reads->second.front().val;
        if (val.dataSize == 0)
            return false;
        const bool isOfAnotherKind = !answer.what.starts_with('T') && !answer.what.starts_with('F');
        answer.lines.push_back(answer.what + ": the SMC has it (" + val.dataType + ", size "
            + std::to_string(val.dataSize) + "), "
            + (isOfAnotherKind ? "but only keys that begin with T (temperatures) or F (fans) are looked at"
                               : "but does not list it"));
        return true;
    }

    bool takeWord()
    {
        const auto is = [this](std::string_view word) { return lower == word || lower == std::string(word) + 's'; };
        if (is("fan"))
            take<SensorRow>(
                explanation.sensors, answer.sensors, [](const SensorRow& row) { return !isTemperature(row); });
        else if (is("temperature"))
            take<SensorRow>(explanation.sensors, answer.sensors, isTemperature);
        else if (lower == "hid")
            take<SensorRow>(explanation.sensors, answer.sensors, isOfHID);
        else if (lower == "bluetooth")
            take<DeviceRow>(explanation.bluetooth, answer.devices, [](const DeviceRow&) { return true; });
        else if (is("watch") || is("watche"))
            take<WatchRow>(explanation.watch, answer.watch, [](const WatchRow&) { return true; });
        else
            return false;
        if (!hasAny())
            answer.lines.push_back(answer.what + ": there are none on this Mac");
        return true;
    }

    bool takeTitleOrName()
    {
        const auto isTitled = [this](const SensorRow& row) {
            return holds(row.title, lower) || isNumberOf(lower, row.title) || isMeant(row.title);
        };
        take<SensorRow>(explanation.sensors, answer.sensors, isTitled);
        if (!answer.sensors.empty())
            summarise();
        take<DeviceRow>(explanation.bluetooth, answer.devices,
            [this](const DeviceRow& row) { return holds(row.name, lower) || holds(row.form, lower); });
        take<WatchRow>(explanation.watch, answer.watch, [this](const WatchRow& row) {
            const auto* members = row.content.as<Dictionary>();
            const auto* name = members ? members->findAs<std::string>("name") : nullptr;
            return holds(row.key, lower) || (name && holds(*name, lower));
        });
        return hasAny();
    }

    bool isMeant(std::string_view title) const
    {
        return std::ranges::any_of(synonyms,
            [&](const Synonym& synonym) { return lower == synonym.word && holds(title, std::string(synonym.title)); });
    }

    // "GPU: 32 catalogue keys, none listed; the list has Tg0X, Tg1b"
    void summarise()
    {
        std::size_t listed = 0;
        std::size_t shown = 0;
        for (const auto place : answer.sensors) {
            const auto& row = explanation.sensors[place];
            listed += row.source != SensorSource::catalogue;
            shown += row.verdict == Verdict::shown;
        }
        const auto count = answer.sensors.size();
        auto line =
            answer.what + ": " + std::to_string(count) + (count == 1 ? " catalogue key, " : " catalogue keys, ");
        if (listed == 0)
            line += "none listed" + similarKeys();
        else
            line += std::to_string(listed) + " listed, " + std::to_string(shown) + " shown"
                + (shown == 0 ? similarKeys() : "");
        answer.lines.push_back(std::move(line));
    }

    // Listed keys that no table names, but that begin as those of the title do.
    std::string similarKeys() const
    {
        constexpr std::size_t most = 12;
        std::set<std::string> beginnings;
        for (const auto place : answer.sensors)
            beginnings.insert(explanation.sensors[place].key.substr(0, 2));
        std::string text;
        std::size_t count = 0;
        for (const auto& row : explanation.sensors) {
            if (row.source != SensorSource::smc || row.verdict != Verdict::notInCatalogue
                || !beginnings.contains(row.key.substr(0, 2)))
                continue;
            if (++count <= most)
                text += (text.empty() ? "; the list has " : ", ") + row.key;
        }
        if (count > most)
            text += " and " + std::to_string(count - most) + " more";
        return text.empty() ? text : text + ", which no table names";
    }

    bool takeKeyInAnyCase()
    {
        take<SensorRow>(explanation.sensors, answer.sensors,
            [this](const SensorRow& row) { return !row.key.empty() && lowerCase(row.key) == lower; });
        return hasAny();
    }

    bool takeOtherMachinesTitle()
    {
        constexpr std::size_t most = 6;
        for (const auto& [table, machines] : knownTables) {
            std::string keys;
            std::size_t count = 0;
            for (const auto& row : table->rows) {
                if (holds(row.name, lower) && ++count <= most)
                    keys += (keys.empty() ? "" : ", ") + std::string(row.key) + " \"" + std::string(row.name) + '"';
            }
            if (count > 0)
                answer.lines.push_back(answer.what + ": no such title on this Mac; on " + std::string(machines) + ": "
                    + keys + (count > most ? " and " + std::to_string(count - most) + " more" : ""));
        }
        return !answer.lines.empty();
    }

    void sayNothingIsThere()
    {
        std::string devices;
        std::set<std::string> named;
        for (const auto& row : explanation.bluetooth) {
            if (named.insert(row.name).second)
                devices += (devices.empty() ? "" : ", ") + (row.name.empty() ? "?" : row.name);
        }
        answer.lines.push_back(answer.what
            + ": no listed key, no row of any catalogue, no title, device or entry is called so; the devices of the "
              "Bluetooth report are: "
            + (devices.empty() ? "none" : devices));
    }

    const std::string lower;
    const Explanation& explanation;
    const Inspection& inspection;
    Answer answer;
};

template <typename Place> void addPlaces(std::vector<Place>& places, const std::vector<Place>& more)
{
    std::set<Place> all(places.begin(), places.end());
    all.insert(more.begin(), more.end());
    places.assign(all.begin(), all.end());
}

void add(Answer& answer, const Answer& more)
{
    answer.isFound = answer.isFound || more.isFound;
    answer.lines.insert(answer.lines.end(), more.lines.begin(), more.lines.end());
    addPlaces(answer.sensors, more.sensors);
    addPlaces(answer.devices, more.devices);
    addPlaces(answer.watch, more.watch);
}

} // namespace

Answer answerFor(const std::string& what, const Explanation& explanation, const Inspection& inspection)
{
    auto answer = Search(what, explanation, inspection).run();
    if (answer.isFound)
        return answer;
    Answer ofWords{.what = what};
    for (const auto& word : questionWords(what))
        add(ofWords, Search(word, explanation, inspection).run());
    return ofWords.isFound ? ofWords : answer;
}

} // namespace orv
