# Benchmarks: parse.
