# Quillo developer entry points. Every target installs missing packages first.
#   make run    build, open the default library (built-in content on first run) and play a loop
#   make test   build and run every test: plain, Address+UB sanitizer, RealtimeSanitizer
#   make bench  build optimised and run the benchmarks
#   make screenshots  render the screens offscreen to build/screenshots/*.png
JOBS ?= $(shell nproc)
BUILD := build
ASAN_BUILD := build-asan
RTSAN_BUILD := build-rtsan
CTEST := ctest --output-on-failure --timeout 900 -j $(JOBS)

.PHONY: all bootstrap build build-asan build-rtsan run test bench screenshots clean

all: build

bootstrap:
	@./scripts/bootstrap

build: bootstrap
	@cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
	@cmake --build $(BUILD) -j $(JOBS)

build-asan: bootstrap
	@cmake -S . -B $(ASAN_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DQUILLO_SANITIZE=address,undefined -DQUILLO_BENCH=OFF >/dev/null
	@cmake --build $(ASAN_BUILD) -j $(JOBS)

build-rtsan: bootstrap
	@CC=clang-22 CXX=clang++-22 cmake -S . -B $(RTSAN_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQUILLO_RTSAN=ON -DQUILLO_BENCH=OFF >/dev/null
	@cmake --build $(RTSAN_BUILD) -j $(JOBS)

run: build
	@./$(BUILD)/bin/quillo-cli play loop "Easy beat 95"

# The sanitizer trees run first; the plain tree's CTest summary ends the output.
test: build build-asan build-rtsan
	@echo "== AddressSanitizer + UndefinedBehaviorSanitizer =="
	@cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 $(CTEST)
	@echo "== RealtimeSanitizer =="
	@cd $(RTSAN_BUILD) && $(CTEST) -L realtime
	@echo "== Tests =="
	@cd $(BUILD) && $(CTEST)

bench: build
	@for b in $(BUILD)/bin/bench_*; do echo "== $$b"; $$b --benchmark_counters_tabular=true || exit 1; done

screenshots: build
	@QT_QPA_PLATFORM=offscreen ./$(BUILD)/bin/quillo-kit-shots $(BUILD)/screenshots

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(RTSAN_BUILD)
