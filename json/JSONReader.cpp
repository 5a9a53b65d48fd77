#include "json/JSONReader.h"

#include "platform/JSON.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <limits>
#include <utility>
#include <vector>

namespace orv {

namespace {

using JSON = nlohmann::json;

constexpr std::size_t depthLimit = 512; // Foundation's

/// Builds a Value from the reader's events. Members of all open containers lie in one list, so that every finished
/// container is allocated once, at its size.
class ValueBuilder final : public nlohmann::json_sax<JSON> {
public:
    explicit ValueBuilder(bool refuseEqualKeys)
        : refusesEqualKeys(refuseEqualKeys)
    {
    }

    bool null() override { return add(Value()); }
    bool boolean(bool truth) override { return add(truth); }
    bool number_integer(number_integer_t number) override { return add(std::int64_t{number}); }
    bool number_unsigned(number_unsigned_t number) override
    {
        if (number > static_cast<number_unsigned_t>(std::numeric_limits<std::int64_t>::max()))
            return add(std::uint64_t{number});
        return add(static_cast<std::int64_t>(number));
    }
    bool number_float(number_float_t number, const string_t&) override { return add(double{number}); }
    bool string(string_t& text) override { return add(std::move(text)); }
    bool binary(binary_t&) override { return false; }

    bool start_object(std::size_t) override { return begin(); }
    bool key(string_t& name) override
    {
        keys.back() = std::move(name);
        return true;
    }
    bool end_object() override
    {
        if (refusesEqualKeys && repeatsAKey())
            return false;
        std::vector<Member> members(
            std::make_move_iterator(pending.begin() + starts.back()), std::make_move_iterator(pending.end()));
        return end(Dictionary(std::move(members)));
    }

    bool start_array(std::size_t) override { return begin(); }
    bool end_array() override
    {
        Array array;
        array.reserve(static_cast<std::size_t>(pending.end() - pending.begin() - starts.back()));
        for (auto member = pending.begin() + starts.back(); member != pending.end(); ++member)
            array.push_back(std::move(member->value));
        return end(std::move(array));
    }

    bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception&) override
    {
        fault = "not JSON near byte " + std::to_string(position);
        return false;
    }

    Value finished;
    std::string fault;

private:
    bool add(Value value)
    {
        if (starts.empty()) {
            fault = "neither an object nor an array";
            return false;
        }
        pending.push_back({std::move(keys.back()), std::move(value)});
        return true;
    }

    bool begin()
    {
        if (starts.size() == depthLimit) {
            fault = "nested too deep";
            return false;
        }
        starts.push_back(static_cast<std::ptrdiff_t>(pending.size()));
        keys.emplace_back();
        return true;
    }

    bool end(Value container)
    {
        pending.erase(pending.begin() + starts.back(), pending.end());
        starts.pop_back();
        keys.pop_back();
        if (!starts.empty())
            return add(std::move(container));
        finished = std::move(container);
        return true;
    }

    // Cold, so that the compiler spends its inlining on what every byte passes through: a fifth of the time.
    [[gnu::cold]] bool repeatsAKey()
    {
        std::vector<std::string_view> names;
        for (auto member = pending.begin() + starts.back(); member != pending.end(); ++member)
            names.push_back(member->key);
        std::ranges::sort(names);
        const auto repeated = std::ranges::adjacent_find(names);
        if (repeated == names.end())
            return false;
        const auto path = pathOfOpenContainer();
        fault = path + (path.empty() ? "" : ".") + std::string(*repeated) + ": the key occurs twice";
        return true;
    }

    // An array's members have no keys, only places.
    [[gnu::cold]] std::string pathOfOpenContainer() const
    {
        std::string path;
        for (std::size_t level = 0; level + 1 < starts.size(); ++level) {
            if (keys[level].empty())
                path += "[" + std::to_string(starts[level + 1] - starts[level]) + "]";
            else
                path += (path.empty() ? "" : ".") + keys[level];
        }
        return path;
    }

    const bool refusesEqualKeys;
    std::vector<Member> pending;
    std::vector<std::ptrdiff_t> starts; // where each open container's members begin
    std::vector<std::string> keys; // the latest key of each open container
};

std::optional<Value> read(std::string_view bytes, ValueBuilder& builder)
{
    try {
        if (JSON::sax_parse(bytes.begin(), bytes.end(), &builder))
            return std::move(builder.finished);
    } catch (const std::exception&) {
        builder.fault = "too large"; // out of memory, the one thing that the events do not report
    }
    return std::nullopt;
}

} // namespace

std::optional<Value> parseJSON(std::string_view bytes)
{
    ValueBuilder builder(false);
    return read(bytes, builder);
}

std::optional<Value> parseStrictJSON(std::string_view bytes, std::string& fault)
{
    ValueBuilder builder(true);
    auto value = read(bytes, builder);
    fault = std::move(builder.fault);
    return value;
}

} // namespace orv
