#include "utils/platform/single_instance.h"

#include "utils/platform/posix/shared_object.h"

#include <cstring>
#include <memory>
#include <string>

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

/// One file a user and name; every byte that could mean something in a path is written as two hexadecimal
/// digits.
std::string objectName(const char* name) {
    std::string result = "/zentara-instance-" + std::to_string(geteuid()) + "-";
    for (const char* c = name; *c; ++c) {
        if (isPlain(*c)) {
            result += *c;
        } else {
            const auto byte = static_cast<unsigned char>(*c);
            result += {'%', "0123456789abcdef"[byte >> 4], "0123456789abcdef"[byte & 15]};
        }
    }
    return result;
}

} // namespace

SingleInstance* SingleInstance::create(const char* name, bool& existed) {
    existed = false;
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
