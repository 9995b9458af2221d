# The commands of the project; README.md says what each is for.
PREFIX ?= /usr/local
DESTDIR ?=

.PHONY: run test check coverage soak bench install deb build format clean bootstrap
.NOTPARALLEL:

run: build
	@build/release/vornal run scenarios/two-leaves/scenario.yaml

test: build/release/build.ninja
	@cmake --build --preset release
	@ctest --preset release

check:
	@tools/check

coverage:
	@tools/bootstrap check
	@tools/coverage

soak:
	@tools/bootstrap check
	@tools/soak

bench:
	@tools/bootstrap bench
	@cmake --preset release
	@cmake --build --preset release --target vornal benchmarks
	@tools/bench

install: build
	@DESTDIR="$(DESTDIR)" cmake --install build/release --prefix "$(PREFIX)"

deb:
	@tools/deb

build: build/release/build.ninja
	@cmake --build --preset release --target vornal

format:
	@tools/bootstrap check
	@tools/format -i

clean:
	rm -rf build

bootstrap:
	@tools/bootstrap

build/release/build.ninja: CMakePresets.json | bootstrap
	@cmake --preset release
