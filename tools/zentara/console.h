#pragma once

#include <ostream>
#include <string>

#include <zentara/host/note.h>

#include "tools/zentara/exit_code.h"

namespace Zentara::Tool {

/// Where a verb writes, data to `out` and everything else to `err`, and how the user called it.
struct Console {
    std::ostream& out;
    std::ostream& err;
    bool showProgress = false; ///< `err` is a terminal
    std::string program{};     ///< the tool's own file, which `plugins` starts anew for each plug-in
    std::string verb{};        ///< "rom"; empty before the command line has been read
    std::string action{};      ///< "info", of a verb that has several
    bool json = false;         ///< --json was given: a failure is told on `out` as well
    bool lines = false;        ///< a verb that goes on prints one JSON object a line

    /// For messages: "zentara rom info".
    [[nodiscard]] std::string words() const;
};

/// A line on standard error. Every note and every failure goes through here: what comes from outside, a file's name or a
/// camera's text, can neither act on the terminal nor fill it.
void tellLine(std::ostream& err, const std::string& text);

/// For a terminal: names from files may hold anything, and be of any length.
[[nodiscard]] std::string printable(const std::string& text);

/// What the host library tells, each a line: "zentara: TEXT".
[[nodiscard]] Host::Note notesTo(std::ostream& err);

/// A line about what does not end the verb: "zentara rom info: TEXT".
void note(Console& console, const std::string& text);

/// Tells what ended the verb: on standard error for people, and with --json as the only object, or the last line, on
/// standard output. A verb that throws has therefore printed no object of its own.
void tellFailure(Console& console, const Failure& failure);

} // namespace Zentara::Tool
