#pragma once

#include "linux/drivers/SMCAttributes.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orv {

/// A kernel driver: attributes that are plain text, and, when it has keys, the key_at_index ones, which follow the
/// index written last, whoever wrote it.
class FakeDriver final : public SMCAttributes {
public:
    struct Key {
        std::string name;
        std::string type;
        std::string bytes;
        bool isUnreadable = false;
    };

    enum class Call { readIndex, read, write, lock, unlock, pause };

    std::map<std::string, std::string> files; // by path
    std::map<std::string, int> refusals; // the errors that reading some of them ends with
    std::vector<std::string> looks; // what was asked for its existence
    int opens = 0; // of files
    std::vector<Key> keys;
    std::size_t index = 0;
    bool isWritable = true;
    std::function<void()> afterWrite; // what another process does meanwhile
    std::function<void(Call)> beforeCall; // on an open attribute
    std::optional<int> lockHolder; // a descriptor; -1 for a program that is none of ours
    std::vector<std::string> dataReads; // the names of the keys whose data was read

    /// Adds the attributes of applesmc, with these keys behind key_at_index.
    void addApplesmc(const std::string& folder, std::vector<Key> driverKeys);
    /// Takes the driver away: what is open is of no use from now on.
    void unload();
    void load() { isLoaded = true; }

    std::size_t openDescriptors() const;

    FileDescriptor open(const std::string& path, Access access) override;
    bool exists(const std::string& path) override;
    bool lock(int descriptor) override;
    void unlock(int descriptor) override;
    void pause() override;
    ssize_t read(int descriptor, std::span<char> bytes) override;
    ssize_t write(int descriptor, std::string_view text) override;

private:
    struct Opened {
        std::string path;
        int generation = 0;
    };

    std::string content(const std::string& path);
    void announce(Call call) const;

    bool isLoaded = true;
    int generation = 0;
    std::map<int, Opened> opened; // by descriptor, also after it was closed
};

} // namespace orv
