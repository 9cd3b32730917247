# Tests of the shell port.
vesko_test(shell_test SOURCES ShellTest.cpp LIBS vesko_linux_shell)
