#include "tools/zentara/pages/manual_page.h"

#include <sstream>

#include <CLI/CLI.hpp>

namespace Zentara::Tool {
namespace {

/// A text in which the page's language sees no request, no escape and no hyphen that it may change.
std::string plain(const std::string& text) {
    std::string result;
    bool startsLine = true;
    for (const char letter : text) {
        if (startsLine && (letter == '.' || letter == '\''))
            result += "\\&";
        if (letter == '\\')
            result += "\\e";
        else if (letter == '-')
            result += "\\-";
        else
            result += letter;
        startsLine = letter == '\n';
    }
    return result;
}

/// Text whose lines stay as they are.
std::string asItStands(const std::string& text) {
    return text.empty() ? "" : ".PP\n.nf\n" + plain(text) + "\n.fi\n";
}

std::string optionsOf(const CLI::App& command) {
    std::string text;
    for (const CLI::Option* option : command.get_options()) {
        if (option->get_group().empty())
            continue; // hidden
        const bool isPositional = option->get_positional();
        std::string names = isPositional ? option->get_name(true) : option->get_name(false, true);
        if (!isPositional && option->get_items_expected_max() > 0)
            names += " " + option->get_type_name();
        text += ".TP\n\\fB" + plain(names) + "\\fR\n" + plain(option->get_description()) + "\n";
    }
    return text;
}

/// The command, then what it can be asked for.
std::string sectionsOf(const CLI::App& command, const std::string& words) {
    std::string text = ".SS \"" + plain(words) + "\"\n" + plain(command.get_description()) + ".\n" +
                       optionsOf(command) + asItStands(command.get_footer());
    for (const CLI::App* action : command.get_subcommands([](const CLI::App*) { return true; })) {
        if (!action->get_name().empty() && !action->get_group().empty())
            text += sectionsOf(*action, words + " " + action->get_name());
    }
    return text;
}

} // namespace

std::string manualPage(const CLI::App& program, const std::string& version) {
    const std::string name = program.get_name();
    std::string text = ".TH ZENTARA 1 \"\" \"" + plain(version) + "\" \"User Commands\"\n" + ".SH NAME\n" +
                       name + " \\- " + plain(program.get_description()) + "\n" + ".SH SYNOPSIS\n.B " + name +
                       "\n[OPTIONS] VERB [ARGUMENTS]\n" + ".SH OPTIONS\n" + optionsOf(program) +
                       ".SH VERBS\n";
    for (const CLI::App* verb : program.get_subcommands([](const CLI::App*) { return true; })) {
        if (!verb->get_group().empty())
            text += sectionsOf(*verb, verb->get_name());
    }
    // The program's last words have their headings as lines that end in a colon.
    std::istringstream lines(program.get_footer());
    std::string block;
    text += ".SH NOTES\n";
    for (std::string line; std::getline(lines, line);) {
        const bool isHeading = !line.empty() && line.front() != ' ' && line.back() == ':';
        if (isHeading) {
            text += asItStands(block) + ".SS " + plain(line.substr(0, line.size() - 1)) + "\n";
            block.clear();
        } else if (!line.empty() || !block.empty()) {
            block += (block.empty() ? "" : "\n") + line;
        }
    }
    return text + asItStands(block);
}

} // namespace Zentara::Tool
