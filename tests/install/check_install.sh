#!/usr/bin/env bash
# Installs the build into a scratch prefix and builds a small C program against
# it twice: through find_package(corvane) and through pkg-config.
set -euo pipefail
build_dir=$1
source_dir=$(cd "$(dirname "$0")" && pwd)
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$build_dir" --prefix "$prefix" >/dev/null

cmake -S "$source_dir/consumer" -B "$prefix/consumer-build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$prefix/consumer-build" >/dev/null
LD_LIBRARY_PATH="$prefix/lib:$prefix/lib64:${LD_LIBRARY_PATH:-}" "$prefix/consumer-build/consumer"

export PKG_CONFIG_PATH="$prefix/lib/pkgconfig:$prefix/lib64/pkgconfig"
cc -std=c11 -Wall -Werror "$source_dir/consumer/consumer.c" -o "$prefix/consumer-pc" $(pkg-config --cflags --libs corvane-mime)
LD_LIBRARY_PATH="$prefix/lib:$prefix/lib64:${LD_LIBRARY_PATH:-}" "$prefix/consumer-pc"
