# The front door. Each target does what it needs before, on a machine that has nothing yet.

JOBS ?= $(shell nproc)
PREFIX ?= /usr/local

.PHONY: all deps build tests asan test demo bench fuzz memcheck format lint install clean uninstall package

all: build

deps:
	@scripts/deps.sh

build: deps
	cmake --preset release
	cmake --build --preset release -j $(JOBS)

tests: deps
	cmake --preset release
	cmake --build --preset release-tests -j $(JOBS)

asan: deps
	cmake --preset asan
	cmake --build --preset asan -j $(JOBS)

test: tests asan
	ctest --preset release -j $(JOBS)
	ctest --preset asan -j $(JOBS)

demo: build
	@scripts/demo.sh

# One table of every budget, beside the programs that do the same where they are installed.
# make bench WRITE=docs/performance.md keeps it.
bench: deps
	cmake --preset release
	cmake --build --preset release-benchmarks -j $(JOBS)
	@/usr/bin/python3 bench/compare $(if $(WRITE),--write $(WRITE))

# Five minutes a target; FUZZ_SECONDS=60 make fuzz for less.
fuzz: deps
	@scripts/fuzz.sh

# The unit tests under valgrind.
memcheck: tests
	@scripts/memcheck.sh

format:
	git ls-files '*.cpp' '*.h' | xargs clang-format -i

# Clang takes neither what GCC has precompiled nor its parameters.
lint: build
	mkdir -p build/lint
	sed -E 's/ -Winvalid-pch -include [^ ]+| --param=[^ ]+//g' build/release/compile_commands.json \
		>build/lint/compile_commands.json
	git ls-files 'src/*.cpp' | xargs -P $(JOBS) -n 8 clang-tidy -p build/lint --quiet

install: build
	cmake --install build/release --prefix "$$(realpath -m -- "$(PREFIX)")"

# What the last `make install` has put in place.
uninstall:
	cmake -DMANIFEST=$(CURDIR)/build/release/install_manifest.txt -P cmake/uninstall.cmake

# A Debian package, in build/.
package: build
	cpack --config build/release/CPackConfig.cmake -B build

clean:
	rm -rf build
