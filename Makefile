# The commands of everyday work. Each installs what it needs on a Debian machine, or says what to install.
SOURCES = $(shell git ls-files '*.h' '*.cpp' '*.c')
JOBS ?= $(shell nproc)

.PHONY: demo test test-linux test-windows test-asan test-tsan test-kernel soak soak-kernel storm coverage packages test-packages docs format lint tidy bench bench-kernel clean

## Builds everything and drives two simulated cameras; leaves pictures, a point cloud, sound, a recording and a plot in build/demo/.
demo:
	@.ci/setup demo
	@cmake --preset gcc -Wno-dev >/dev/null
	@cmake --build --preset gcc -j $(JOBS) --target demo

## Builds and runs all tests, on Linux and under Wine.
test:
	@.ci/setup test
	@$(MAKE) --no-print-directory test-linux test-windows

test-linux test-windows test-asan test-tsan: test-%:
	@.ci/build-and-test $*

## Tries real drivers of the kernel in virtual machines. Where these cannot be had, nothing has been tried, and that is a failure.
test-kernel:
	@.ci/setup kernel || { echo "test-kernel: NOTHING WAS TRIED: the packages marked 'kernel' in .ci/packages.txt are missing" >&2; exit 1; }
	@cmake --preset gcc -Wno-dev >/dev/null
	@cmake --build --preset gcc -j $(JOBS) --target zentara camera_plugins simulated_usb_camera zentara_python plugin_device
	@tests/kernel/all

## Uses three simulated cameras for MINUTES, 30 unless told, one call of a device in a hundred failing: memory stays as it is after
## the first minute, and no thread and no handle is left.
soak: MINUTES ?= 30
soak:
	@.ci/setup test
	@cmake --preset gcc -Wno-dev >/dev/null
	@cmake --build --preset gcc -j $(JOBS) --target zentara_soak
	@ZENTARASDK_ROOT=$$PWD/build/gcc/ ZENTARA_SYSFS=$$PWD/build/gcc/no-devices ZENTARA_SIMULATED_CAMERAS= timeout $$(($(MINUTES) * 60 + 180)) build/gcc/bin/zentara_soak $(MINUTES)

## The same with a camera at USB level among the simulated ones, in a virtual machine with a real kernel; for a minute unless told.
soak-kernel: MINUTES ?= 1
soak-kernel:
	@.ci/setup kernel
	@cmake --preset gcc -Wno-dev >/dev/null
	@cmake --build --preset gcc -j $(JOBS) --target zentara_soak zentara camera_plugins simulated_usb_camera
	@tests/kernel/run --machine "-icount shift=1" --job soak --timeout $$(($(MINUTES) * 120 + 110)) \
	    env MINUTES=$(MINUTES) ZENTARA_TEST_LIMIT=$$(($(MINUTES) * 90 + 110)) tests/kernel/suite soak
	@cat build/kernel/soak/soak.txt

## Under the thread sanitizer, 2 to 64 threads do to the same cameras, streams and recordings whatever they may, for MINUTES, 10 unless told.
storm: MINUTES ?= 10
storm:
	@.ci/setup ci
	@cmake --preset tsan -Wno-dev >/dev/null
	@cmake --build --preset tsan -j $(JOBS) --target zentara_storm
	@ZENTARASDK_ROOT=$$PWD/build/tsan/ ZENTARA_SYSFS=$$PWD/build/tsan/no-devices TSAN_OPTIONS=detect_deadlocks=1:second_deadlock_stack=1 \
	    timeout $$(($(MINUTES) * 60 + 300)) build/tsan/bin/zentara_storm $$(($(MINUTES) * 60))

## Which lines and branches the tests reach on Linux: a summary for each room, and build/coverage/report/index.html; with real
## drivers in virtual machines, unless it is told KERNEL=0.
coverage: KERNEL ?= 1
coverage:
	@.ci/setup coverage
	@[ $(KERNEL) = 0 ] || .ci/setup kernel
	@KERNEL=$(KERNEL) .ci/coverage

## Makes Debian's packages and the zip for Windows, in build/packages/.
packages:
	@.ci/setup package
	@.ci/packages

## Installs them into empty places, builds the examples there and runs them.
test-packages: packages
	@tests/packages/run

## Makes the site of these pages and of all public headers: build/docs/html/index.html.
docs:
	@.ci/setup docs
	@.ci/docs

## Puts every source into the house format.
format:
	@.ci/setup ci
	@clang-format -i $(SOURCES)

## Format, floors and includes, and that the site comes out without a warning, without changing anything; `make tidy` adds clang-tidy, which takes minutes.
lint:
	@.ci/setup ci
	@clang-format --dry-run -Werror $(SOURCES)
	@.ci/check-includes
	@.ci/docs >/dev/null

tidy: lint
	@cmake --preset clang -Wno-dev >/dev/null
	@git ls-files 'utils/*.cpp' 'core/*.cpp' 'io/*.cpp' 'model/*.cpp' 'rom/*.cpp' | grep -v /windows/ \
	    | xargs -P $(JOBS) -n 4 clang-tidy -quiet -p build/clang

## Runs the benchmarks, each beside its peer, prints the ratios and writes docs/performance.md.
bench:
	@.ci/setup bench
	@cmake --preset bench -Wno-dev >/dev/null
	@cmake --build --preset bench -j $(JOBS)
	@cmake --build --preset bench --target performance_page

## What a frame costs on its way from a kernel's driver to a host, beside a plain reader; in a virtual machine that counts instructions.
bench-kernel:
	@.ci/setup kernel
	@cmake --preset gcc -Wno-dev >/dev/null
	@cmake --build --preset gcc -j $(JOBS) --target zentara camera_plugins plain_reader contract_reader host_reader
	@tests/kernel/run --machine "-icount shift=1" --cpu "max,-erms,-fsrm" --job bench bash -c \
	    'modprobe vivid n_devs=1 node_types=0x1 num_inputs=1 input_types=3 && python3 bench/kernel/compare.py'

clean:
	rm -rf build
