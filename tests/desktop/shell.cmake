# Tests of the shell port: those for every platform, and those of the desktop's files on Linux.
if(WIN32)
  vesko_test(shell_test SOURCES ShellTest.cpp ShellFixtureWindows.cpp LIBS vesko_windows_shell)
else()
  vesko_test(shell_test SOURCES ShellTest.cpp ShellFixtureLinux.cpp LinuxShellTest.cpp
             LIBS vesko_linux_shell)
endif()
add_executable(vesko-witness witness.cpp)
target_link_libraries(vesko-witness PRIVATE vesko_options $<$<PLATFORM_ID:Windows>:-static>)
add_dependencies(shell_test vesko-witness)
target_compile_definitions(shell_test PRIVATE VESKO_WITNESS="$<TARGET_FILE_NAME:vesko-witness>")
