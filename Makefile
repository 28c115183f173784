# A thin front over CMakePresets.json. Every target first sees to it that what it needs is installed (scripts/setup).
# One target runs at a time; each of them uses JOBS processors.
.NOTPARALLEL:
.DEFAULT_GOAL := help

JOBS ?= $(shell nproc)
PREFIX ?= /usr/local
FUZZ_SECONDS ?= 60
BENCH_REPETITIONS ?= 3
SOAK_SECONDS ?= 600
SOAK_KILLS ?= 5000

# $(call build,preset[,target...]): configures, with words only if that fails, and builds.
configure = @mkdir -p build && { cmake --preset $(1) >build/$(1)-configure.log 2>&1 || { cat build/$(1)-configure.log; exit 1; }; }
build = $(call configure,$(1)) && cmake --build --preset $(1) --parallel $(JOBS) $(if $(2),--target $(2))
run_tests = ctest --preset $(1) --parallel $(JOBS)

.PHONY: help
help:
	@sed -n 's/^## \?//p' Makefile

##
## make demo           build and show the main job on the files in examples/
## make test           build, and run the whole fast test suite
## make check          everything CI runs: test, and the stages below, in their order
## make bench          build and run the benchmarks, and print a table with what is aimed at
## make docs           the reference of the public headers, in build/docs/html
## make deb            build Debian packages in build/packages: libraries, -dev, command line
## make install        install to PREFIX (/usr/local), below DESTDIR if given
## make uninstall      remove what make install installed, below DESTDIR if given
##
## make setup          install what check needs (scripts/setup build: what a build needs)
## make format         format the sources
## make lint           the same as check-lint
## make fuzz           every fuzz target for FUZZ_SECONDS (60)
## make soak           every fuzz target for SOAK_SECONDS (600); SOAK_KILLS (5000) killed writers of a shared table
## make coverage       which lines and branches of library and platform the unit tests reach, and whether that is enough
## make clean          remove build/
##

.PHONY: setup demo test bench install uninstall docs deb
setup:
	@scripts/setup check

demo:
	@scripts/setup build
	$(call build,release,routeradvt)
	@scripts/demo build/release/bin/routeradvt

test:
	@scripts/setup test
	$(call build,release)
	$(call run_tests,release)

bench:
	@scripts/setup bench
	$(call build,release,routeradvt_bench)
	build/release/bin/routeradvt_bench --benchmark_repetitions=$(BENCH_REPETITIONS) --benchmark_out=build/bench.json \
	  --benchmark_out_format=json --benchmark_display_aggregates_only=true $(BENCH_ARGS)
	@echo
	@scripts/bench-table build/bench.json

install:
	@scripts/setup build
	$(call build,release,RouterPlatform Ipv6RouterAdvt routeradvt)
	cmake --install build/release --prefix $(PREFIX)

uninstall:
	cmake --build build/release --target uninstall

docs:
	@scripts/setup docs
	@rm -rf build/docs && mkdir -p build/docs
	scripts/layers >build/docs/layers.dot
	{ cat docs/Doxyfile; echo EXCLUDE = $$(cat */internal-headers.txt); } | doxygen -
	@echo "the reference is build/docs/html/index.html"

check-docs: docs
	scripts/check-docs

deb:
	@scripts/setup deb
	$(call build,deb)
	@rm -rf build/packages
	@cpack --config build/deb/CPackConfig.cmake -B build/packages >build/cpack.log 2>&1 || { cat build/cpack.log; exit 1; }
	@rm -rf build/packages/_CPack_Packages
	@ls build/packages/*.deb

## The stages of make check, each of which runs on its own:
## check-format        every source is formatted
## check-docs          the reference of the public headers is made without a warning, and what documents name is there
## check-install       what is installed can be built against, by CMake and by pkg-config
## check-abi           the binary interface of the libraries is that of the last release
## check-deb           the Debian packages, inspected, built twice and compared, installed and used in a clean root
## check-bench         the benchmarks run
## check-clang         the tests, built by clang
## check-lint          clang-tidy, and every public header on its own
## check-asan          the tests under AddressSanitizer and UndefinedBehaviorSanitizer
## check-tsan          the tests under ThreadSanitizer
## check-fuzz          replay of the corpus, and every fuzz target for FUZZ_SECONDS
##
.PHONY: check check-format check-docs check-install check-abi check-deb check-bench check-clang check-lint check-asan check-tsan check-fuzz
check:
	+@MAKE='$(MAKE)' .ci/run

check-format:
	@scripts/setup check
	scripts/format --check

check-install:
	@scripts/setup check
	$(call build,release)
	scripts/check-install build/release

check-abi:
	@scripts/setup check
	scripts/check-abi

check-deb:
	@scripts/setup check
	$(call build,deb)
	scripts/check-deb build/deb

check-bench:
	@scripts/setup check
	$(call build,release,routeradvt_bench)
	build/release/bin/routeradvt_bench --benchmark_min_time=0.001 --benchmark_format=json >build/check-bench.json
	@! grep -B 5 '"error_occurred": true' build/check-bench.json
	@grep -c '"run_type": "iteration"' build/check-bench.json | sed 's/$$/ benchmarks ran/'

check-clang check-asan check-tsan: check-%:
	@scripts/setup check
	$(call build,$*)
	$(call run_tests,$*)

check-lint:
	@scripts/setup check
	$(call build,lint)
	scripts/lint build/lint $(JOBS)

check-fuzz fuzz:
	@scripts/setup check
	$(call build,fuzz)
	scripts/fuzz-short $(FUZZ_SECONDS)

.PHONY: soak coverage format lint clean
soak:
	@scripts/setup check
	$(call build,release,platform_tests)
	SHARED_TABLE_KILLS=$(SOAK_KILLS) build/release/bin/platform_tests --gtest_filter='KilledWriters.*'
	$(call build,fuzz)
	scripts/fuzz-short $(SOAK_SECONDS)

coverage:
	@scripts/setup check
	$(call build,coverage)
	scripts/coverage build/coverage

format:
	@scripts/setup check
	scripts/format

lint: check-lint

clean:
	rm -rf build
##
## Variables: JOBS, PREFIX, DESTDIR, BENCH_ARGS, BENCH_REPETITIONS, FUZZ_SECONDS, SOAK_SECONDS, SOAK_KILLS; ROUTERADVT_SETUP=skip installs nothing.
