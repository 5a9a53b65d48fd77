#pragma once

#include "smc/SMCVal.h"

#include <IOKit/IOKitLib.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace orv {

/// The System Management Controller, reached through the AppleSMC user client. It belongs to the one thread that runs
/// collections; every failure is silent and makes values absent.
class SMC {
public:
    io_connect_t conn = 0; // 0 until the first successful open; close leaves it
    std::optional<std::vector<std::string>> keysList; // kept once it was asked for, also when empty

    std::size_t lostReadings = 0; // how often `read` has ended with kSMCReadingLost

    virtual ~SMC() = default;

    /// Opens a fresh user client over the previous one.
    virtual void open();
    /// Closes the user client; without one makes no call and returns 0.
    virtual kern_return_t close();
    /// The decoded value of a key of four characters. Two exchanges.
    virtual std::optional<double> getValue(const std::string& key);
    /// The SMC's keys that begin with "T" or "F", in its order. The first call walks every key of the SMC.
    virtual const std::vector<std::string>& getAllKeys();
    /// Where the driver of the SMC may come and go: the next getAllKeys walks anew.
    void forgetKeys() { keysList.reset(); }
    /// Fills size, type and bytes of a key of four characters; otherwise returns the first failing exchange's code.
    virtual kern_return_t read(SMCVal& val);

protected:
    /// The names that the SMC gives its indexes, from 0 to one past its last key.
    virtual std::vector<std::string> readKeyNames();

private:
    std::vector<std::string> buildKeysList();
};

/// The one SMC of the process.
SMC& sharedSMC();

} // namespace orv
