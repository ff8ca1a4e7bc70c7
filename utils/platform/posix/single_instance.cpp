#include "utils/platform/single_instance.h"

#include "utils/platform/fnv.h"
#include "utils/platform/posix/shared_object.h"

#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include <unistd.h>

namespace Zentara::Utils::Platform {

namespace {

struct PosixInstance final : SingleInstance {
    SharedObject object;
};

bool isPlain(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
           std::strchr("._-", c);
}

std::string namePrefix() { return "/zentara-instance-" + std::to_string(geteuid()) + "-"; }

std::string hexadecimal(std::uint64_t number) {
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(number));
    return digits;
}

/// 128 bits of two FNV-1a sums: names that differ do not meet by chance.
std::string digest(std::string_view name) {
    return hexadecimal(fnvSum(name.begin(), name.end())) +
           hexadecimal(fnvSum(name.rbegin(), name.rend(), fnvBasis + name.size()));
}

/// One file a user and name; every byte that could mean something in a path is written as two hexadecimal
/// digits. What gets too long for a file's name ends in a digest of the name, behind a character that is never plain.
std::string objectName(const char* name) {
    std::string result = namePrefix();
    for (const char* c = name; *c; ++c) {
        if (isPlain(*c)) {
            result += *c;
        } else {
            const auto byte = static_cast<unsigned char>(*c);
            result += {'%', "0123456789abcdef"[byte >> 4], "0123456789abcdef"[byte & 15]};
        }
    }
    const std::size_t longest = NAME_MAX + 1; // with the slash
    if (result.size() > longest) {
        const std::string sum = '~' + digest(name);
        result.replace(longest - sum.size(), std::string::npos, sum);
    }
    return result;
}

} // namespace

SingleInstance* SingleInstance::create(const char* name, bool& existed) {
    existed = false;
    // What killed processes left behind.
    static const bool swept = [] {
        SharedObject::sweep(namePrefix().substr(1), [](std::string_view) { return true; });
        return true;
    }();
    static_cast<void>(swept);
    auto instance = std::make_unique<PosixInstance>();
    if (*name == '\0' || !instance->object.open(objectName(name)))
        return nullptr;
    instance->object.openGate();
    existed = instance->object.wasInUse();
    return instance.release();
}

void SingleInstance::destroy(SingleInstance* instance) noexcept {
    delete static_cast<PosixInstance*>(instance);
}

} // namespace Zentara::Utils::Platform
