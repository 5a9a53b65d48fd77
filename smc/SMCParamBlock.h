#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace orv {

// The wire format of the AppleSMC user client: one 80-byte block in, the same out, in the machine's byte order.

inline constexpr std::uint32_t kSMCUserClientSelector = 2;
inline constexpr std::uint32_t kSMCUserClientType = 0;

inline constexpr std::uint8_t kSMCReadBytes = 5; // input keyInfo.dataSize must hold the size
inline constexpr std::uint8_t kSMCGetKeyFromIndex = 8; // input data32 is the index, output key the name
inline constexpr std::uint8_t kSMCGetKeyInfo = 9; // output keyInfo.dataSize and keyInfo.dataType

/// What an exchange ends with whose answer was lost to another program that uses the SMC. macOS never answers so: the
/// code is one of those that are left to vendors.
inline constexpr int kSMCReadingLost = static_cast<int>(0xe3ff8001);

struct SMCVersion {
    std::uint8_t major;
    std::uint8_t minor;
    std::uint8_t build;
    std::uint8_t reserved;
    std::uint16_t release;
};

struct SMCPLimitData {
    std::uint16_t version;
    std::uint16_t length;
    std::uint32_t cpuPLimit;
    std::uint32_t gpuPLimit;
    std::uint32_t memPLimit;
};

struct SMCKeyInfo {
    std::uint32_t dataSize;
    std::uint32_t dataType; // a four-character code
    std::uint8_t dataAttributes;
};

struct SMCParamBlock {
    std::uint32_t key; // a four-character code
    SMCVersion vers;
    SMCPLimitData pLimitData;
    SMCKeyInfo keyInfo;
    std::uint8_t result;
    std::uint8_t status;
    std::uint8_t data8; // the command
    std::uint32_t data32;
    std::uint8_t bytes[32];
};

static_assert(std::is_trivially_copyable_v<SMCParamBlock> && std::is_standard_layout_v<SMCParamBlock>);
static_assert(sizeof(SMCParamBlock) == 80);
static_assert(offsetof(SMCParamBlock, key) == 0);
static_assert(offsetof(SMCParamBlock, vers) == 4 && offsetof(SMCVersion, major) == 0);
static_assert(offsetof(SMCVersion, minor) == 1 && offsetof(SMCVersion, build) == 2);
static_assert(offsetof(SMCVersion, reserved) == 3 && offsetof(SMCVersion, release) == 4);
static_assert(offsetof(SMCParamBlock, pLimitData) == 12 && offsetof(SMCPLimitData, version) == 0);
static_assert(offsetof(SMCPLimitData, length) == 2 && offsetof(SMCPLimitData, cpuPLimit) == 4);
static_assert(offsetof(SMCPLimitData, gpuPLimit) == 8 && offsetof(SMCPLimitData, memPLimit) == 12);
static_assert(offsetof(SMCParamBlock, keyInfo) == 28 && offsetof(SMCKeyInfo, dataSize) == 0);
static_assert(offsetof(SMCKeyInfo, dataType) == 4 && offsetof(SMCKeyInfo, dataAttributes) == 8);
static_assert(offsetof(SMCParamBlock, result) == 40 && offsetof(SMCParamBlock, status) == 41);
static_assert(offsetof(SMCParamBlock, data8) == 42 && offsetof(SMCParamBlock, data32) == 44);
static_assert(offsetof(SMCParamBlock, bytes) == 48);

} // namespace orv
