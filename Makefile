# The two commands of the README, and what they are made of. Everything is built in build/ by CMake's presets.

.DEFAULT_GOAL := help
.PHONY: help demo test fuzz coverage test-targets test-memory test-verdicts test-slurm test-kills mutate bench bench-arm bench-line package release configured packages test-faults

help:
	@echo "make demo           install what is missing, build, calibrate and correct a simulated module, show the result"
	@echo "make test           install what is missing, build, run every test"
	@echo "make fuzz           run every fuzz target for a minute; SECONDS=600 for ten, ENGINE=afl with AFL++"
	@echo "make coverage       build once more, and tell which share of the branches the tests take"
	@echo "make test-targets   run the tests on every processor that Debian cross-compiles for, and compare answers and written files"
	@echo "make test-memory    look at every exported function with MemorySanitizer and with valgrind, in about five minutes"
	@echo "make test-verdicts  try every verdict of the check command at 13 megapixels"
	@echo "make test-kills     kill a batch of 10,000 modules a hundred times, and compare with an undisturbed one"
	@echo "make test-faults    kill every command that writes at 300 random moments, and fail each of its system calls"
	@echo "make test-slurm     run a lot over a Slurm of two nodes on this machine, and lose one of them"
	@echo "make mutate         change the library in 80 small ways and the tool in 40, one at a time, and tell what share the tests catch"
	@echo "make bench          install what is missing, build, time every kernel and function against its plain form and its peers, each"
	@echo "                    command against a copy of its file; RENEW=1 writes the latter into docs/performance.md"
	@echo "make bench-arm      count the instructions of the corrections on ARM; RENEW=1 writes them into docs/performance.md"
	@echo "make bench-line     measure what a line of modules costs; RENEW=1 writes it into docs/scale.md"
	@echo "make package        install what is missing, make Debian packages in build/package, check them"

packages:
	@cmake/install-packages.sh build

configured: packages
	@cmake --preset release -Wno-dev > build.log 2>&1 || { cat build.log; rm -f build.log; exit 1; }; rm -f build.log

release: configured
	@cmake --build --preset release

demo: configured
	@cmake --build --preset release --target zerklsc_tool
	@tool/demo.sh build/release/tool/zerklsc demo

test: release
	@ctest --preset release -j "$$(nproc)"

fuzz: fuzz_preset = $(if $(filter afl,$(ENGINE)),fuzz-afl,fuzz)
fuzz: packages
	@cmake/install-packages.sh ci $(if $(filter afl,$(ENGINE)),afl)
	@cmake --preset $(fuzz_preset) > /dev/null
	@cmake --build --preset $(fuzz_preset) --target fuzzers
	@fuzz/run.sh $(or $(ENGINE),libfuzzer) build/$(fuzz_preset) $(or $(SECONDS),60)

coverage: packages
	@cmake/install-packages.sh ci coverage
	@cmake --preset coverage > /dev/null
	@cmake --build --preset coverage
	@rm -rf build/coverage/profiles
	@ctest --preset coverage -j "$$(nproc)"
	@tests/coverage.py build/coverage

test-targets: packages
	@cmake/install-packages.sh ci targets
	@set -e; for preset in arm i686 aarch64 s390x; do \
	    cmake --preset "$$preset" > /dev/null; cmake --build --preset "$$preset"; ctest --preset "$$preset" -j "$$(nproc)"; done
	@QEMU_CPU=cortex-a15,neon=off ctest --preset arm -j "$$(nproc)"
	@tests/answers/everywhere.sh
	@cmake --preset release > /dev/null
	@cmake --build --preset release --target zerklsc_tool
	@tests/tool/everywhere.sh build/release/tool/zerklsc

test-memory: packages
	@cmake/install-packages.sh ci memory
	@cmake --preset msan > /dev/null
	@cmake --build --preset msan
	@ctest --preset msan
	@cmake --preset release > /dev/null
	@cmake --build --preset release --target zerklsc_answers
	@valgrind --quiet --error-exitcode=1 build/release/tests/answers/zerklsc_answers tests/answers/answers.txt

test-verdicts: configured
	@cmake --build --preset release --target zerklsc_tool
	@tests/tool/verdicts.py --tool build/release/tool/zerklsc --width 4208 --height 3120
	@tests/tool/verdicts.py --tool build/release/tool/zerklsc --modules 200

test-kills: configured
	@cmake --build --preset release --target zerklsc_tool
	@tests/tool/batch_line.py --tool build/release/tool/zerklsc --modules 10000 --kills 100

test-faults: configured
	@cmake --build --preset release --target zerklsc_tool fault_shim
	@tests/tool/faults.py --tool build/release/tool/zerklsc --shim build/release/tests/tool/fault_shim.so --kills 300

test-slurm: configured
	@cmake/install-packages.sh slurm
	@cmake --build --preset release --target zerklsc_tool
	@tests/scale/slurm.py --tool build/release/tool/zerklsc

mutate: release
	@tests/mutate.py --build build/release --count 80 src
	@tests/mutate.py --build build/release --count 40 --seconds 40 tool

bench: packages
	@cmake/install-packages.sh bench
	@cmake --preset release > /dev/null
	@cmake --build --preset release
	@build/release/bench/zerklsc_bench --bench --functions --memory
	@bench/file_cost.py --tool build/release/tool/zerklsc $(if $(RENEW),--renew docs/performance.md)

bench-arm: packages
	@cmake/install-packages.sh arm
	@set -e; for preset in arm aarch64; do \
	    cmake --preset "$$preset" > /dev/null; cmake --build --preset "$$preset" --target zerklsc_correct_once; done
	@bench/arm_counts.py --arm build/arm --aarch64 build/aarch64 $(if $(RENEW),--renew docs/performance.md)

bench-line: configured
	@cmake/install-packages.sh bench
	@cmake --build --preset release --target zerklsc_tool
	@bench/line_cost.py --tool build/release/tool/zerklsc $(if $(RENEW),--renew docs/scale.md)

package:
	@cmake/install-packages.sh build package
	@tests/install/package.sh "$(CURDIR)" "$(CURDIR)/build/package"
