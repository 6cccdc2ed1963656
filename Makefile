# The two commands: `make run` and `make test`. `make bench` runs the benchmarks.
BUILD      ?= build
BENCHBUILD ?= build-release
JOBS       ?= $(shell nproc)

.PHONY: run test bench build deps clean

deps:
	@bash scripts/install-deps.sh

$(BUILD)/build.ninja: | deps
	cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo

build: deps $(BUILD)/build.ninja
	cmake --build $(BUILD) -j $(JOBS)

run: build
	@bash scripts/run.sh $(BUILD)/src/app/orvane

test: build
	cd $(BUILD) && QT_QPA_PLATFORM=offscreen ctest -j $(JOBS) --output-on-failure

bench: deps
	cmake -S . -B $(BENCHBUILD) -G Ninja -DCMAKE_BUILD_TYPE=Release
	cmake --build $(BENCHBUILD) -j $(JOBS) --target benchmarks
	@for b in $(BENCHBUILD)/bench/*_bench; do echo "== $$b"; $$b || exit 1; done

clean:
	rm -rf $(BUILD) $(BENCHBUILD)
