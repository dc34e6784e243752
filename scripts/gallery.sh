#!/usr/bin/env bash
# The main job: builds the library and the korvex tool, then renders the gallery into gallery/.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/deps.sh

cmake --preset default
cmake --build --preset default -j "$(nproc)" --target korvex_cli
korvex=build/default/bin/korvex
"$korvex" --help
mkdir -p gallery
"$korvex" gdi tests/gdi/sampler.txt --png gallery/sampler.png
echo "gallery written to $(pwd)/gallery"
