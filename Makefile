# The front door. Every target is a line or two that calls a preset or a script; `make help` lists them.

JOBS ?= $(shell nproc)
FUZZ_SECONDS ?= 300
BENCH_FILTER ?= .

export CTEST_PARALLEL_LEVEL ?= $(JOBS)
export FUZZ_SECONDS

.PHONY: help demo build test test-asan test-debug coverage bench crashtest fuzz format lint tidy docs install clean

help: ## this list
	@sed -n 's/^\([a-z-]*\):.*## /\1\t/p' $(MAKEFILE_LIST) | while IFS="$$(printf '\t')" read -r t d; do printf '  make %-11s %s\n' "$$t" "$$d"; done

demo: build ## build, open the shipped results of real simulations and evaluate over them
	scripts/demo

build: ## the library and tvsh, optimised, in build/release
	scripts/install-deps build test
	scripts/build release tvsh

test: ## everything optimised, and all tests
	scripts/install-deps build test
	scripts/build release
	ctest --preset release

test-asan: ## all tests under the address and undefined behaviour sanitizers
	scripts/install-deps build test
	scripts/build asan
	ctest --preset asan

test-debug: ## all tests, unoptimised
	scripts/install-deps build test
	scripts/build debug
	ctest --preset debug

coverage: ## what the tests reach, as build/coverage/index.html
	scripts/install-deps build test coverage
	scripts/build coverage
	ctest --preset coverage
	gcovr --root . --filter 'support/' --filter 'Source/' --filter 'Funcs/' --filter 'Os/' --filter 'include/' \
	    --html-details build/coverage/index.html --print-summary build/coverage

bench: ## the benchmarks; BENCH_FILTER=regex chooses
	scripts/install-deps build bench
	scripts/build bench
	scripts/bench '$(BENCH_FILTER)'

crashtest: ## kills of real writers, at many moments, and a minute of one writer and four readers
	scripts/install-deps build test
	scripts/build release test_crash
	TORVELAN_KILLS=200 TORVELAN_SOAK=60 build/release/tests/test_crash

fuzz: ## each fuzz target for FUZZ_SECONDS (300)
	scripts/install-deps build fuzz
	scripts/build fuzz
	scripts/fuzz

format: ## clang-format over the C++ of the tree
	scripts/install-deps lint
	scripts/format

lint: ## formatting and the direction of includes
	scripts/install-deps lint
	scripts/format --check
	scripts/check-includes

tidy: ## clang-tidy over the whole tree; takes minutes
	scripts/install-deps build test lint
	scripts/build release
	run-clang-tidy -quiet -p build/release -j $(JOBS) '^$(CURDIR)/(support|Source|Funcs|Os|tools)/'

docs: build ## run the examples of the documents, follow their links
	scripts/check-docs build/release

install: build ## to DESTDIR and PREFIX (/usr/local)
	cmake --install build/release --prefix $(or $(PREFIX),/usr/local)

clean: ## remove everything built
	rm -rf build
