# Tests of the registry port: RegistryTest.cpp runs through every port, the others through one.
vesko_test(registry_test SOURCES RegistryTest.cpp SqliteRegistryTest.cpp
           LIBS vesko_linux_registry vesko_test_config)
