#pragma once

#include <zentara/host/plugins.h>

#include "host/plugins/plugin_question.h"

namespace Zentara::Host {

/// What is wrong with a file that was asked, or with what it did instead of an answer, and what helps.
[[nodiscard]] RefusedFile refusedByScan(const PluginAnswer& answer);

} // namespace Zentara::Host
