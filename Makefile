# SPDX-License-Identifier: GPL-3.0-or-later
#
# One command for each thing one does with this project; `make` alone builds. CMake does the work.

SHELL := /bin/bash
.SHELLFLAGS := -euo pipefail -c
.DEFAULT_GOAL := build

JOBS ?= $(shell nproc)
# A warning is an error where the build is judged, and a nuisance where it is tried out.
WERROR := $(if $(filter true 1,$(CI)),ON,OFF)

PROGRAMS := EkWaveEditor ek-wave-editor ekbatch
BIN := build/bin

# configure PRESET OPTIONS; the first release build for `make run` leaves out what only tests need, and a tree that
# has once built the tests goes on building them.
configure = cmake --preset $(1) -DEK_WERROR=$(WERROR) $(2) >/dev/null
build = cmake --build build/$(1) -j $(JOBS) $(2)
programs_only = $(if $(wildcard build/release/CMakeCache.txt),,-DEK_TESTS=OFF -DEK_BENCH=OFF)

.PHONY: help
help: ## what there is
	@grep -hE '^[a-z-]+:.*## ' $(MAKEFILE_LIST) | sed -E 's/^([a-z-]+):.*## /\1\t/' | expand -t 10

.PHONY: build
build: ## the release programs and the module, in build/bin
	scripts/setup.sh run
	$(call configure,release,$(programs_only))
	$(call build,release,--target $(PROGRAMS))

.PHONY: run
run: build ## build, then start the editor with a demo sound; without a display a tour, in build/tour
	scripts/run-demo.sh $(BIN)

.PHONY: test
test: ## build everything and run every test
	scripts/setup.sh test
	$(call configure,release,-DEK_TESTS=ON -DEK_BENCH=ON)
	$(call build,release)
	scripts/run-tests.sh build/release

.PHONY: asan
asan: ## the tests under AddressSanitizer and UndefinedBehaviorSanitizer
	scripts/setup.sh test
	$(call configure,asan)
	$(call build,asan)
	scripts/run-tests.sh build/asan --label-exclude e2e

.PHONY: tsan
tsan: ## the tests under ThreadSanitizer
	scripts/setup.sh test
	$(call configure,tsan)
	$(call build,tsan)
	scripts/run-tests.sh build/tsan --label-exclude 'e2e|screens'

.PHONY: lint
lint: ## layout, floors, sources, clang-tidy
	scripts/setup.sh lint
	scripts/lint.sh

.PHONY: format
format: ## lay all sources out
	scripts/setup.sh lint
	scripts/format-check.sh --fix

.PHONY: bench
bench: ## speed and memory, also in build/bench.txt
	scripts/setup.sh bench
	$(call configure,release,-DEK_TESTS=ON -DEK_BENCH=ON)
	$(call build,release)
	scripts/run-bench.sh $(BIN) | tee build/bench.txt

.PHONY: fuzz
fuzz: ## each fuzzer for FUZZ_SECONDS (60)
	scripts/setup.sh fuzz
	$(call configure,fuzz)
	$(call build,fuzz)
	scripts/run-fuzz.sh build/fuzz/bin $(or $(FUZZ_SECONDS),60)

.PHONY: clean
clean: ## remove everything that was built
	rm -rf build
