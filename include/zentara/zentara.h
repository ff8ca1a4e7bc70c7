#pragma once

/// Everything the library offers, in one include.

#include <zentara/export.h>
#include <zentara/guid.h>
#include <zentara/version.h>
