#pragma once

#include <zentara/export.h>

namespace Zentara::Utils {

/// The three checksums. Each `compute` returns the register after `length` bytes, starting from the register
/// value `crc`. There is no initial and no final XOR: the caller passes the start value and uses the result
/// as it is, so a checksum over two pieces is the second computed from the result of the first. A null `data`
/// leaves the register as it is. Safe.

/// Reflected CRC-32, polynomial 0xEDB88320.
class ZENTARA_API Crc32 {
public:
    /// \param length bytes of `data` \param crc the register before
    static unsigned int compute(const unsigned char* data, unsigned int length, unsigned int crc);
};

/// Reflected CRC-16, polynomial 0xA001; started at 0 it is CRC-16/ARC.
class ZENTARA_API Crc16 {
public:
    /// As above.
    static unsigned short compute(const unsigned char* data, unsigned int length, unsigned short crc);
};

/// CRC-8 with polynomial 0xD5 and a table of its own: the step tests bit 3 rather than bit 7, and stored
/// checksums depend on it. It is not the usual CRC-8 of that polynomial.
class ZENTARA_API Crc8 {
public:
    /// As above.
    static unsigned char compute(const unsigned char* data, unsigned int length, unsigned char crc);
};

} // namespace Zentara::Utils
