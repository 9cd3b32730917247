# Benchmarks: window.
