#include "json/JSONReader.h"

#include "platform/JSON.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <limits>
#include <string_view>
#include <utility>
#include <vector>

namespace orv {

namespace {

using JSON = nlohmann::json;

constexpr std::size_t depthLimit = 512; // Foundation's

/// Builds a Value from the reader's events. Members of all open containers lie in one list, so that every finished
/// container is allocated once, at its size. Not derived from the library's interface, whose calls are virtual.
class ValueBuilder {
public:
    using number_integer_t = JSON::number_integer_t;
    using number_unsigned_t = JSON::number_unsigned_t;
    using number_float_t = JSON::number_float_t;
    using string_t = JSON::string_t;
    using binary_t = JSON::binary_t;

    explicit ValueBuilder(bool refuseEqualKeys)
        : refusesEqualKeys(refuseEqualKeys)
    {
    }

    bool null() { return add(nullptr); }
    bool boolean(bool truth) { return add(truth); }
    bool number_integer(number_integer_t number) { return add(std::int64_t{number}); }
    bool number_unsigned(number_unsigned_t number)
    {
        if (number > static_cast<number_unsigned_t>(std::numeric_limits<std::int64_t>::max()))
            return add(std::uint64_t{number});
        return add(static_cast<std::int64_t>(number));
    }
    bool number_float(number_float_t number, const string_t&) { return add(double{number}); }
    // Copied: a text that is taken from the reader leaves it without a buffer for the next.
    bool string(string_t& text) { return add(std::string(text)); }
    bool binary(binary_t&) { return false; }

    bool start_object(std::size_t) { return begin(true); }
    bool key(string_t& name)
    {
        pending.emplace_back().key = name;
        return true;
    }
    bool end_object()
    {
        if (refusesEqualKeys && repeatsAKey())
            return false;
        const auto first = firstOfInnermost();
        return end(
            Dictionary(std::vector<Member>(std::make_move_iterator(first), std::make_move_iterator(pending.end()))));
    }

    bool start_array(std::size_t) { return begin(false); }
    bool end_array()
    {
        Array array;
        array.reserve(static_cast<std::size_t>(pending.end() - firstOfInnermost()));
        for (auto member = firstOfInnermost(); member != pending.end(); ++member)
            array.push_back(std::move(member->value));
        return end(std::move(array));
    }

    [[gnu::cold]] bool parse_error(std::size_t position, const std::string&, const JSON::exception&)
    {
        faultPosition = position;
        fault = "not JSON near byte " + std::to_string(position);
        return false;
    }

    Value finished;
    std::string fault;
    std::optional<std::size_t> faultPosition;

private:
    struct Container {
        std::size_t first; // its members' place in the list
        bool isObject;
    };

    std::vector<Member>::iterator firstOfInnermost()
    {
        return pending.begin() + static_cast<std::ptrdiff_t>(open.back().first);
    }

    // An object's member is in the list since its key was read.
    template <typename Content> bool add(Content content)
    {
        if (open.empty()) {
            fault = "neither an object nor an array";
            return false;
        }
        if (!open.back().isObject)
            pending.emplace_back();
        pending.back().value.data.template emplace<Content>(std::move(content));
        return true;
    }

    bool begin(bool isObject)
    {
        if (open.size() == depthLimit) {
            fault = "nested too deep";
            return false;
        }
        open.push_back({pending.size(), isObject});
        return true;
    }

    template <typename Content> bool end(Content container)
    {
        pending.erase(firstOfInnermost(), pending.end());
        open.pop_back();
        if (!open.empty())
            return add(std::move(container));
        finished = std::move(container);
        return true;
    }

    // Cold, so that the compiler spends its inlining on what every byte passes through.
    [[gnu::cold]] bool repeatsAKey()
    {
        std::vector<std::string_view> names;
        for (auto member = firstOfInnermost(); member != pending.end(); ++member)
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
        for (std::size_t level = 0; level + 1 < open.size(); ++level) {
            const auto next = open[level + 1].first;
            if (open[level].isObject)
                path += (path.empty() ? "" : ".") + pending[next - 1].key;
            else
                path += "[" + std::to_string(next - open[level].first) + "]";
        }
        return path;
    }

    const bool refusesEqualKeys;
    std::vector<Member> pending;
    std::vector<Container> open;
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

std::optional<Value> parseJSON(std::string_view bytes, std::optional<std::size_t>* faultPosition)
{
    ValueBuilder builder(false);
    auto value = read(bytes, builder);
    if (faultPosition)
        *faultPosition = builder.faultPosition;
    return value;
}

std::optional<Value> parseStrictJSON(std::string_view bytes, std::string& fault)
{
    ValueBuilder builder(true);
    auto value = read(bytes, builder);
    fault = std::move(builder.fault);
    return value;
}

} // namespace orv
