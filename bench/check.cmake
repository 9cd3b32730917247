# Benchmarks: check.
find_package(Threads REQUIRED)
find_package(Qt6 6.4 REQUIRED COMPONENTS Network Widgets)
add_executable(vesko_bench_memory_server MemoryServer.cpp SampleMail.cpp)
target_link_libraries(vesko_bench_memory_server PRIVATE vesko_options Threads::Threads)

add_executable(vesko_bench_check CheckBench.cpp BareLoop.cpp SampleMail.cpp
               ${PROJECT_SOURCE_DIR}/tests/e2e/Dovecot.cpp)
target_include_directories(vesko_bench_check PRIVATE ${PROJECT_SOURCE_DIR}/tests)
target_link_libraries(vesko_bench_check PRIVATE vesko_options vesko_dialogs vesko_linux_locale
                                                vesko_linux_socket vesko_linux_toolkit Qt6::Network
                                                Qt6::Widgets)
add_dependencies(vesko_bench_check vesko_bench_memory_server)

add_executable(vesko_bench_reply ReplyBench.cpp)
target_link_libraries(vesko_bench_reply PRIVATE vesko_options vesko_pop3 vesko_linux_locale)
