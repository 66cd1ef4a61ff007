# Two commands do everything on a fresh Debian machine:
#   make run    builds, then starts the interpreter (make run ARGS=prog.bas runs a program)
#   make test   builds, then runs every test: the layering of the sources, unit, end-to-end,
#               real terminal, process, sanitizers, a short run of every fuzz target, and
#               the web page in a headless browser
#   make web    builds the web page into web/dist; make web-serve serves it on localhost
BUILD      ?= build
ASAN_BUILD ?= build-asan
FUZZ_BUILD ?= build-fuzz
WEB_BUILD  ?= build-web
PORT       ?= 8000
FUZZ_SECONDS ?= 6
JOBS       ?= $(shell nproc 2>/dev/null || echo 2)
ARGS       ?=
PREFIX     ?= /usr/local
DESTDIR    ?=

# Debian packages: what the interpreter needs to build and run (make run), and
# what the tests add (make test). The first make run installs only the former.
BUILD_PKGS := g++ cmake make libncurses-dev libsdl2-dev
TEST_PKGS  := libgtest-dev tmux xvfb groff-base x11-apps xdotool libx11-dev clang libclang-rt-14-dev \
              dpkg-dev lintian
OPT_PKGS   := ccache libbenchmark-dev
# Other interpreters that make bench compares with; a missing one only empties its column.
PEER_PKGS  := yabasic brandy bwbasic lua5.4 luajit
# The web page: the compiler to WebAssembly, the browser its test drives and the Python of
# its local server. Node.js and npm (Debian's, unless the machine has its own) bring the
# terminal widget and the browser test's driver into web/node_modules.
WEB_PKGS   := emscripten binaryen
WEB_TEST_PKGS := chromium python3

.PHONY: all run test deps test-deps peers build build-tests checks layers unit e2e terminal gdi \
	process asan fuzz bench docs install package package-test mutate format clean \
	web web-deps web-node web-serve web-test web-stage web-bench

all: build

# Installs (as root) or names the missing packages of the first list; a missing one
# of the second list fails the target (the others only lose a feature or a test).
define install_pkgs
	@missing=""; for p in $(1); do \
	  dpkg -s $$p >/dev/null 2>&1 || missing="$$missing $$p"; done; \
	if [ -n "$$missing" ]; then \
	  if [ "$$(id -u)" = 0 ] && command -v apt-get >/dev/null; then \
	    echo "Installing:$$missing"; \
	    apt-get -o DPkg::Lock::Timeout=600 update -qq && \
	    DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=600 install -y -qq $$missing >/dev/null \
	      || { echo "apt-get could not install:$$missing"; exit 1; }; \
	  else \
	    echo "Missing Debian packages:$$missing"; \
	    echo "Install them with: sudo apt-get install$$missing"; \
	    for p in $(2); do case " $$missing " in *" $$p "*) exit 1;; esac; done; \
	  fi; \
	fi
endef

deps:
	$(call install_pkgs,$(BUILD_PKGS),g++ cmake make)

test-deps:
	$(call install_pkgs,$(BUILD_PKGS) $(TEST_PKGS) $(OPT_PKGS),g++ cmake make libgtest-dev)

$(BUILD)/CMakeCache.txt:
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release

# The interpreter alone: what make run needs.
build: deps $(BUILD)/CMakeCache.txt
	cmake --build $(BUILD) -j$(JOBS) --target basic

# Everything the tests run; configured again so that GoogleTest, installed after
# a first make run, is found.
build-tests: test-deps $(BUILD)/CMakeCache.txt
	cmake -S . -B $(BUILD) >/dev/null
	cmake --build $(BUILD) -j$(JOBS)

run: build
	$(BUILD)/basic $(ARGS)

# Every #include goes to its own folder or a lower one (README, "Source layout").
layers:
	tools/layers.sh

# Rules over the repository itself: the layering, tests end only their own processes,
# and make run needs only the interpreter's packages.
checks: layers
	tests/checks/kill_by_id.sh
	tests/checks/make_run.sh

unit: build-tests
	cd $(BUILD) && ctest --output-on-failure

e2e: build-tests
	tests/run_e2e.sh $(BUILD)/basic
	tests/renumber_programs.sh $(BUILD)/basic
	tests/command_line.sh $(BUILD)/basic
	tests/sandbox.sh $(BUILD)/basic
	tests/examples.sh $(BUILD)/basic

terminal: build-tests
	tests/terminal/editor_tmux.sh $(BUILD)/line_echo
	tests/terminal/shell_tmux.sh $(BUILD)/basic
	tests/terminal/history_tmux.sh $(BUILD)/basic
	tests/terminal/signals_tmux.sh $(BUILD)/basic
	tests/terminal/commands_tmux.sh $(BUILD)/basic

# The example programs' pictures, drawn headless, against their references;
# real windows on an Xvfb server of the test's own.
gdi: build-tests
	tests/gdi/examples.sh $(BUILD)
	tests/gdi/window_xvfb.sh $(BUILD)

# Signals, lost output, endless input and memory limits on the real process; data
# files, program files and saves under SIGKILL, LOCK between processes, a size limit.
process: build-tests
	tests/process/process_tests.sh $(BUILD)/basic
	tests/process/files_tests.sh $(BUILD)/basic

# The unit, end-to-end, process and window suites under address and undefined-behaviour
# sanitizers.
asan: test-deps
	cmake -S . -B $(ASAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DBASIC_SANITIZE=ON
	cmake --build $(ASAN_BUILD) -j$(JOBS)
	cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=1 ctest --output-on-failure
	ASAN_OPTIONS=detect_leaks=1 tests/run_e2e.sh $(ASAN_BUILD)/basic
	ASAN_OPTIONS=detect_leaks=1 tests/process/process_tests.sh $(ASAN_BUILD)/basic
	ASAN_OPTIONS=detect_leaks=1 LSAN_OPTIONS=suppressions=$(CURDIR)/tests/gdi/lsan.supp \
	  sh -c 'tests/gdi/examples.sh $(ASAN_BUILD) && tests/gdi/window_xvfb.sh $(ASAN_BUILD)'

# libFuzzer targets (clang): the kept findings replayed, then FUZZ_SECONDS of each.
fuzz: test-deps
	@command -v clang++ >/dev/null || { echo "SKIP fuzz: clang++ is not installed"; exit 0; }; \
	cmake -S . -B $(FUZZ_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
	  -DBASIC_FUZZ=ON -DBASIC_TESTS=OFF >/dev/null && \
	cmake --build $(FUZZ_BUILD) -j$(JOBS) --target fuzz_targets && \
	tests/fuzz/run_fuzz.sh $(FUZZ_BUILD) $(FUZZ_SECONDS)

test: checks unit e2e terminal gdi docs package-test process asan fuzz web-stage

peers:
	@missing=""; for p in $(PEER_PKGS); do dpkg -s $$p >/dev/null 2>&1 || missing="$$missing $$p"; done; \
	if [ -n "$$missing" ]; then \
	  if [ "$$(id -u)" = 0 ] && command -v apt-get >/dev/null; then \
	    echo "Installing:$$missing"; \
	    { apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq $$missing >/dev/null; } \
	      || echo "apt-get could not install:$$missing; their columns stay empty"; \
	  else \
	    echo "Not installed:$$missing; their columns stay empty (sudo apt-get install$$missing)"; \
	  fi; \
	fi

# Micro-benchmarks, then the benchmark programs against the other interpreters; the tables
# go to bench/RESULTS.md. RUNS=n changes the number of runs per median (5).
bench: test-deps peers
	cmake -S . -B build-bench -DCMAKE_BUILD_TYPE=Release -DBASIC_BENCH=ON
	cmake --build build-bench -j$(JOBS)
	build-bench/basic_bench
	bench/compare.sh build-bench/basic

# Installs the interpreter and its manual page under $(DESTDIR)$(PREFIX).
install: build
	install -d "$(DESTDIR)$(PREFIX)/bin" "$(DESTDIR)$(PREFIX)/share/man/man1"
	install -m 755 $(BUILD)/basic "$(DESTDIR)$(PREFIX)/bin/basic"
	install -m 644 docs/basic.1 "$(DESTDIR)$(PREFIX)/share/man/man1/basic.1"

# The manual page renders without a warning, and an install into a scratch folder has both files.
docs: build-tests
	@warnings=$$(groff -ww -man -z docs/basic.1 2>&1); \
	  if [ -n "$$warnings" ]; then echo "$$warnings"; exit 1; fi
	@dest=$$(mktemp -d); trap 'rm -rf "$$dest"' EXIT; \
	  $(MAKE) --no-print-directory install DESTDIR="$$dest" PREFIX=/usr >/dev/null && \
	  test -x "$$dest/usr/bin/basic" && test -f "$$dest/usr/share/man/man1/basic.1" && \
	  "$$dest/usr/bin/basic" --version >/dev/null && \
	  echo "docs: manual page renders cleanly; install puts bin/basic and man1/basic.1"

# The Debian package, named with the version: build/velo-basic_VERSION_ARCH.deb.
package: build
	cmake -S . -B $(BUILD) >/dev/null
	cmake --build $(BUILD) -j$(JOBS) --target basic packed_docs
	cd $(BUILD) && cpack -G DEB >/dev/null
	@ls $(BUILD)/velo-basic_*.deb

# The package unpacked and run on its own examples; lintian finds no error.
package-test: test-deps package
	tests/package/deb_test.sh $$(ls -t $(BUILD)/velo-basic_*.deb | head -n 1)

# Mutation testing: FILES (default: changed since origin/main), N mutants per file
# (10), SEED to repeat a run; survivors and the score go to tests/mutation/LAST.md.
N ?= 10
SEED ?=
mutate: test-deps
	python3 tests/mutation/mutate.py --files "$(FILES)" --n $(N) $(if $(SEED),--seed $(SEED)) --jobs $(JOBS)

format:
	clang-format -i $$(git ls-files '*.cpp' '*.h')

# The interpreter compiled to WebAssembly by Debian's emscripten, with the page around
# it, in web/dist. emscripten's optimizer finds Debian's acorn through NODE_PATH.
web web-bench $(WEB_BUILD)/CMakeCache.txt: export NODE_PATH := /usr/share/nodejs

web-deps:
	$(call install_pkgs,$(WEB_PKGS),$(WEB_PKGS))
	@command -v npm >/dev/null || $(MAKE) --no-print-directory web-node

web-node:
	$(call install_pkgs,nodejs npm,nodejs npm)

web/node_modules/.package-lock.json: web/package.json web/package-lock.json
	cd web && npm ci --no-audit --no-fund

$(WEB_BUILD)/CMakeCache.txt:
	emcmake cmake -S . -B $(WEB_BUILD) -DCMAKE_BUILD_TYPE=Release -DBASIC_TESTS=OFF >/dev/null

web: web-deps web/node_modules/.package-lock.json $(WEB_BUILD)/CMakeCache.txt
	cmake --build $(WEB_BUILD) -j$(JOBS) --target basic
	node web/build.js $(WEB_BUILD)

# Serves web/dist on http://127.0.0.1:$(PORT)/ with the headers SharedArrayBuffer needs.
web-serve: web
	$(call install_pkgs,python3,python3)
	python3 web/serve.py $(PORT) web/dist

# The page in headless Chromium: typing, LIST, RUN with INPUT, a canvas, SAVE across a reload.
web-test: web
	$(call install_pkgs,$(WEB_TEST_PKGS),$(WEB_TEST_PKGS))
	node tests/web/page_test.js web/dist

# make test's web stage: web-test, skipped with the reason only where Chromium cannot be
# installed (not root, or apt-get cannot reach it).
web-stage:
	@dpkg -s chromium >/dev/null 2>&1 || [ "$$(id -u)" != 0 ] || ! command -v apt-get >/dev/null || \
	  { apt-get -o DPkg::Lock::Timeout=600 update -qq && DEBIAN_FRONTEND=noninteractive \
	    apt-get -o DPkg::Lock::Timeout=600 install -y -qq chromium >/dev/null; } || true
	@if dpkg -s chromium >/dev/null 2>&1; then $(MAKE) --no-print-directory web-test; \
	else echo "SKIP web-test: Chromium is not installed and cannot be installed here" \
	  "(sudo apt-get install chromium, then make web-test)"; fi

# The benchmark programs in the page against the native build, and two of them with the
# interpreter built to wait through Asyncify instead; the tables go to bench/WEB_RESULTS.md.
web-bench: web build
	$(call install_pkgs,$(WEB_TEST_PKGS),$(WEB_TEST_PKGS))
	emcmake cmake -S . -B $(WEB_BUILD)-asyncify -DCMAKE_BUILD_TYPE=Release -DBASIC_TESTS=OFF \
	  -DBASIC_WEB_ASYNCIFY=ON >/dev/null
	cmake --build $(WEB_BUILD)-asyncify -j$(JOBS) --target basic
	node web/build.js $(WEB_BUILD)-asyncify $(WEB_BUILD)-asyncify/dist
	ASYNCIFY_DIST=$(WEB_BUILD)-asyncify/dist node bench/web_bench.js web/dist $(BUILD)/basic

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(FUZZ_BUILD) $(WEB_BUILD) $(WEB_BUILD)-asyncify build-bench web/dist
