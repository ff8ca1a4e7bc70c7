#pragma once

/// Everything that the host library offers.
#include <zentara/host/camera.h>
#include <zentara/host/cameras.h>
#include <zentara/host/color.h>
#include <zentara/host/color_map.h>
#include <zentara/host/correction_tables.h>
#include <zentara/host/export.h>
#include <zentara/host/failure.h>
#include <zentara/host/flash.h>
#include <zentara/host/flash_content.h>
#include <zentara/host/flash_image.h>
#include <zentara/host/flash_map.h>
#include <zentara/host/flash_survey.h>
#include <zentara/host/frame.h>
#include <zentara/host/frame_set.h>
#include <zentara/host/hex_bytes.h>
#include <zentara/host/lens.h>
#include <zentara/host/mode.h>
#include <zentara/host/note.h>
#include <zentara/host/output_file.h>
#include <zentara/host/parameter.h>
#include <zentara/host/picture.h>
#include <zentara/host/plot.h>
#include <zentara/host/point_cloud.h>
#include <zentara/host/stream.h>
#include <zentara/host/stream_info.h>
