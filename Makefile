# A thin front: everything real is in CMake, its presets and scripts/.
.PHONY: help deps demo check format

help:
	@echo "make demo    install what is missing, build, render examples/ into build/demo/"
	@echo "make check   install what is missing, build all presets, run all tests"
	@echo "make format  lay the sources out as .clang-format says"

deps:
	@scripts/install-deps.sh

demo: deps
	@scripts/demo.sh

check: deps
	@scripts/check.sh

format:
	@git ls-files '*.h' '*.cpp' | tr '\n' '\0' | xargs -0 -r clang-format -i
