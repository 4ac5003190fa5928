# Thin wrapper over CMake. Each target configures its own build folder under build/.
JOBS ?= $(shell nproc)
CMAKE_COMMON = -DNUVO_WERROR=ON

.PHONY: all test sanitize tsan demo bench fuzz fuzz-run format deps clean

# Every build target first installs the Debian packages it needs, when missing.
all: deps
	cmake -S . -B build/release -DCMAKE_BUILD_TYPE=Release $(CMAKE_COMMON)
	cmake --build build/release -j$(JOBS)

# Release build with assertions kept, then every test.
test: all
	ctest --test-dir build/release --output-on-failure -j$(JOBS)

# AddressSanitizer + UndefinedBehaviorSanitizer build, then every test.
sanitize: deps
	cmake -S . -B build/sanitize -DCMAKE_BUILD_TYPE=Sanitize $(CMAKE_COMMON)
	cmake --build build/sanitize -j$(JOBS)
	ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
	  ctest --test-dir build/sanitize --output-on-failure -j$(JOBS)

# ThreadSanitizer build with clang and LLVM's OpenMP runtime, then the tests of the
# multithreaded family.
tsan: deps
	CC=clang CXX=clang++ cmake -S . -B build/tsan -DCMAKE_BUILD_TYPE=Tsan -DNUVO_WERROR=OFF
	cmake --build build/tsan -j$(JOBS) --target parallel_tests
	TSAN_OPTIONS="halt_on_error=1 ignore_noninstrumented_modules=1" build/tsan/tests/parallel_tests

# The examples' training images and conditioning points, then the 2D example run
# and its realizations and training image drawn as PNG in examples/channels2d/output/
# (connected.png: the wells of connected.in ringed on its first realization),
# and the realizations' statistics compared with the training image's.
NUVOSIM = build/release/apps/nuvosim
CHANNELS = examples/channels2d
demo: all
	$(NUVOSIM) generate channels $(CHANNELS)/ti.gslib --nx 250 --ny 250 --seed 1
	$(NUVOSIM) generate channels $(CHANNELS)/reference.gslib --nx 200 --ny 200 --seed 7
	$(NUVOSIM) sample $(CHANNELS)/reference.gslib 25 $(CHANNELS)/points.txt --seed 3
	$(NUVOSIM) generate lenses examples/lenses3d/ti.gslib --nx 60 --ny 60 --nz 20 --seed 2
	$(NUVOSIM) run $(CHANNELS)/channels2d.in --force
	$(NUVOSIM) run $(CHANNELS)/turned.in --force
	$(NUVOSIM) run $(CHANNELS)/sand45.in --force
	$(NUVOSIM) run $(CHANNELS)/blocks.in --force
	$(NUVOSIM) run $(CHANNELS)/connected.in --force
	$(NUVOSIM) run $(CHANNELS)/pyramid.in --force
	$(NUVOSIM) run $(CHANNELS)/nopyramid.in --force
	$(NUVOSIM) render $(CHANNELS)/ti.gslib $(CHANNELS)/output/ti.png
	$(NUVOSIM) render $(CHANNELS)/output/turned_real00000.gslib $(CHANNELS)/output/turned.png
	$(NUVOSIM) render $(CHANNELS)/output/sand45_real00000.gslib $(CHANNELS)/output/sand45.png
	$(NUVOSIM) render $(CHANNELS)/output/blocks_real00000.gslib $(CHANNELS)/output/blocks.png
	$(NUVOSIM) render $(CHANNELS)/output/connected_real00000.gslib $(CHANNELS)/output/connected.png \
	  --mark $(CHANNELS)/wells.txt
	$(NUVOSIM) render $(CHANNELS)/output/pyramid_real00000.gslib $(CHANNELS)/output/pyramid.png
	$(NUVOSIM) render $(CHANNELS)/output/nopyramid_real00000.gslib $(CHANNELS)/output/nopyramid.png
	for r in 00000 00001 00002; do \
	  $(NUVOSIM) render $(CHANNELS)/output/channels_real$$r.gslib \
	    $(CHANNELS)/output/channels_real$$r.png || exit 1; \
	done
	$(NUVOSIM) analyze $(CHANNELS)/ti.gslib $(CHANNELS)/output/channels_real0000*.gslib \
	  --csv $(CHANNELS)/output/analysis.csv

bench: deps
	cmake -S . -B build/bench -DCMAKE_BUILD_TYPE=Release -DNUVO_ASSERTIONS=OFF \
	  -DNUVO_BUILD_TESTS=OFF -DNUVO_BUILD_BENCH=ON
	cmake --build build/bench -j$(JOBS)
	build/bench/bench/nuvo_bench

# libFuzzer targets, built with clang.
fuzz: deps
	CC=clang CXX=clang++ cmake -S . -B build/fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	  -DNUVO_BUILD_TESTS=OFF -DNUVO_BUILD_FUZZ=ON -DBUILD_SHARED_LIBS=OFF
	cmake --build build/fuzz -j$(JOBS)

# Runs every fuzzer for FUZZ_TIME seconds from its seed corpus; new inputs are kept
# in build/fuzz/corpus/, crashes in build/fuzz/.
FUZZ_TIME ?= 150
FUZZ_READERS = gslib vtk pgm ppm binary pointset blockdata siminput_ascii
fuzz-run: fuzz
	for r in $(FUZZ_READERS); do \
	  mkdir -p build/fuzz/corpus/$$r && \
	  build/fuzz/fuzz/fuzz_$$r build/fuzz/corpus/$$r fuzz/corpus/$$r \
	    -max_total_time=$(FUZZ_TIME) -rss_limit_mb=2048 -max_len=4096 \
	    -artifact_prefix=build/fuzz/$$r- || exit 1; \
	done

format:
	git ls-files '*.c' '*.cpp' '*.h' '*.hpp' | xargs clang-format -i

# Installs the Debian packages the build and the tests need (CI runs it first).
deps:
	cmake/install-deps.sh

clean:
	rm -rf build
