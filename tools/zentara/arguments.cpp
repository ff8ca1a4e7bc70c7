#include "tools/zentara/arguments.h"

#include <cstdint>
#include <string>

#include <zentara/utils/format.h>
#include <zentara/utils/text.h>

#include "utils/platform/program.h"

namespace Zentara::Tool {

CLI::Validator secondsBetween(double least, double most) {
    return {[least, most](const std::string& text) -> std::string {
                double value = 0;
                // a NaN is in no range
                if (CLI::detail::lexical_cast(text, value) && value >= least && value <= most)
                    return {};
                return Utils::Format("'%' is no number of seconds from % to %") % text % least % most;
            },
            ""};
}

CLI::Validator anyName(const char* what) {
    return {[what](const std::string& text) {
                return text.empty() ? std::string("the name of the ") + what + " is empty" : std::string();
            },
            ""};
}

CLI::Option* addList(CLI::App& command, const std::string& name, std::vector<std::string>& words,
                     const std::string& text) {
    const auto take = [&words, name](const std::vector<std::string>& given) {
        words.clear();
        for (const std::string& list : given) {
            for (const std::string& word : Utils::split(list, ',')) {
                if (word.empty())
                    throw CLI::ValidationError(name, "a place in '" + list + "' is empty");
                words.push_back(word);
            }
        }
    };
    return command.add_option_function<std::vector<std::string>>(name, take, text);
}

CLI::Option* addPluginName(CLI::App& command, std::vector<std::string>& names) {
    return addList(command, "--plugin", names,
                   "With --direct: which device plug-in, by its GUID, its name or its file; the first one by "
                   "GUID, those of the system last, unless given")
        ->type_name("GUID|FILE")
        ->check(anyName("plug-in"));
}

/// An empty word is mostly a variable of the shell's that nobody has set; only bytes may be none.
void refuseEmptyWords(CLI::App& program) {
    for (CLI::Option* option : program.get_options()) {
        const std::string name = option->get_name();
        if (option->get_type_size() > 0 && name != "--hex" && name != "BYTES")
            option->check(CLI::Validator(
                [](const std::string& text) {
                    return text.empty() ? std::string("it is empty") : std::string();
                },
                ""));
    }
    for (CLI::App* verb : program.get_subcommands([](CLI::App*) { return true; }))
        refuseEmptyWords(*verb);
}

Host::OutputFile::Rules forced(bool force) {
    return {.ifThere = force ? Host::IfThere::Replace : Host::IfThere::Refuse, .hint = "--force replaces it"};
}

std::string fileWord(const std::string& path) {
    return Utils::Platform::shellWord(path.front() == '-' ? "./" + path : path);
}

CLI::Range any32Bits() { return {std::uint32_t{0}, std::uint32_t{0xFFFFFFFF}}; }

} // namespace Zentara::Tool
