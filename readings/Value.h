#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace orv {

struct Value;
struct Member;

using Array = std::vector<Value>;

/// A property-list dictionary; no key occurs twice. Its members keep the order in which they came, which is that of
/// their source where the reader gives it: nlohmann's does, Foundation's knows none. Equality does not ask for it.
class Dictionary {
public:
    Dictionary();
    /// Takes members as a source listed them; of equal keys the first is kept.
    explicit Dictionary(std::vector<Member> listed);
    Dictionary(const Dictionary&);
    Dictionary(Dictionary&&) noexcept;
    Dictionary& operator=(const Dictionary&);
    Dictionary& operator=(Dictionary&&) noexcept;
    ~Dictionary();

    /// The value of a key, or nullptr.
    const Value* find(std::string_view key) const;
    /// The content of a key's value when it has this type, otherwise nullptr.
    template <typename T> const T* findAs(std::string_view key) const;
    /// Stores a value, replacing an earlier one of the same key.
    void set(std::string key, Value value);

    bool empty() const;
    std::size_t size() const;
    std::vector<Member>::const_iterator begin() const;
    std::vector<Member>::const_iterator end() const;

    bool operator==(const Dictionary& other) const;

private:
    std::vector<Member> members;
};

template <typename T>
concept PropertyListContent = std::same_as<T, bool> || std::same_as<T, std::int64_t> || std::same_as<T, std::uint64_t>
    || std::same_as<T, double> || std::same_as<T, std::string> || std::same_as<T, Array> || std::same_as<T, Dictionary>;

/// One property-list value. JSON null is kept as it was read, although no reply can carry it.
struct Value {
    using Data =
        std::variant<std::nullptr_t, bool, std::int64_t, std::uint64_t, double, std::string, Array, Dictionary>;
    Data data = nullptr;

    Value() = default;
    /// Takes exactly the types of `data`: neither an int nor a character pointer turns into one of them by itself.
    template <PropertyListContent T>
    Value(T content)
        : data(std::move(content))
    {
    }

    /// The content when it has this type, otherwise nullptr.
    template <typename T> const T* as() const { return std::get_if<T>(&data); }

    bool operator==(const Value&) const = default;
};

struct Member {
    std::string key;
    Value value;

    bool operator==(const Member&) const = default;
};

template <typename T> const T* Dictionary::findAs(std::string_view key) const
{
    const auto* value = find(key);
    return value ? value->as<T>() : nullptr;
}

} // namespace orv
