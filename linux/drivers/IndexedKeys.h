#pragma once

#include "linux/drivers/SMCAttributes.h"
#include "linux/drivers/SMCKeySource.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orv {

/// Every key of the SMC at full precision, through applesmc's key_at_index attributes. The index that they work on is
/// one variable of the driver, which other processes may move too.
class IndexedKeys final : public SMCKeySource {
public:
    /// Walks all keys once. Nothing when key_at_index cannot be opened for writing or the attributes do not follow it.
    static std::unique_ptr<IndexedKeys> open(SMCAttributes& calls, const std::string& folder);

    const std::vector<SMCKey>& keys() const override { return walkedKeys; }
    bool isComplete() const override { return true; }
    SMCOutcome readBytes(std::size_t position, Hardware::Bytes& bytes) override;

private:
    IndexedKeys(SMCAttributes& calls, const std::string& folder);

    bool openAttributes();
    bool walk(SMCAttributes& calls, const std::string& folder);
    bool select(std::size_t position);
    std::optional<std::size_t> selection();
    std::optional<std::uint32_t> selectedName();
    SMCKey walkedKey(std::size_t position);
    bool readKey(std::size_t position, SMCKey& key);

    KeptAttribute index;
    KeptAttribute name;
    KeptAttribute type;
    KeptAttribute length;
    KeptAttribute data;
    std::vector<SMCKey> walkedKeys;
};

} // namespace orv
