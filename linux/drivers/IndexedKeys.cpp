#include "linux/drivers/IndexedKeys.h"

#include "linux/drivers/AttributeText.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <string_view>
#include <utility>

namespace orv {

namespace {

// Beside a program that moves the index in every other reading, two in a row of 32 agree but for one value in hundreds.
constexpr int mostAttempts = 32;
constexpr int warinessAfterCompany = 12; // refreshes: a minute
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

// Alone one reading is enough. In company it may be of the key that another program had just chosen, which then came to
// ours: so two in a row must agree.
SMCOutcome IndexedKeys::readBytes(std::size_t position, Hardware::Bytes& bytes)
{
    beginTurn();
    std::optional<Reading> former;
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        const auto reading = readOnce(position);
        if (reading.fault)
            return *reading.fault;
        if (!reading.isOfKey) {
            former.reset();
            continue;
        }
        if (wariness == 0 || (former && former->count == reading.count && former->bytes == reading.bytes)) {
            bytes = reading.bytes;
            const auto size = std::min<std::size_t>(walkedKeys[position].info.dataSize, bytes.size());
            return reading.count == static_cast<ssize_t>(size) ? SMCOutcome{} : SMCOutcome::failed();
        }
        former = reading;
    }
    return SMCOutcome::lost();
}

// The index is left where a program that walks up begins last, and where the next of us looks for it.
void IndexedKeys::endTurn()
{
    if (!std::exchange(isOurTurn, false))
        return;
    select(walkedKeys.size() - 1);
    lock.giveBack();
}

IndexedKeys::IndexedKeys(SMCAttributes& calls, const std::string& folder)
    : index(calls, folder + "/key_at_index", SMCAttributes::Access::readingAndWriting)
    , name(calls, folder + "/key_at_index_name")
    , type(calls, folder + "/key_at_index_type")
    , length(calls, folder + "/key_at_index_data_length")
    , data(calls, folder + "/key_at_index_data")
    , lock(calls, index)
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
    if (!count || *count == 0)
        return false;
    isOurTurn = true;
    if (!lock.take())
        noticeCompany();
    place = selection().value_or(0); // wherever it was left before our time
    const bool wasWary = wariness > 0;
    bool follows = walkKeys(*count);
    lookForCompany();
    // A key that was walked before the company was noticed may have another one's name, and would keep it.
    if (follows && !wasWary && wariness > 0)
        follows = walkKeys(*count);
    endTurn();
    return follows && std::ranges::any_of(walkedKeys, [](const SMCKey& key) { return key.name != 0; });
}

// False when the attributes do not follow the index.
bool IndexedKeys::walkKeys(std::size_t count)
{
    walkedKeys.clear();
    for (std::size_t position = 0; position < count; ++position) {
        walkedKeys.push_back(walkedKey(position));
        // No two keys have one name: these attributes always tell of the same key.
        if (position == 1 && walkedKeys[0].name != 0 && walkedKeys[0].name == walkedKeys[1].name)
            return false;
    }
    return true;
}

void IndexedKeys::beginTurn()
{
    if (std::exchange(isOurTurn, true))
        return;
    if (wariness > 0)
        --wariness;
    if (!lock.take())
        noticeCompany();
}

void IndexedKeys::noticeCompany()
{
    wariness = warinessAfterCompany;
}

// Costs no exchange with the SMC.
void IndexedKeys::lookForCompany()
{
    if (wariness == 0 && selection() != place)
        noticeCompany();
}

IndexedKeys::Reading IndexedKeys::readOnce(std::size_t position)
{
    lookForCompany();
    Reading reading;
    if (!select(position)) {
        reading.fault = errno == ENODEV ? SMCOutcome::noDevice() : SMCOutcome::failed();
        return reading;
    }
    reading.count = data.read({reinterpret_cast<char*>(reading.bytes.data()), reading.bytes.size()});
    // Only now is it known whose value, or whose error, that was.
    reading.isOfKey = selectedName() == walkedKeys[position].name;
    if (!reading.isOfKey)
        noticeCompany();
    return reading;
}

bool IndexedKeys::select(std::size_t position)
{
    std::array<char, 24> text;
    auto* end = std::to_chars(text.data(), text.data() + text.size() - 1, position).ptr;
    *end++ = '\n';
    const std::string_view line(text.data(), static_cast<std::size_t>(end - text.data()));
    place = position;
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
    std::optional<SMCKey> former;
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        lookForCompany();
        SMCKey key;
        const bool isRead = readKey(position, key);
        if (selection() != position) {
            noticeCompany();
            former.reset();
            continue;
        }
        if (!isRead)
            key = {};
        if (wariness == 0 || former == key)
            return key;
        former = key;
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
