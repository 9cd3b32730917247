# Benchmarks: window.
add_executable(vesko_bench_window WindowBench.cpp
               ${PROJECT_SOURCE_DIR}/tests/support/MemoryRegistry.cpp)
target_include_directories(vesko_bench_window PRIVATE ${PROJECT_SOURCE_DIR}/tests)
target_link_libraries(vesko_bench_window PRIVATE vesko_options vesko_dialogs vesko_linux_locale
                                                 vesko_linux_registry vesko_linux_toolkit
                                                 Qt6::Widgets)
