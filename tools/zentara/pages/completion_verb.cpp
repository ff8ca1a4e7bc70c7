#include <algorithm>
#include <memory>
#include <optional>
#include <set>

#include <CLI/CLI.hpp>

#include <zentara/host/cameras.h>
#include <zentara/version.h>

#include "tools/zentara/pages/manual_page.h"
#include "tools/zentara/verb.h"

namespace Zentara::Tool {
namespace {

/// The shell hands on what stands before the cursor, and takes lines. Its own words end at "@", "=" and ":" as well, so
/// what it has already is taken off again.
constexpr const char* bashScript = R"(# bash completion for zentara
_zentara() {
    local line=${COMP_LINE:0:COMP_POINT} current=${COMP_WORDS[COMP_CWORD]} last
    local -a words
    read -ra words <<<"$line"
    [[ $line == *[[:space:]] ]] && words+=('')
    last=${words[${#words[@]}-1]}
    [[ $current == [@=:] ]] && current=
    mapfile -t COMPREPLY < <(zentara completion words "${words[@]:1}" 2>/dev/null)
    COMPREPLY=("${COMPREPLY[@]#"${last%"$current"}"}")
    [[ ${COMPREPLY[0]-} == *= ]] && compopt -o nospace
}
complete -o default -F _zentara zentara
)";

/// What may stand where the last of the words is.
class Candidates final {
public:
    Candidates(const CLI::App& program, std::vector<std::string> typed)
        : words(std::move(typed)), level(&program) {
        last = words.empty() ? "" : words.back();
        for (std::size_t i = 0; i + 1 < words.size(); ++i)
            pass(words[i]);
    }

    /// Once each, in order; what would have to be quoted is left out.
    [[nodiscard]] std::set<std::string> fitting() {
        std::set<std::string> fit;
        for (const std::string& word : all()) {
            if (word.rfind(last, 0) == 0 && word.find(' ') == std::string::npos)
                fit.insert(word);
        }
        return fit;
    }

private:
    /// A word before the last one: a verb, an option, an option's value or a value of the verb's.
    void pass(const std::string& word) {
        if (const CLI::Option* option = std::exchange(open, nullptr)) {
            if (option->check_lname("camera"))
                camera = word;
        } else if (word.rfind('-', 0) == 0) {
            const CLI::Option* option = level->get_option_no_throw(word);
            open = option != nullptr && option->get_items_expected_max() > 0 ? option : nullptr;
        } else if (const CLI::App* verb = verbCalled(word)) {
            level = verb;
        } else {
            ++values;
        }
    }

    [[nodiscard]] const CLI::App* verbCalled(const std::string& name) const {
        const std::vector<const CLI::App*> found =
            level->get_subcommands([&](const CLI::App* verb) { return verb->get_name() == name; });
        return found.empty() ? nullptr : found.front();
    }

    [[nodiscard]] std::vector<std::string> all() {
        if (open)
            return valuesOf(*open);
        std::vector<std::string> found;
        if (last.rfind('-', 0) == 0) {
            for (const CLI::Option* option : level->get_options()) {
                for (const std::string& name : option->get_lnames())
                    found.push_back("--" + name);
            }
            return found;
        }
        for (const CLI::App* verb : level->get_subcommands([](const CLI::App*) { return true; })) {
            if (!verb->get_name().empty() && !verb->get_group().empty())
                found.push_back(verb->get_name());
        }
        std::size_t place = 0;
        for (const CLI::Option* option : level->get_options()) {
            if (option->get_positional() && (place++ == values || option->get_items_expected_max() > 1))
                return valuesOf(*option);
        }
        return found;
    }

    /// Of cameras, modes and parameters those that are there now, else the words that the option names itself.
    [[nodiscard]] std::vector<std::string> valuesOf(const CLI::Option& option) {
        std::vector<std::string> found;
        const std::string name = option.get_name(option.get_positional());
        if (name == "--camera") {
            for (const CameraInfo& info : cameras().list())
                found.push_back(info.serial);
        } else if (name == "--mode") {
            const Camera opened = cameras().open(camera);
            for (const Kind kind : opened.info().kinds) {
                for (const Mode& mode : opened.modes(kind))
                    found.insert(found.end(), {mode.name, mode.text()});
            }
        } else if (name.rfind("PARAMETER", 0) == 0) {
            for (const Parameter& parameter : cameras().open(camera).parameters()) {
                const std::string word = std::to_string(parameter.number);
                found.push_back(name == "PARAMETER" ? word : word + "=");
            }
        } else {
            const std::string kind = option.get_type_name();
            const std::size_t begin = kind.find('{');
            for (std::string& word : CLI::detail::split(kind.substr(std::min(begin, kind.size())), ','))
                found.push_back(CLI::detail::trim_copy(word, "{}"));
        }
        return found;
    }

    Cameras& cameras() { return found ? *found : found.emplace(); }

    const std::vector<std::string> words;
    std::string last; ///< what is there of the word that is being typed
    const CLI::App* level;
    const CLI::Option* open = nullptr; ///< it wants a value
    std::string camera;                ///< the one named before
    std::size_t values = 0;            ///< of the verb's own, before the last word
    std::optional<Cameras> found;
};

} // namespace

Verb addCompletionVerb(CLI::App& program, const std::string& version) {
    CLI::App* command =
        program
            .add_subcommand("completion",
                            "Prints what completes this tool's words in bash, and its manual page")
            ->group("Verbs");
    command->require_subcommand(1);
    const CLI::App* bash = command->add_subcommand("bash", "Prints a script for bash");
    const CLI::App* man = command->add_subcommand("man", "Prints the manual page");
    CLI::App* words =
        command->add_subcommand("words", "Prints what may come next; the script asks this")->group("");
    words->prefix_command();
    return {command, [&program, bash, man, words, version](Console& console) {
                if (bash->parsed()) {
                    console.out << bashScript;
                } else if (man->parsed()) {
                    console.out << manualPage(program, version);
                } else {
                    for (const std::string& word : Candidates(program, words->remaining()).fitting())
                        console.out << word << '\n';
                }
                return Failure::None;
            }};
}

} // namespace Zentara::Tool
