# Quick start: `make demo` and `make test`. Both install missing Debian packages first.
JOBS ?= $(shell nproc)
BUILD ?= build
DEMO_DIR ?= $(BUILD)/demo-data

.PHONY: all demo test bench fuzz screenshots format clean

all:
	scripts/install-deps
	cmake -S . -B $(BUILD)/release -G Ninja -DCMAKE_BUILD_TYPE=Release -DKORVAN_TESTS=OFF
	cmake --build $(BUILD)/release -j $(JOBS)

demo: all
	rm -rf $(DEMO_DIR)
	$(BUILD)/release/src/app/korvan demo -d $(DEMO_DIR)

test:
	scripts/install-deps
	cmake -S . -B $(BUILD)/asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DKORVAN_SANITIZE=ON
	cmake --build $(BUILD)/asan -j $(JOBS)
	cd $(BUILD)/asan && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 \
	  UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	  ctest --output-on-failure -j $(JOBS) --timeout 900

bench:
	scripts/install-deps bench
	cmake -S . -B $(BUILD)/bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DKORVAN_TESTS=OFF -DKORVAN_BENCH=ON
	cmake --build $(BUILD)/bench -j $(JOBS)
	@for b in $(BUILD)/bench/bench/*_bench; do echo "== $$b"; $$b --benchmark_counters_tabular=true || exit 1; done

fuzz:
	scripts/install-deps fuzz
	CXX=clang++ cmake -S . -B $(BUILD)/fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	  -DKORVAN_TESTS=OFF -DKORVAN_FUZZ=ON
	cmake --build $(BUILD)/fuzz -j $(JOBS)
	@ls $(BUILD)/fuzz/fuzz/*_fuzz

# The desktop program's main views on the demo data, for the README; no display needed.
# The comparison marks prices 10 % from the mean, as a user would set it.
screenshots: demo
	$(BUILD)/release/src/app/korvan config set --user ModulOptions.Preisspiegel_MaxAbweichung 10 \
	  -d $(DEMO_DIR)
	QT_QPA_PLATFORM=offscreen $(BUILD)/release/src/desktop/korvan-desk -d $(DEMO_DIR) \
	  --screenshots docs/screenshots

format:
	find src tests bench fuzz -name '*.cpp' -o -name '*.h' | xargs clang-format -i

clean:
	rm -rf $(BUILD)
