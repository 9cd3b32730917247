# Benchmarks: check.
