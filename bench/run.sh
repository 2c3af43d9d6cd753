#!/bin/sh
# Run by ./dev bench: all benchmarks, then complete programs against minimal ones, by the medians of
# many runs of both on the same machine.
set -eu
build=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# ratio NAME RUNS OURS THEIRS: the medians of two commands in milliseconds, and their ratio.
ratio() {
  hyperfine --shell=none --warmup 5 --runs "$2" --export-json "$scratch/times.json" "$3" "$4" \
    >/dev/null 2>&1
  python3 - "$1" "$scratch/times.json" <<'PY'
import json, sys
ours, theirs = (result["median"] * 1000 for result in json.load(open(sys.argv[2]))["results"])
print(f"{sys.argv[1]}: {ours:.2f} ms, compared with {theirs:.2f} ms: "
      f"{ours - theirs:+.2f} ms, ratio {ours / theirs:.2f}")
PY
}

for bench in "$build"/*Bench; do
  echo "== $(basename "$bench")"
  "$bench" --benchmark_repetitions=5 --benchmark_report_aggregates_only=true 2>/dev/null |
    grep -E '_median|^Benchmark'
done

echo "== whole programs"
export TZ=Europe/Madrid LC_ALL=C.UTF-8 VANTREL_NOW=2026-07-15T10:00:00Z QT_QPA_PLATFORM=offscreen
for plans in 100 10000 1000000; do
  mkdir -p "$scratch/$plans"
  "$build/make_store" "$scratch/$plans/Vantrel.sqlite" "$plans"
  VANTREL_GROUP_CONTAINER="$scratch/$plans" ratio "vantrel today, $plans plans" 60 \
    "$build/vantrel today --expanded" "$build/minimal_today $scratch/$plans/Vantrel.sqlite"
done
export VANTREL_GROUP_CONTAINER="$scratch/100"
"$build/vantrel" planner preset --latitude 41.39 --longitude 2.17 --date now
ratio "vantrel defaults read" 100 "$build/vantrel defaults read planner_date" \
  "$build/vantrel --version"
ratio "vantrel-today --render" 20 \
  "$build/vantrel-today --render $scratch/card.png --expanded" \
  "$build/minimal_render $scratch/labels.png"

python3 - "$scratch" <<'PY'
import random, sys
random.seed(1)
globe = lambda: (random.uniform(-90, 90), random.uniform(-180, 180))
with open(sys.argv[1] + "/pins", "w") as pins, open(sys.argv[1] + "/points", "w") as points:
    for _ in range(1000000):
        (lat1, lon1), (lat2, lon2) = globe(), globe()
        pins.write(f"{lat1:.6f} {lon1:.6f} 120.5 {lat2:.6f} {lon2:.6f} 1403.0\n")
        points.write(f"{lat1:.6f} {lon1:.6f} {lat2:.6f} {lon2:.6f}\n")
PY
ratio "vantrel geo curve --batch, 1000000 lines" 5 \
  "$build/vantrel geo curve --batch $scratch/pins" \
  "GeodSolve -i --input-file $scratch/points --output-file /dev/null"
