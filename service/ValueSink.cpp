#include "service/ValueSink.h"

namespace orv {

void ValueSink::beginDictionary()
{
    open.emplace_back();
}

void ValueSink::key(std::string_view key)
{
    open.back().key = key;
}

void ValueSink::endDictionary()
{
    Dictionary dictionary(std::move(open.back().members));
    endContainer(std::move(dictionary));
}

void ValueSink::beginArray()
{
    open.emplace_back();
}

void ValueSink::endArray()
{
    Array array;
    array.reserve(open.back().members.size());
    for (auto& member : open.back().members)
        array.push_back(std::move(member.value));
    endContainer(std::move(array));
}

void ValueSink::text(std::string_view text)
{
    add(std::string(text));
}

void ValueSink::real(double number)
{
    add(number);
}

void ValueSink::integer(std::int64_t number)
{
    add(number);
}

void ValueSink::natural(std::uint64_t number)
{
    add(number);
}

void ValueSink::boolean(bool truth)
{
    add(truth);
}

void ValueSink::add(Value value)
{
    open.back().members.push_back({std::move(open.back().key), std::move(value)});
}

void ValueSink::endContainer(Value value)
{
    open.pop_back();
    if (open.empty())
        finished = std::move(value);
    else
        add(std::move(value));
}

} // namespace orv
