#!/usr/bin/env bash
# Fails where a file includes one of a layer above its own. src/CMakeLists.txt names the layers, the
# lowest first; of the two ports none knows the other.
# usage: layers.sh <src folder>
set -euo pipefail
cd "$1"
above=$(sed -n 's/.*add_subdirectory(\(.*\))/\1/p' CMakeLists.txt)
[[ $above == base* && $above == *desktop/linux ]]
failed=0
for layer in $above; do
  above=${above#"$layer"}
  above=${above#$'\n'}
  forbidden=$(tr '\n' '|' <<<"$above")$([[ $layer != desktop/linux ]] || echo 'desktop/windows|')
  [[ -n ${forbidden%|} ]] || continue
  if grep -rnE --include='*.h' --include='*.cpp' "#include \"(${forbidden%|})/" "$layer"; then failed=1; fi
done
exit $failed
