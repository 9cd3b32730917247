# Benchmarks: parse.
add_executable(vesko_bench_parse ParseBench.cpp)
target_link_libraries(vesko_bench_parse PRIVATE vesko_options vesko_message vesko_linux_locale)
