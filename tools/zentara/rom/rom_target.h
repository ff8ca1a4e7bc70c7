#pragma once

#include <ostream>
#include <string>
#include <vector>

#include <zentara/host/flash.h>

#include "tools/zentara/chips/chip_session.h"

namespace Zentara::Tool {

/// Which flash, and where on it the storage lies.
struct TargetOptions : ChipOptions {
    std::string image; ///< a file, or "camera:NAME"; empty for a camera
    FlashOptions area;
};

/// Whether a camera is meant and not a file. \throws Failure where both are named
[[nodiscard]] bool isCamera(const TargetOptions& options);

/// IMAGE, or --camera, and the options of the area.
void addTargetOptions(CLI::App& command, TargetOptions& options);
void addForceOption(CLI::App& command, bool& force);

/// The flash that a verb works on. \throws Failure
[[nodiscard]] Flash openFlash(const TargetOptions& options, Console& console);
/// The same for a verb that writes, unless it only tries: of several cameras one has to be named.
[[nodiscard]] Flash openFlashToWrite(const TargetOptions& options, bool dryRun, Console& console);

/// Reads the whole of it: progress shows on a terminal, Ctrl-C ends it.
[[nodiscard]] FlashImage loadFlash(Flash& flash, Console& console);
/// What it holds. \throws Failure with exit code 8 when it holds no storage.
[[nodiscard]] FlashContent loadContent(Flash& flash, Console& console);
[[nodiscard]] FlashContent contentOfFlash(const Flash& flash, const FlashImage& image);

/// Begins what a verb prints with --json: the target, and of a camera who it is.
[[nodiscard]] Json beginJson(const Flash& flash, const Console& console);

/// Ends a verb: prints the result as JSON, with what beginJson() begins, or the lines.
void finish(const Flash& flash, const TargetOptions& options, Console& console, const Json& result,
            const std::vector<std::string>& lines);

/// Takes whatever becomes a text, a `Format` among them; names of files in it are made fit for a terminal.
void printLine(std::ostream& out, const std::string& text);

} // namespace Zentara::Tool
