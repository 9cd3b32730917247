vesko_test(linux_desktop_tests SOURCES LinuxDesktopTest.cpp LIBS vesko_linux)
vesko_test(class_file_test SOURCES ClassFileTest.cpp
           LIBS vesko_linux_registration vesko_test_config)
