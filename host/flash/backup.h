#pragma once

#include <string>

#include <zentara/host/flash.h>

namespace Zentara::Host {

/// "1.4.5": what wrote a backup.
[[nodiscard]] std::string sdkVersion();

/// A name for a backup that nothing has yet, with the time; who comes first keeps it. A stem too long for it is cut.
[[nodiscard]] std::string freeBackupName(const std::string& stem);

/// What the file beside a backup says: whose it is, and which SDK read it.
[[nodiscard]] std::string backupNote(const CameraInfo& owner, const FlashArea& area);
/// Its name.
[[nodiscard]] inline std::string backupNoteOf(const std::string& backup) { return backup + ".json"; }

/// The serial number of the camera that a backup is of; empty when the file beside it is not there or does not say.
/// \throws Failure when it is there and cannot be read
[[nodiscard]] std::string serialOfBackup(const std::string& path);

} // namespace Zentara::Host
