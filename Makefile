# The front door: `make check` and `make demo` work on a fresh Debian machine.
#   make deps    install the Debian packages the build needs (only what is missing)
#   make check   release build + tests, the same tests under ASan/UBSan, and the package consumer
#   make demo    run the wycore command on the bundled example project
#   make bench   run the benchmarks (release build)
#   make fuzz    build the libFuzzer targets with clang-16
#   make install PREFIX=/usr/local

PREFIX ?= /usr/local
JOBS ?= $(shell nproc)
SUDO := $(shell [ "$$(id -u)" = 0 ] || echo sudo)
# libmuparser-dev serves only the expression benchmark, as a yardstick.
PACKAGES := cmake ninja-build g++ pkg-config libgtest-dev googletest libbenchmark-dev libtnt-dev \
            libmuparser-dev
FUZZ_PACKAGES := clang-16 libclang-rt-16-dev
STAGE := $(CURDIR)/build/stage

.PHONY: all deps fuzz-deps configure build check check-release check-asan check-package demo bench fuzz install clean

all: build

deps:
	@missing=""; for p in $(PACKAGES); do \
	  dpkg-query -W -f='$${Status}' $$p 2>/dev/null | grep -q "install ok installed" || missing="$$missing $$p"; \
	done; \
	if [ -n "$$missing" ]; then \
	  echo "installing:$$missing"; \
	  $(SUDO) apt-get update -qq && DEBIAN_FRONTEND=noninteractive $(SUDO) apt-get install -y -qq $$missing; \
	fi

fuzz-deps:
	@missing=""; for p in $(FUZZ_PACKAGES); do \
	  dpkg-query -W -f='$${Status}' $$p 2>/dev/null | grep -q "install ok installed" || missing="$$missing $$p"; \
	done; \
	if [ -n "$$missing" ]; then \
	  $(SUDO) apt-get update -qq && DEBIAN_FRONTEND=noninteractive $(SUDO) apt-get install -y -qq $$missing; \
	fi

build/release/build.ninja: | deps
	cmake --preset release

build/asan/build.ninja: | deps
	cmake --preset asan

build: deps build/release/build.ninja
	cmake --build build/release -j $(JOBS)

check: check-release check-asan check-package
	@echo "make check: all suites passed"

check-release: build
	ctest --preset release -j $(JOBS)

check-asan: deps build/asan/build.ninja
	cmake --build build/asan -j $(JOBS)
	ctest --preset asan -j $(JOBS)

# Install the release build into a staging prefix and build the consumer project against it,
# once through find_package(wycore) and once through pkg-config.
check-package: build
	rm -rf $(STAGE) build/package-cmake build/package-pc
	cmake --install build/release --prefix $(STAGE)
	cmake -S tests/package -B build/package-cmake -G Ninja -DCMAKE_PREFIX_PATH=$(STAGE)
	cmake --build build/package-cmake
	LD_LIBRARY_PATH=$(STAGE)/lib build/package-cmake/consumer
	cmake -S tests/package -B build/package-pc -G Ninja -DCONSUMER_USE_PKGCONFIG=ON \
	  -DCMAKE_PREFIX_PATH=$(STAGE)
	cmake --build build/package-pc
	LD_LIBRARY_PATH=$(STAGE)/lib build/package-pc/consumer

demo: build
	./scripts/demo.sh build/release

bench: build
	@for b in build/release/bench/wycore_*Bench; do echo "== $$b"; $$b --benchmark_repetitions=5 --benchmark_report_aggregates_only=true || exit 1; done

fuzz: deps fuzz-deps
	cmake --preset fuzz
	cmake --build build/fuzz -j $(JOBS)

install: build
	cmake --install build/release --prefix $(PREFIX)

clean:
	rm -rf build
