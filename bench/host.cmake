# Benchmarks: the library in a host, on this system and on Windows.
add_executable(vesko_bench_host HostBench.cpp BareLoop.cpp)
target_include_directories(vesko_bench_host PRIVATE ${PROJECT_SOURCE_DIR}/include)
target_link_libraries(vesko_bench_host PRIVATE vesko_options vesko_config)
if(WIN32)
  target_sources(vesko_bench_host PRIVATE HostSystemWindows.cpp)
  target_link_libraries(
    vesko_bench_host PRIVATE vesko_windows_api vesko_windows_locale vesko_windows_registry
                             vesko_windows_shell ws2_32)
  target_link_options(vesko_bench_host PRIVATE -static)
else()
  find_package(Qt6 6.4 REQUIRED COMPONENTS Widgets)
  target_sources(vesko_bench_host PRIVATE HostSystemLinux.cpp
                                          ${PROJECT_SOURCE_DIR}/tests/support/PrivateMachine.cpp)
  target_include_directories(vesko_bench_host PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(
    vesko_bench_host PRIVATE vesko_linux_locale vesko_linux_registration vesko_linux_registry
                             vesko_linux_shell Qt6::Widgets ${CMAKE_DL_LIBS})
endif()
