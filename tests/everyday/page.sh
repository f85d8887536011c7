#!/usr/bin/env bash
# The page of a library in a real browser: Chromium, driven by its own driver.
set -euo pipefail
cd "$(dirname "$0")/../.."

scripts/install-deps.sh chromium chromium-driver python3-selenium
cmake --preset release >/dev/null
cmake --build --preset release --target page_writer
PAGE_WRITER=$PWD/build/release/bin/page_writer /usr/bin/python3 tests/everyday/page/page_test.py "$@"
