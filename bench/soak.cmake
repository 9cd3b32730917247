# Benchmarks: many checks in one process.
add_executable(vesko_bench_soak SoakBench.cpp ${PROJECT_SOURCE_DIR}/tests/e2e/Machine.cpp)
target_include_directories(vesko_bench_soak PRIVATE ${PROJECT_SOURCE_DIR}/tests)
target_link_libraries(vesko_bench_soak PRIVATE vesko_options vesko_linux vesko_demo_server
                                               Qt6::Widgets)
