# Quillo developer entry points. Every target installs missing packages first.
#   make run    build, open the Quillo window on the default library (built-in content on first run)
#   make screenshots  build, then save pictures of the screens to build/screenshots/
#   make test   build and run every test: plain, Address+UB sanitizer, RealtimeSanitizer
#   make bench  build optimised and run the benchmarks
JOBS ?= $(shell nproc)
BUILD := build
ASAN_BUILD := build-asan
RTSAN_BUILD := build-rtsan
CTEST := ctest --output-on-failure --timeout 900 -j $(JOBS)

.PHONY: all bootstrap build build-asan build-rtsan run screenshots test bench clean

all: build

bootstrap:
	@./scripts/bootstrap

build: bootstrap
	@cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQUILLO_WERROR=ON >/dev/null
	@cmake --build $(BUILD) -j $(JOBS)

build-asan: bootstrap
	@cmake -S . -B $(ASAN_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DQUILLO_SANITIZE=address,undefined -DQUILLO_BENCH=OFF -DQUILLO_WERROR=ON >/dev/null
	@cmake --build $(ASAN_BUILD) -j $(JOBS)

build-rtsan: bootstrap
	@CC=clang-22 CXX=clang++-22 cmake -S . -B $(RTSAN_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQUILLO_RTSAN=ON -DQUILLO_BENCH=OFF -DQUILLO_WERROR=ON >/dev/null
	@cmake --build $(RTSAN_BUILD) -j $(JOBS)

# Without a display there is no window: say so, and play a built-in loop instead.
run: build
	@if [ -n "$$DISPLAY$$WAYLAND_DISPLAY" ]; then \
		./$(BUILD)/bin/quillo; \
	else \
		echo "No display (neither DISPLAY nor WAYLAND_DISPLAY is set): playing \"Easy beat 95\" with quillo-cli instead of opening the window."; \
		./$(BUILD)/bin/quillo-cli play loop "Easy beat 95"; \
	fi

# The screens offscreen at twice the pixel density, on a fresh library each time.
screenshots: build
	@rm -rf $(BUILD)/screenshots $(BUILD)/screenshots-library && mkdir -p $(BUILD)/screenshots-runtime
	@chmod 700 $(BUILD)/screenshots-runtime
	@QT_QPA_PLATFORM=offscreen QT_SCALE_FACTOR=2 QUILLO_AUDIO=null \
		XDG_RUNTIME_DIR=$(CURDIR)/$(BUILD)/screenshots-runtime \
		XDG_CONFIG_HOME=$(CURDIR)/$(BUILD)/screenshots-runtime/config \
		XDG_STATE_HOME=$(CURDIR)/$(BUILD)/screenshots-runtime/state \
		./$(BUILD)/bin/quillo --library $(BUILD)/screenshots-library --screenshot $(BUILD)/screenshots
	@QT_QPA_PLATFORM=offscreen XDG_RUNTIME_DIR=$(CURDIR)/$(BUILD)/screenshots-runtime \
		./$(BUILD)/bin/quillo-kit-shots $(BUILD)/screenshots
	@rm -rf $(BUILD)/screenshots-export-library && QT_QPA_PLATFORM=offscreen QT_SCALE_FACTOR=2 QUILLO_AUDIO=null XDG_RUNTIME_DIR=$(CURDIR)/$(BUILD)/screenshots-runtime XDG_STATE_HOME=$(CURDIR)/$(BUILD)/screenshots-runtime/state \
		./$(BUILD)/bin/quillo-export-shots $(BUILD)/screenshots $(BUILD)/screenshots-export-library

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


clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(RTSAN_BUILD)
