#include "linux/drivers/IndexedKeys.h"

#include "linux/drivers/AttributeText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

namespace orv {

namespace {

constexpr int mostAttempts = 4; // one, and three more when the index was moved meanwhile
constexpr std::int64_t mostKeys = 65536; // the largest SMC known has fewer than 4000

using Text = std::array<char, 64>;

std::string_view readText(KeptAttribute& attribute, Text& text)
{
    const auto count = attribute.read(text);
    return {text.data(), count < 0 ? 0 : static_cast<std::size_t>(count)};
}

std::optional<std::uint32_t> readCode(KeptAttribute& attribute)
{
    Text text;
    return attributeCode(readText(attribute, text));
}

// None of the numbers here is negative.
std::optional<std::uint32_t> readNumber(KeptAttribute& attribute, std::int64_t largest)
{
    Text text;
    const auto number = attributeNumber(readText(attribute, text));
    if (!number || *number < 0 || *number > largest)
        return std::nullopt;
    return static_cast<std::uint32_t>(*number);
}

} // namespace

std::unique_ptr<IndexedKeys> IndexedKeys::open(SMCAttributes& calls, const std::string& folder)
{
    std::unique_ptr<IndexedKeys> source(new IndexedKeys(calls, folder));
    return source->openAttributes() && source->walk(calls, folder) ? std::move(source) : nullptr;
}

SMCOutcome IndexedKeys::readBytes(std::size_t position, Hardware::Bytes& bytes)
{
    const auto& key = walkedKeys[position];
    const auto size = std::min<std::size_t>(key.info.dataSize, bytes.size());
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        if (!select(position))
            return SMCOutcome::failed();
        const auto count = data.read({reinterpret_cast<char*>(bytes.data()), bytes.size()});
        // Only now is it known whose value, or whose error, that was.
        if (selectedName() != key.name)
            continue;
        return count == static_cast<ssize_t>(size) ? SMCOutcome{} : SMCOutcome::failed();
    }
    return SMCOutcome::failed();
}

IndexedKeys::IndexedKeys(SMCAttributes& calls, const std::string& folder)
    : index(calls, folder + "/key_at_index", SMCAttributes::Access::readingAndWriting)
    , name(calls, folder + "/key_at_index_name")
    , type(calls, folder + "/key_at_index_type")
    , length(calls, folder + "/key_at_index_data_length")
    , data(calls, folder + "/key_at_index_data")
{
}

bool IndexedKeys::openAttributes()
{
    return index.open() && name.open() && type.open() && length.open() && data.open();
}

bool IndexedKeys::walk(SMCAttributes& calls, const std::string& folder)
{
    KeptAttribute keyCount(calls, folder + "/key_count");
    const auto count = readNumber(keyCount, mostKeys);
    if (!count)
        return false;
    for (std::size_t position = 0; position < *count; ++position) {
        walkedKeys.push_back(walkedKey(position));
        // No two keys have one name: these attributes always tell of the same key.
        if (position == 1 && walkedKeys[0].name != 0 && walkedKeys[0].name == walkedKeys[1].name)
            return false;
    }
    return std::ranges::any_of(walkedKeys, [](const SMCKey& key) { return key.name != 0; });
}

bool IndexedKeys::select(std::size_t position)
{
    std::array<char, 24> text;
    auto* end = std::to_chars(text.data(), text.data() + text.size() - 1, position).ptr;
    *end++ = '\n';
    const std::string_view line(text.data(), static_cast<std::size_t>(end - text.data()));
    return index.write(line) == static_cast<ssize_t>(line.size());
}

std::optional<std::size_t> IndexedKeys::selection()
{
    return readNumber(index, mostKeys);
}

std::optional<std::uint32_t> IndexedKeys::selectedName()
{
    return readCode(name);
}

SMCKey IndexedKeys::walkedKey(std::size_t position)
{
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        SMCKey key;
        const bool isRead = readKey(position, key);
        if (selection() == position)
            return isRead ? key : SMCKey{};
    }
    return {};
}

bool IndexedKeys::readKey(std::size_t position, SMCKey& key)
{
    if (!select(position))
        return false;
    key.name = selectedName().value_or(0);
    key.info.dataType = readCode(type).value_or(0);
    key.info.dataSize = readNumber(length, UINT32_MAX).value_or(0);
    return key.name != 0;
}

} // namespace orv
