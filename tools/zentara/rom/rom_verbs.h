#pragma once

#include "tools/zentara/verb.h"

namespace Zentara::Tool {

/// Each adds one action to `zentara rom`.
[[nodiscard]] Verb addRomBackup(CLI::App& rom);
[[nodiscard]] Verb addRomCreate(CLI::App& rom);
[[nodiscard]] Verb addRomDiff(CLI::App& rom);
[[nodiscard]] Verb addRomDraw(CLI::App& rom);
[[nodiscard]] Verb addRomErase(CLI::App& rom);
[[nodiscard]] Verb addRomExport(CLI::App& rom);
[[nodiscard]] Verb addRomGet(CLI::App& rom);
[[nodiscard]] Verb addRomImport(CLI::App& rom);
[[nodiscard]] Verb addRomInfo(CLI::App& rom);
[[nodiscard]] Verb addRomList(CLI::App& rom);
[[nodiscard]] Verb addRomMap(CLI::App& rom);
[[nodiscard]] Verb addRomRestore(CLI::App& rom);
[[nodiscard]] Verb addRomSalvage(CLI::App& rom);
[[nodiscard]] Verb addRomSet(CLI::App& rom);
[[nodiscard]] Verb addRomVerify(CLI::App& rom);

} // namespace Zentara::Tool
