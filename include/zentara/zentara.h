#pragma once

/// Everything the library offers, in one include.

#include <zentara/acceleration_internal.h>
#include <zentara/access_mode.h>
#include <zentara/cyclic_error_record.h>
#include <zentara/diagnostic_data.h>
#include <zentara/error_code.h>
#include <zentara/export.h>
#include <zentara/extrinsic_parameters_internal.h>
#include <zentara/four_cc.h>
#include <zentara/guid.h>
#include <zentara/raw_output_mode.h>
#include <zentara/rom_element.h>
#include <zentara/sensor_value_array.h>
#include <zentara/unit_type.h>
#include <zentara/utils/binary_reader.h>
#include <zentara/utils/binary_writer.h>
#include <zentara/utils/byte_array.h>
#include <zentara/utils/cfgmgr32_proxy.h>
#include <zentara/utils/crc.h>
#include <zentara/utils/dynamic_library.h>
#include <zentara/utils/environment_variable.h>
#include <zentara/utils/exceptions.h>
#include <zentara/utils/files.h>
#include <zentara/utils/format.h>
#include <zentara/utils/install_root.h>
#include <zentara/utils/kv_logger.h>
#include <zentara/utils/logger.h>
#include <zentara/utils/process.h>
#include <zentara/utils/text.h>
#include <zentara/utils/wave_writer.h>
#include <zentara/version.h>
