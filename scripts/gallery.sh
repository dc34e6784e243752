#!/usr/bin/env bash
# The main job: builds the library and the korvex tool, then renders the gallery into gallery/
# (open gallery/index.html).
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/deps.sh

cmake --preset default
cmake --build --preset default -j "$(nproc)" --target korvex_cli
build/default/bin/korvex gallery --out gallery
echo "open $(pwd)/gallery/index.html"
