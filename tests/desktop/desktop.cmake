vesko_test(linux_desktop_tests SOURCES LinuxDesktopTest.cpp LIBS vesko_linux)
