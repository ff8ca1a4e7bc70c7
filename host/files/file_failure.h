#pragma once

#include <cstdint>
#include <string>

#include <zentara/host/failure.h>

namespace Zentara::Host {

/// A file could not be read or written: whatever is being read or written beside it is sound.
class FileFailure final : public Failure {
    using Failure::Failure;
};

/// Ends a step that failed on a file with the system's reason, which must still be the last error: nothing may be
/// called between the failure and this.
/// \throws FileFailure "cannot WHAT 'PATH': REASON" with exit code 5 where a permission is missing, 6 where another
/// program has the file, else 1.
[[noreturn]] void failFile(const char* what, const std::string& path);

/// All bytes of a file, or of a pipe. \throws Failure as above, and when it has more than that many
[[nodiscard]] std::string readFileBytes(const std::string& path, std::uint64_t most);

/// All bytes of standard input. \throws Failure when it has more than that many
[[nodiscard]] std::string readInputBytes(std::uint64_t most);

} // namespace Zentara::Host
