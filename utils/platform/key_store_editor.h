#pragma once

#include <string>

#include "utils/platform/key_store.h"

namespace Zentara::Utils::Platform {

/// Changes a key store, for tests and set-up programs; the library itself only reads and does not contain
/// these. They return false when the system refuses.

bool writeKeyText(const std::string& store, const std::string& key, KeyView view, const std::string& name,
                  const std::string& text);
/// The same, marked as a text with variables where the store knows such.
bool writeKeyExpandable(const std::string& store, const std::string& key, KeyView view,
                        const std::string& name, const std::string& text);
/// A value that exists and is no text.
bool writeKeyNonText(const std::string& store, const std::string& key, KeyView view, const std::string& name);
/// Removes the key with all its values; true also when there is none.
bool removeKey(const std::string& store, const std::string& key, KeyView view);

} // namespace Zentara::Utils::Platform
