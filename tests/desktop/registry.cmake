# Tests of the registry port: RegistryTest.cpp runs through every port, the others through one.
if(WIN32)
  vesko_test(registry_test SOURCES RegistryTest.cpp RegistryFixtureWindows.cpp
             LIBS vesko_windows_registry vesko_test_config)
else()
  vesko_test(registry_test SOURCES RegistryTest.cpp RegistryFixtureLinux.cpp SqliteRegistryTest.cpp
             LIBS vesko_linux_registry vesko_test_config)
endif()
