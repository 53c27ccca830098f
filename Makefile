# The two commands: `make demo` and `make test`. Each installs the Debian
# packages it needs (as root), configures, builds and runs.
SHELL := /bin/bash
.DEFAULT_GOAL := demo

PACKAGES := cmake ninja-build g++ clang clang-format libclang-rt-14-dev libgtest-dev libgmock-dev \
            libbenchmark-dev qt6-base-dev libpcap-dev time bc \
            dpkg-dev file lintian desktop-file-utils groff-base man-db python3 chromium-headless-shell emscripten
JOBS ?= $(shell nproc)

RELEASE_DIR := build/release
TEST_DIR := build/test

.PHONY: demo report-demo test deps build package package-check clean web web-test

# Installs what is missing; when not root, prints the exact line and stops.
deps:
	@missing=""; for p in $(PACKAGES); do \
	  dpkg-query -W -f='$${Status}' $$p 2>/dev/null | grep -q "install ok installed" || missing="$$missing $$p"; \
	done; \
	if [ -n "$$missing" ]; then \
	  if [ "$$(id -u)" != 0 ]; then \
	    echo "Missing packages. Run as root:"; \
	    echo "  apt-get update && apt-get install -y$$missing"; \
	    exit 1; \
	  fi; \
	  echo "Installing:$$missing"; \
	  apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq$$missing >/dev/null; \
	fi

build: deps
	cmake -S . -B $(RELEASE_DIR) -G Ninja -DCMAKE_BUILD_TYPE=Release -DVELMORA_TESTS=OFF >/dev/null
	cmake --build $(RELEASE_DIR) -j $(JOBS)

demo: build
	@mkdir -p build/demo
	$(RELEASE_DIR)/velmora samples/trace.txt build/demo/message.txt
	@echo "---- build/demo/message.txt ----"
	@cat build/demo/message.txt

# The call report of samples/trace.txt and, where a headless Chromium is
# installed, its screenshot with the first call's ladder open (docs/report.png).
report-demo: build
	@mkdir -p build/demo
	$(RELEASE_DIR)/velmora --to report samples/trace.txt build/demo/report.html
	@if command -v chromium-headless-shell >/dev/null || command -v chromium >/dev/null; then \
	  python3 tests/browser/report_browser.py screenshot $(RELEASE_DIR)/velmora samples/trace.txt docs/report.png; \
	else \
	  echo "No headless Chromium (Debian's chromium-headless-shell or chromium): no screenshot."; \
	fi
	@echo "Open build/demo/report.html in a browser."

# Every test, built with AddressSanitizer and UndefinedBehaviorSanitizer and
# warnings as errors; then the fuzz smoke and the check of the .deb packages.
test: deps
	cmake -S . -B $(TEST_DIR) -G Ninja -DCMAKE_BUILD_TYPE=Debug \
	  -DVELMORA_SANITIZE=address,undefined -DVELMORA_WERROR=ON >/dev/null
	cmake --build $(TEST_DIR) -j $(JOBS)
	cd $(TEST_DIR) && ASAN_OPTIONS=detect_leaks=1 ctest --output-on-failure -j $(JOBS)
	$(MAKE) release-test
	$(MAKE) nothreads-test
	$(MAKE) fuzz-smoke
	$(MAKE) package-check
	$(MAKE) web-test

# The tests whose subject is the optimised program itself, on the Release
# build with link-time optimisation: the golden traces, the parallel run
# against one thread, the scanner's warnings and the three-gigabyte line.
RELEASE_TEST_DIR := build/release-test
.PHONY: release-test
release-test: deps
	cmake -S . -B $(RELEASE_TEST_DIR) -G Ninja -DCMAKE_BUILD_TYPE=Release -DVELMORA_DIALOG=OFF \
	  -DVELMORA_WERROR=ON >/dev/null
	cmake --build $(RELEASE_TEST_DIR) -j $(JOBS) --target velmora test_golden test_parallel_run test_error_paths test_cli
	cd $(RELEASE_TEST_DIR) && ctest --output-on-failure -j $(JOBS) -R '^(Traces/Golden|ParallelRun|ErrorPaths|Cli|ScanWarnings)\.'

# The build for platforms without threads (VELMORA_THREADS=OFF: no read
# ahead, write behind or parallel run): velmora on the golden traces.
NOTHREADS_DIR := build/nothreads
.PHONY: nothreads-test
nothreads-test: deps
	cmake -S . -B $(NOTHREADS_DIR) -G Ninja -DCMAKE_BUILD_TYPE=Release -DVELMORA_THREADS=OFF -DVELMORA_TESTS=OFF \
	  -DVELMORA_DIALOG=OFF -DVELMORA_WERROR=ON >/dev/null
	cmake --build $(NOTHREADS_DIR) -j $(JOBS) --target velmora
	@for trace in tests/data/*.in.txt; do \
	  $(NOTHREADS_DIR)/velmora -q -j 4 "$$trace" - | cmp - "$${trace%.in.txt}.expected.txt" || exit 1; \
	done; echo "nothreads: the golden traces as expected"

# The browser page, build/web/velmora.html: the in-memory core compiled
# by Debian's emscripten, one self-contained file. Its tools run on
# node, which finds Debian's JavaScript modules only through NODE_PATH
# where node did not come from Debian.
WEB_DIR := build/web
EMSCRIPTEN_ENV := NODE_PATH=/usr/share/nodejs
# WebAssembly's SIMD (the scanner's SSE2 paths, through emscripten's SSE2
# headers) and bulk memory (memcpy as one instruction): about a tenth faster.
WEB_CXX_FLAGS := -msimd128 -msse2 -mbulk-memory -flto
web: deps
	$(EMSCRIPTEN_ENV) emcmake cmake -S . -B $(WEB_DIR) -G Ninja -DCMAKE_BUILD_TYPE=Release -DVELMORA_WEB=ON \
	  -DVELMORA_THREADS=OFF -DVELMORA_TESTS=OFF -DVELMORA_DIALOG=OFF -DVELMORA_WERROR=ON \
	  "-DCMAKE_CXX_FLAGS=$(WEB_CXX_FLAGS)" "-DCMAKE_EXE_LINKER_FLAGS=$(WEB_CXX_FLAGS)" >/dev/null
	$(EMSCRIPTEN_ENV) cmake --build $(WEB_DIR) -j $(JOBS)
	@echo "Open $(WEB_DIR)/velmora.html in a browser."

# The page in headless Chromium against the velmora that make test built,
# and its speed against the optimised one of release-test.
web-test: web
	cmake -S . -B $(RELEASE_TEST_DIR) -G Ninja -DCMAKE_BUILD_TYPE=Release -DVELMORA_DIALOG=OFF \
	  -DVELMORA_WERROR=ON >/dev/null
	cmake --build $(RELEASE_TEST_DIR) -j $(JOBS) --target velmora >/dev/null
	python3 tests/browser/web_page.py --speed $(RELEASE_TEST_DIR)/velmora $(WEB_DIR)/velmora.html $(TEST_DIR)/velmora \
	  samples/trace.txt tests/data/*.in.txt tests/data/dumps/*.txt || [ $$? = 77 ]

# The Debian packages velmora and zandrel (build/package/*.deb): a Release
# build with Debian's hardening flags, without sanitizers, packed by CPack.
PACKAGE_DIR := build/package
BUILDFLAGS := DEB_BUILD_MAINT_OPTIONS=hardening=+all dpkg-buildflags --get

package: deps
	cmake -S . -B $(PACKAGE_DIR) -G Ninja -DCMAKE_BUILD_TYPE=Release -DVELMORA_TESTS=OFF \
	  -DCMAKE_CXX_FLAGS="$$($(BUILDFLAGS) CPPFLAGS) $$($(BUILDFLAGS) CXXFLAGS)" \
	  -DCMAKE_EXE_LINKER_FLAGS="$$($(BUILDFLAGS) LDFLAGS)" >/dev/null
	cmake --build $(PACKAGE_DIR) -j $(JOBS)
	rm -f $(PACKAGE_DIR)/*.deb
	cd $(PACKAGE_DIR) && cpack -G DEB
	@ls $(PACKAGE_DIR)/*.deb

# The packages unpacked into a scratch root and checked there, then lintian.
package-check: package
	bash packaging/check_package.sh $(PACKAGE_DIR)

# libFuzzer targets (clang, ASan/UBSan): `make fuzz` runs each for
# FUZZ_SECONDS, `make fuzz-smoke` each for a few seconds from the seeds.
FUZZ_DIR := build/fuzz
FUZZ_SECONDS ?= 60
FUZZ_BUILD = cmake -S . -B $(FUZZ_DIR) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
	  -DVELMORA_SANITIZE=address,undefined -DVELMORA_TESTS=OFF -DVELMORA_DIALOG=OFF -DVELMORA_FUZZ=ON \
	  -DVELMORA_WERROR=ON >/dev/null && \
	  cmake --build $(FUZZ_DIR) -j $(JOBS) --target fuzz_targets

.PHONY: fuzz fuzz-smoke

fuzz: deps
	$(FUZZ_BUILD)
	bash fuzz/run.sh $(FUZZ_DIR) $(FUZZ_SECONDS)

fuzz-smoke: deps
	$(FUZZ_BUILD)
	bash fuzz/run.sh --smoke $(FUZZ_DIR) 5

# Throughput against the I/O floor on a generated trace of BENCH_MB
# megabytes, one thread and all cores, then the micro-benchmarks. The
# decoding time is compared with that of release BENCH_BASELINE, built once
# from git (skipped, with a message, where git or the commit is missing).
BENCH_DIR := build/bench
BENCH_MB ?= 128
BENCH_BASELINE ?= 2977c83
BASELINE_DIR := $(BENCH_DIR)/baseline-$(BENCH_BASELINE)

.PHONY: bench bench-baseline

bench: deps bench-baseline
	cmake -S . -B $(BENCH_DIR) -G Ninja -DCMAKE_BUILD_TYPE=Release -DVELMORA_TESTS=OFF -DVELMORA_DIALOG=OFF \
	  -DVELMORA_BENCH=ON >/dev/null
	cmake --build $(BENCH_DIR) -j $(JOBS)
	BENCH_DIR=$(BENCH_DIR)/data BASELINE=$$([ -x $(BASELINE_DIR)/build/velmora ] && echo $(BASELINE_DIR)/build/velmora) \
	  bash bench/run_bench.sh $(BENCH_DIR) $(BENCH_MB) 1 $(JOBS)
	BENCH_DIR=$(BENCH_DIR)/data bash bench/views_bench.sh $(BENCH_DIR) $(BENCH_MB)
	$(BENCH_DIR)/bench/velmora_micro

bench-baseline: deps
	@if [ -x $(BASELINE_DIR)/build/velmora ]; then exit 0; fi; \
	if git rev-parse -q --verify '$(BENCH_BASELINE)^{commit}' >/dev/null 2>&1; then \
	  echo "Building the baseline $(BENCH_BASELINE) in $(BASELINE_DIR)"; \
	  rm -rf $(BASELINE_DIR) && mkdir -p $(BASELINE_DIR)/src && \
	  git archive $(BENCH_BASELINE) | tar -x -C $(BASELINE_DIR)/src && \
	  cmake -S $(BASELINE_DIR)/src -B $(BASELINE_DIR)/build -G Ninja -DCMAKE_BUILD_TYPE=Release \
	    -DVELMORA_TESTS=OFF -DVELMORA_DIALOG=OFF >/dev/null && \
	  cmake --build $(BASELINE_DIR)/build -j $(JOBS) --target velmora >/dev/null; \
	else \
	  echo "No baseline: commit $(BENCH_BASELINE) is not in this repository, decoding times are not compared."; \
	fi

clean:
	rm -rf build
