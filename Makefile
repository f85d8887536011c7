# A thin front: everything real is in CMake, its presets and scripts/.
.PHONY: help deps demo check check-everyday install deb coverage fuzz faults counts bench format

help:
	@echo "make demo      install what is missing, build, render examples/ into build/demo/"
	@echo "make check     install what is missing, build all presets, run all tests"
	@echo "make install   build and install into PREFIX (/usr/local)"
	@echo "make deb       make Debian packages in build/deb/"
	@echo "make check-everyday  test them, installing and file managers in a clean system"
	@echo "make coverage  tell how much of each folder's code the tests reach"
	@echo "make fuzz      search each reader of outside bytes for faults, FUZZ_SECONDS each (60)"
	@echo "make faults    let each allocation and system call fail, and judge what comes of it"
	@echo "make counts    count vcpp's instructions, fail where they grew by more than 10 %"
	@echo "make bench     time the hot routines beside what the machine needs at least"
	@echo "make format    lay the sources out as .clang-format says"

deps:
	@scripts/install-deps.sh

demo: deps
	@scripts/demo.sh

check: deps
	@scripts/check.sh

PREFIX ?= /usr/local
install: deps
	@cmake --preset release >/dev/null
	@cmake --build --preset release --target installed
	@cmake --install build/release --prefix "$(PREFIX)"

deb: deps
	@scripts/deb.sh

check-everyday: deps
	@tests/everyday/run.sh

coverage: deps
	@scripts/coverage.sh

fuzz: deps
	@scripts/fuzz.sh

faults: deps
	@scripts/faults.sh

counts: deps
	@scripts/counts.sh

bench: deps
	@scripts/bench.sh

format:
	@git ls-files '*.h' '*.cpp' ':!osl/headers/[!o]*' ':!osl/headers/osl[!_]*' ':!tests/*/data/*' | tr '\n' '\0' | xargs -0 -r clang-format -i
