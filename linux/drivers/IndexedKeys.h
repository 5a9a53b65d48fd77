#pragma once

#include "linux/drivers/IndexLock.h"
#include "linux/drivers/SMCAttributes.h"
#include "linux/drivers/SMCKeySource.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orv {

/// Every key of the SMC at full precision, through applesmc's key_at_index attributes. The index that they work on is
/// one variable of the driver, which other programs move too: those that lock it take turns with us, the others are
/// noticed. A value that they make unsure is lost, and never another key's.
class IndexedKeys final : public SMCKeySource {
public:
    /// Walks all keys once. Nothing when key_at_index cannot be opened for writing or the attributes do not follow it.
    static std::unique_ptr<IndexedKeys> open(SMCAttributes& calls, const std::string& folder);

    const std::vector<SMCKey>& keys() const override { return walkedKeys; }
    bool isComplete() const override { return true; }
    SMCOutcome readBytes(std::size_t position, Hardware::Bytes& bytes) override;
    void endTurn() override;

private:
    struct Reading {
        bool isOfKey = false; // not of the one that another program chose meanwhile
        std::optional<SMCOutcome> fault; // which ends the attempts
        ssize_t count = -1;
        Hardware::Bytes bytes{};
    };

    IndexedKeys(SMCAttributes& calls, const std::string& folder);

    bool openAttributes();
    bool walk(SMCAttributes& calls, const std::string& folder);
    bool walkKeys(std::size_t count);
    void beginTurn();
    void noticeCompany();
    void lookForCompany();
    Reading readOnce(std::size_t position);
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
    IndexLock lock;
    bool isOurTurn = false;
    int wariness = 0; // the number of turns, this one included, in which company is reckoned with
    std::size_t place = 0; // where we left the index
    std::vector<SMCKey> walkedKeys;
};

} // namespace orv
