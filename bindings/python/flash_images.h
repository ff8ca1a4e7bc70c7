#pragma once

#include <string>

#include <pybind11/pybind11.h>
#include <zentara/host/flash_content.h>
#include <zentara/host/flash_image.h>

namespace Zentara::Python {

// A content is in Python what its JSON says.

[[nodiscard]] pybind11::object contentOf(const Host::FlashContent& content);
/// \throws Host::Failure (Failed) with the path of the first field that is wrong
[[nodiscard]] Host::FlashContent contentFrom(const pybind11::object& content);

[[nodiscard]] pybind11::dict dictionaryOf(const Host::FlashArea& area);

/// Images of flash, and what is found in them.
void bindFlashImages(pybind11::module_& module);

} // namespace Zentara::Python
