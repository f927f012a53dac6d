# make        builds
# make run    opens the installer; without a display, make demo
# make test   runs every test
# make demo   the whole installation with real clicks, a screenshot a step
# make bench  what things cost
# Each sets up this machine first, if something is missing.

PRESET := release
APP := build/Orvane Installer.app

.PHONY: all setup run test demo bench tidy format sanitize macos-check clean

all: setup
	@cmake --preset $(PRESET) --log-level=WARNING >/dev/null
	@cmake --build --preset $(PRESET)

setup:
	@tools/setup.sh

run: all
	@tools/run.sh "$(APP)"

test: all
	@ctest --preset $(PRESET) -j 2

demo: all
	@tools/demo.sh "$(APP)" build/demo

bench: all
	@build/release/bench/log_follow
	@if [ -n "$$DISPLAY" ]; then build/release/bench/first_frame build/release/bench/bare_window "$(APP)/Contents/MacOS/Orvane Installer"; \
	else xvfb-run -a -s '-screen 0 1280x1024x24' \
	  build/release/bench/first_frame build/release/bench/bare_window "$(APP)/Contents/MacOS/Orvane Installer"; fi

# The same tests under the address, undefined-behaviour and thread sanitizers.
sanitize: setup
	cmake --preset asan && cmake --build --preset asan && ctest --preset asan
	cmake --preset tsan && cmake --build --preset tsan && ctest --preset tsan -L unit

tidy: all
	@tools/lint.sh

format:
	@git ls-files '*.cpp' '*.h' '*.mm' ':!tools/macos-sdk' | xargs clang-format -i

macos-check: setup
	@tools/macos-check.sh

clean:
	rm -rf build
