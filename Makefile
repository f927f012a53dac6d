# make        builds, and installs nothing
# make run    opens the installer; without a display, make demo
# make test   runs every test
# make check  format, clang-tidy, shellcheck, qmllint, sanitized unit tests
# make demo   the whole installation with real clicks, a screenshot a step
# make bench  what things cost, as a table
# make macos  the whole application for macOS, made and checked on Linux
# make format lays the sources out
# make setup  sets up this machine for all of these; each of them sets up what it needs
# make clean

PRESET := release
APP := build/Orvane Installer.app

.PHONY: all setup run test check demo bench macos format clean

all:
	@tools/setup.sh --check
	@cmake --preset $(PRESET) --log-level=WARNING >/dev/null
	@cmake --build --preset $(PRESET)

# What the targets that were asked for need, before all of them.
setup:
	@tools/setup.sh $(MAKECMDGOALS)

run test check demo bench macos format: setup
run test check demo bench: all

run:
	@tools/run.sh "$(APP)"

test:
	@ctest --preset $(PRESET) -j 3

check:
	@tools/check.sh

demo:
	@tools/demo.sh "$(APP)" build/demo

bench:
	@bench/bench.py

macos:
	@tools/macos.sh

format:
	@git ls-files '*.cpp' '*.h' '*.mm' ':!tools/macos-sdk' | xargs clang-format -i

clean:
	rm -rf build
