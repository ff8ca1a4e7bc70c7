#include "utils/platform/key_store_editor.h"

#include <fstream>
#include <sstream>

#include "utils/platform/posix/ini_file.h"

namespace Zentara::Utils::Platform {

namespace {

/// Appends the value in a section of its own; a section may stand in a file more than once.
bool appendValue(const std::string& store, const std::string& section, const std::string& name,
                 const std::string& bytes) {
    std::ofstream file(store, std::ios::app);
    file << '[' << section << "]\n" << name << " = " << bytes << '\n';
    return static_cast<bool>(file.flush());
}

} // namespace

bool writeKeyText(const std::string& store, const std::string& key, KeyView view, const std::string& name,
                  const std::string& text) {
    return appendValue(store, iniSection(key, view), name, text);
}

bool writeKeyExpandable(const std::string& store, const std::string& key, KeyView view,
                        const std::string& name, const std::string& text) {
    return writeKeyText(store, key, view, name, text);
}

bool writeKeyNonText(const std::string& store, const std::string& key, KeyView view,
                     const std::string& name) {
    return appendValue(store, iniSection(key, view), name, "\xFF\xFE");
}

bool removeKey(const std::string& store, const std::string& key, KeyView view) {
    const std::string unwanted = iniSection(key, view);
    std::ostringstream kept;
    std::ifstream file(store);
    bool inside = false;
    for (std::string line; std::getline(file, line);) {
        std::string_view section;
        if (isSectionLine(trimmed(line), section))
            inside = sameKeyName(section, unwanted);
        if (!inside)
            kept << line << '\n';
    }
    file.close();
    std::ofstream replacement(store, std::ios::trunc);
    replacement << kept.str();
    return static_cast<bool>(replacement.flush());
}

} // namespace Zentara::Utils::Platform
