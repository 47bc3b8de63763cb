#!/usr/bin/env bash
# Usage: check_exports.sh LIBRARY EXPECTED [LIBRARY EXPECTED]...
# Fails when a shared library exports other symbols than its list names: a
# mangled C++ name, a file-local helper, or a missing interface function.
set -euo pipefail
status=0
while [ $# -ge 2 ]; do
  library=$1 expected=$2
  shift 2
  actual=$(nm -D --defined-only "$library" | awk '{print $3}' | grep -v '^_' | sort)
  if ! diff <(sort "$expected") <(echo "$actual") >/tmp/check_exports.$$; then
    echo "exports of $library differ from $expected (< expected, > actual):"
    cat /tmp/check_exports.$$
    status=1
  fi
  rm -f /tmp/check_exports.$$
done
exit $status
