# make run    opens the installer; without a display, make demo
# make test   runs every test
# make check  format, clang-tidy, shellcheck, qmllint, sanitized unit tests
# make demo   the whole installation with real clicks, a screenshot a step
# make bench  what things cost, as a table and in build/bench.json; six minutes
# make fuzz   every fuzz target for a minute
# make macos-app    the whole application for macOS, made on Linux
# make macos-check  the macOS side and its tests, compiled and analysed on Linux
# make soak   millions of simulated installations, from another seed each time
# make faults puts small faults into the core, and shows which the unit tests see
# Each of these sets up this machine first, if something is missing.
# make        builds, and installs nothing
# make setup  sets up this machine

PRESET := release
APP := build/Orvane Installer.app

.PHONY: all setup run test check demo reference bench fuzz format sanitize macos-app macos-check clean soak faults

all:
	@tools/setup.sh --check
	@cmake --preset $(PRESET) --log-level=WARNING >/dev/null
	@cmake --build --preset $(PRESET)

setup:
	@tools/setup.sh

# What these targets need is set up before all of them.
run test check demo reference bench sanitize: setup
run test demo reference bench: all

run:
	@tools/run.sh "$(APP)"

test:
	@ctest --preset $(PRESET) -j 2

demo:
	@tools/demo.sh "$(APP)" build/demo

# Takes the screens as they are now for the pictures that the tests compare with.
reference:
	@cmake --build --preset $(PRESET) --target reference

bench:
	@bench/bench.py

# SEED and SCHEDULES choose others.
soak: all
	@build/release/tests/simulation_test --seed $${SEED:-$$(date +%s)000000} --schedules $${SCHEDULES:-3000000}

faults:
	@tests/faults/run.py

# The same tests under the address, undefined-behaviour and thread sanitizers. The
# toolkit is not built with the last one, which ignores what it does.
sanitize:
	cmake --preset asan && cmake --build --preset asan && ctest --preset asan
	cmake --preset tsan && cmake --build --preset tsan && ctest --preset tsan

check:
	@tools/check.sh

# Every fuzz target for a minute, from the corpus in the repository. What it finds
# on the way stays in build/fuzz; an input that fails is kept there as well.
FUZZ_TARGETS := admin_script_source install_log_chunk property_list_bytes preferences input_source_state
FUZZ_SECONDS := 60

fuzz: setup
	@cmake --preset fuzz --log-level=WARNING >/dev/null
	@cmake --build --preset fuzz --target $(FUZZ_TARGETS:%=fuzz_%)
	@for target in $(FUZZ_TARGETS); do \
	  found=build/fuzz/found/$$target; mkdir -p $$found; \
	  ASAN_OPTIONS=detect_leaks=0 build/fuzz/tests/fuzz/fuzz_$$target -max_total_time=$(FUZZ_SECONDS) \
	    -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 -artifact_prefix=$$found- \
	    $$found tests/fuzz/corpus/$$target 2>$$found.log || { tail -n 40 $$found.log; exit 1; }; \
	  echo "$$target: $$(grep -o 'number_of_executed_units: [0-9]*' $$found.log | grep -o '[0-9]*$$') inputs"; \
	done

format:
	@git ls-files '*.cpp' '*.h' '*.mm' ':!tools/macos-sdk' | xargs clang-format -i

macos-app macos-check: setup

macos-app:
	@tools/macos-app.sh

macos-check:
	@tools/macos-check.sh

clean:
	rm -rf build
