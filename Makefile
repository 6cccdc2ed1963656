# The two commands: `make run` and `make test`. `make bench` runs the benchmarks;
# `make install` (PREFIX, DESTDIR) and `make package` (a .deb) install the program.
BUILD      ?= build
BENCHBUILD ?= build-release
JOBS       ?= $(shell nproc)
# A compiler cache, when the machine has one, makes rebuilds of other checkouts cheap.
LAUNCHER   := $(if $(shell command -v ccache 2>/dev/null),-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)

.PHONY: run test bench build deps clean fuzz test-sanitize coverage install package

deps:
	@bash scripts/install-deps.sh

$(BUILD)/build.ninja: | deps
	cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo $(LAUNCHER)

build: deps $(BUILD)/build.ninja
	cmake --build $(BUILD) -j $(JOBS)

run: build
	@bash scripts/run.sh $(BUILD)/src/app/orvane

test: build
	cd $(BUILD) && QT_QPA_PLATFORM=offscreen ctest -j $(JOBS) --output-on-failure

# The programs, help documents, launcher, metainfo, icon, manual pages and samples.
PREFIX ?= /usr/local
install: build
	DESTDIR="$(DESTDIR)" cmake --install $(BUILD) --prefix $(PREFIX)

# A .deb of the same files under /usr, with the Debian packages it needs at run time.
package: build
	cmake --build $(BUILD) --target package
	@ls $(BUILD)/*.deb

bench: deps
	cmake -S . -B $(BENCHBUILD) -G Ninja -DCMAKE_BUILD_TYPE=Release $(LAUNCHER)
	cmake --build $(BENCHBUILD) -j $(JOBS) --target benchmarks
	@for b in $(BENCHBUILD)/bench/*_bench; do echo "== $$b"; $$b || exit 1; done

clean:
	rm -rf $(BUILD) $(BENCHBUILD)

# Fuzzing with clang's libFuzzer, a build of its own: FUZZ_SECONDS per target.
FUZZBUILD    ?= build-fuzz
FUZZ_SECONDS ?= 60
FUZZ_TARGETS ?=
fuzz:
	@bash scripts/install-fuzz-deps.sh
	cmake -S fuzz -B $(FUZZBUILD) -G Ninja -DCMAKE_CXX_COMPILER=clang++
	cmake --build $(FUZZBUILD) -j $(JOBS)
	@bash fuzz/run.sh $(FUZZBUILD) $(FUZZ_SECONDS) $(FUZZ_TARGETS)

# The whole suite built with AddressSanitizer and UndefinedBehaviorSanitizer; any
# report fails the test that met it.
SANBUILD ?= build-sanitize
test-sanitize: deps
	cmake -S . -B $(SANBUILD) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DORVANE_SANITIZE=ON
	cmake --build $(SANBUILD) -j $(JOBS)
	cd $(SANBUILD) && QT_QPA_PLATFORM=offscreen \
	  ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:strict_string_checks=1 \
	  UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 \
	  LSAN_OPTIONS=suppressions=$(CURDIR)/tests/hardening/lsan.supp:print_suppressions=0 \
	  ctest -j $(JOBS) --output-on-failure

# The whole suite built with coverage counters and run; prints the line coverage of
# src/ as a figure and leaves an HTML report in $(COVBUILD)/coverage/index.html.
COVBUILD ?= build-coverage
coverage:
	@bash scripts/install-deps.sh gcovr
	cmake -S . -B $(COVBUILD) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DORVANE_COVERAGE=ON $(LAUNCHER)
	cmake --build $(COVBUILD) -j $(JOBS)
	find $(COVBUILD) -name '*.gcda' -delete
	cd $(COVBUILD) && QT_QPA_PLATFORM=offscreen ctest -j $(JOBS) --output-on-failure
	@bash scripts/coverage-report.sh $(COVBUILD)
